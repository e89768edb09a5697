#pragma once
// Every public header of the imaging library, and the foundation's.

#include "BrindleCore.h"
#include "X3DPoint.h"
#include "X3DPointF.h"
#include "X3DPointT.h"
#include "X3DRect.h"
#include "XGeometryRounding.h"
#include "XImagingLibrary.h"
#include "XPoint.h"
#include "XPointF.h"
#include "XPointT.h"
#include "XRect.h"
#include "XRectAxis.h"
#include "XRectF.h"
#include "XRectIterator.h"
#include "XRectT.h"
