#include "XVolumeKinds.h"

#include <cmath>
#include <typeinfo>

#include "XARGB32Volume.h"
#include "XBGRA32Volume.h"
#include "XCommandError.h"
#include "XFPVolume.h"
#include "XGrey16Volume.h"
#include "XGrey32Volume.h"
#include "XMaskVolume.h"
#include "XRGB48Volume.h"

namespace
{
template <class V>
XVolume * Make(const X3DRect & aBounds)
{
    return new V(aBounds);
}

bool IsGrey(const XVolumeKind & aKind)
{
    return aKind.itsID == kMaskKind || aKind.itsID == kGrey8Kind || aKind.itsID == kGrey16Kind;
}

// The exact classes of the kinds, in the order of the table.
const std::type_info * const kClasses[] = {&typeid(XMaskVolume),   &typeid(XGrey8Volume),  &typeid(XGrey16Volume),
                                           &typeid(XGrey32Volume), &typeid(XFPVolume),     &typeid(XARGB32Volume),
                                           &typeid(XBGRA32Volume), &typeid(XRGB48Volume)};
} // namespace

const std::vector<XVolumeKind> & XVolumeKinds::GetAll()
{
    static const std::vector<XVolumeKind> kinds = {
        {kMaskKind, "mask", "XMaskVolume", "8-bit mask (set above 127)", false, &Make<XMaskVolume>},
        {kGrey8Kind, "grey8", "XGrey8Volume", "8-bit unsigned grey", true, &Make<XGrey8Volume>},
        {kGrey16Kind, "grey16", "XGrey16Volume", "16-bit unsigned grey", true, &Make<XGrey16Volume>},
        {kGrey32Kind, "grey32", "XGrey32Volume", "32-bit unsigned grey", false, &Make<XGrey32Volume>},
        {kFloatKind, "float", "XFPVolume", "32-bit floating-point grey", true, &Make<XFPVolume>},
        {kARGB32Kind, "argb32", "XARGB32Volume", "8-bit alpha, red, green, blue", true, &Make<XARGB32Volume>},
        {kBGRA32Kind, "bgra32", "XBGRA32Volume", "8-bit blue, green, red, alpha", false, &Make<XBGRA32Volume>},
        {kRGB48Kind, "rgb48", "XRGB48Volume", "16-bit red, green, blue", true, &Make<XRGB48Volume>}};
    return kinds;
}

const XVolumeKind & XVolumeKinds::Of(const XVolume & aVolume)
{
    const std::vector<XVolumeKind> & kinds = GetAll();
    for (std::size_t i = 0; i < kinds.size(); ++i)
    {
        if (typeid(aVolume) == *kClasses[i])
            return kinds[i];
    }
    throw XCommandError("volumes of the type '" + aVolume.GetDescription().GetStdString() +
                        "' are not handled by this tool");
}

const XVolumeKind & XVolumeKinds::FindTarget(const std::string & aName)
{
    for (const XVolumeKind & kind : GetAll())
    {
        if (kind.itsIsTarget && aName == kind.itsName)
            return kind;
    }
    throw XCommandError("unknown type '" + aName + "' (use " + GetTargetNames() + ")", XCommandError::kUsage);
}

std::string XVolumeKinds::GetTargetNames()
{
    std::string names;
    for (const XVolumeKind & kind : GetAll())
    {
        if (!kind.itsIsTarget)
            continue;
        if (!names.empty())
            names += "|";
        names += kind.itsName;
    }
    return names;
}

std::unique_ptr<XVolume> XVolumeKinds::Convert(const XVolume & aSource, const XVolumeKind & aTarget)
{
    const XVolumeKind & source = Of(aSource);
    if (source.itsID == aTarget.itsID)
        return std::unique_ptr<XVolume>(aSource.Clone());
    if (source.itsID == kGrey32Kind)
        throw XCommandError("32-bit grey volumes cannot be converted: the library has no conversion for them");

    std::unique_ptr<XVolume> result(aTarget.itsMake(aSource.GetBounds()));
    result->CopyScalingFrom(aSource);
    result->CopyIn(aSource, aSource.GetBounds(), result->GetBounds(), nullptr);
    if (aTarget.itsID == kFloatKind)
    {
        if (IsGrey(source))
        {
            result->GetPlaneRenderer().SetBlack(aSource.GetPlaneRenderer().GetBlack());
            result->GetPlaneRenderer().SetWhite(aSource.GetPlaneRenderer().GetWhite());
        }
        else
        {
            FitFloatRange(*result);
        }
    }
    else
    {
        result->GetPlaneRenderer().CopyProperties(aSource.GetPlaneRenderer());
    }
    return result;
}

void XVolumeKinds::FitFloatRange(XVolume & aFloatVolume)
{
    auto & volume = dynamic_cast<XFPVolume &>(aFloatVolume);
    if (volume.GetBounds().IsEmpty())
        return;
    float lowest = 0.0f;
    float highest = 0.0f;
    volume.FindMinMax(lowest, highest);
    if (std::isfinite(lowest) && std::isfinite(highest) && lowest < highest)
    {
        volume.GetPlaneRenderer().SetBlack(lowest);
        volume.GetPlaneRenderer().SetWhite(highest);
    }
}
