#include "XPaintVolumeTool.h"

#include <typeinfo>

#include "X3DRegion.h"
#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XImageRenderer.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"
#include "XVolumeRefusal.h"
#include "XVolumeScanner.h"

namespace
{
template <typename T>
void Paint(XPackedVolume<T> & aVolume, const X3DRegion & aRegion, const T & aValue)
{
    XPaintVolumeTool::XFillHelper<T> helper(aValue);
    XScanVolume(aVolume, helper, &aRegion, kLockReadWrite);
}

UInt32 Average(const XARGB32Colour & aColour)
{
    return (UInt32(aColour.GetRed()) + aColour.GetGreen() + aColour.GetBlue()) / 3;
}

float FloatFor(const XFPVolume & aVolume, const XARGB32Colour & aColour)
{
    const float min = float(aVolume.GetPlaneRenderer().GetMinInputValue());
    const float max = float(aVolume.GetPlaneRenderer().GetMaxInputValue());
    const float scale = (max - min) / 255.0f;
    return float(Average(aColour)) * scale + min;
}
} // namespace

XPaintVolumeTool::~XPaintVolumeTool() = default;

void XPaintVolumeTool::FillRect(XVolume & aVolume, const X3DRect & aRect, const XARGB32Colour & aColour)
{
    FillRegion(aVolume, X3DRegion(aRect), aColour);
}

void XPaintVolumeTool::FillRegion(XVolume & aVolume, const X3DRegion & aRegion, const XARGB32Colour & aColour)
{
    const std::type_info & type = typeid(aVolume);
    if (type == typeid(XMaskVolume) || type == typeid(XGrey8Volume))
        Paint(static_cast<XGrey8Volume &>(aVolume), aRegion, UInt8(Average(aColour)));
    else if (type == typeid(XGrey16Volume))
        Paint(static_cast<XGrey16Volume &>(aVolume), aRegion, UInt16(Average(aColour) * 257));
    else if (type == typeid(XARGB32Volume))
        Paint(static_cast<XARGB32Volume &>(aVolume), aRegion, aColour);
    else if (XBGRA32Volume * bgra = dynamic_cast<XBGRA32Volume *>(&aVolume))
        Paint(*bgra, aRegion, XBGRA32Colour(aColour));
    else if (type == typeid(XRGB48Volume))
        Paint(static_cast<XRGB48Volume &>(aVolume), aRegion,
              XRGB48Colour(UInt16(aColour.GetRed() * 257), UInt16(aColour.GetGreen() * 257),
                           UInt16(aColour.GetBlue() * 257)));
    else if (type == typeid(XFPVolume))
        Paint(static_cast<XFPVolume &>(aVolume), aRegion, FloatFor(static_cast<XFPVolume &>(aVolume), aColour));
    else
        XRefuseVolume(aVolume);
}
