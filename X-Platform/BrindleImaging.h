#pragma once
// Every public header of the imaging library, and the foundation's.

#include "BrindleCore.h"
#include "XImagingLibrary.h"
