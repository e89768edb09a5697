#include "XFlipVolumeTool.h"

#include <typeinfo>

#include "XAssert.h"
#include "XBasePackedVolume.h"
#include "XVolumeRefusal.h"

void XFlipVolumeTool::ApplyToolSelf(const XVolume & aSource, XVolume & aDest)
{
    XAssertText(typeid(aSource) == typeid(aDest), "typeid(srcVolume) == typeid(destVolume)");
    const XBasePackedVolume * source = dynamic_cast<const XBasePackedVolume *>(&aSource);
    if (source == nullptr)
        XRefuseVolume(aSource);
    Flip(*source, dynamic_cast<XBasePackedVolume &>(aDest));
}

void XFlipVolumeTool::CheckFlip(const XBasePackedVolume & aSource, const XBasePackedVolume & aDest)
{
    XAssertText(typeid(aSource) == typeid(aDest), "typeid(srcVolume) == typeid(destVolume)");
    XAssertText(aSource.GetBounds() == aDest.GetBounds(), "srcVolume.GetBounds() == destVolume.GetBounds()");
}
