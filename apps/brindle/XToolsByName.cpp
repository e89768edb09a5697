#include "XToolsByName.h"

#include "XCommandError.h"
#include "XFlipHVolumeTool.h"
#include "XFlipVVolumeTool.h"
#include "XInvertVolumeTool.h"
#include "XRotate180VolumeTool.h"
#include "XRotate90CCWVolumeTool.h"
#include "XRotate90CWVolumeTool.h"

std::unique_ptr<X1To1VolumeTool> XToolsByName::Make(const std::string & aName)
{
    if (aName == "flip-h")
        return std::make_unique<XFlipHVolumeTool>();
    if (aName == "flip-v")
        return std::make_unique<XFlipVVolumeTool>();
    if (aName == "rotate-cw")
        return std::make_unique<XRotate90CWVolumeTool>();
    if (aName == "rotate-ccw")
        return std::make_unique<XRotate90CCWVolumeTool>();
    if (aName == "rotate-180")
        return std::make_unique<XRotate180VolumeTool>();
    if (aName == "invert")
        return std::make_unique<XInvertVolumeTool>();
    throw XCommandError("unknown tool '" + aName + "'", XCommandError::kUsage);
}
