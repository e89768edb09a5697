#pragma once
// What the renderers of the colour volumes share, over the colour voxel type T: each of red,
// green and blue goes through the transfer function on its own, then through the balance of its
// channel. There is no end colour and no renderer type. The class adds no stream level: the
// concrete class writes its word right after the base's numbers.

#include <limits>

#include "XImageRenderer.h"

template <typename T>
class XColourImageRenderer : public XImageRenderer
{
public:
    // The largest value of one channel of T: 255 or 65535.
    double GetMaxInputValue() const override { return kChannelMax; }
    // Each channel: min(trunc(luminance * balance), 255); alpha 255.
    void GetColour(const void * aVoxel, XARGB32Colour & outColour) const override
    {
        const T & voxel = *static_cast<const T *>(aVoxel);
        outColour.SetARGB(255, Balanced(voxel.GetRed(), GetRedBalance()),
                          Balanced(voxel.GetGreen(), GetGreenBalance()),
                          Balanced(voxel.GetBlue(), GetBlueBalance()));
    }

protected:
    static constexpr double kChannelMax = double(std::numeric_limits<decltype(T().GetRed())>::max());

    XColourImageRenderer() { SetWhite(kChannelMax); }
    XColourImageRenderer(const XColourImageRenderer &) = default;
    XColourImageRenderer & operator=(const XColourImageRenderer &) = default;
    explicit XColourImageRenderer(XStream & aStream) : XImageRenderer(aStream) {}

private:
    UInt8 Balanced(double aChannel, double aBalance) const
    {
        const double value = double(GetLuminance(aChannel)) * aBalance;
        if (!(value < 255.0))
            return 255;
        return value > 0.0 ? UInt8(value) : 0;
    }
};
