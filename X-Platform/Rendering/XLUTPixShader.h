#pragma once
// The pixel shader of a grey ramp with gamma, for 8- and 16-bit voxels. The transfer function
// is tabled once, one luminance byte per input value, in single precision:
//     t = (i - black) * (gain / (white - black)) + offset, clamped to 0..1 (a t not below 1,
//     or a NaN, gives 1); luminance = trunc(powf(t, gamma) * 255)
// and the ramp between the balanced black and white colours is taken in 16.16 fixed point:
//     channel = (((slope * luminance) >> 16) + c0) modulo 256, slope = trunc((c1 - c0) / 255 * 65536)
// Per voxel that is a table read and three multiplies, with no clamp: the ramp cannot leave
// its range.

#include <cmath>
#include <limits>
#include <memory>
#include <new>

#include "XARGB32Colour.h"
#include "XAssert.h"
#include "XBaseGreyImageRenderer.h"

template <typename T>
class XLUTPixShader
{
    static_assert(std::is_same_v<T, UInt8> || std::is_same_v<T, UInt16>, "8- and 16-bit voxels");

public:
    explicit XLUTPixShader(const XBaseGreyImageRenderer & aRenderer)
    {
        constexpr std::size_t kEntries = std::size_t(std::numeric_limits<T>::max()) + 1;
        itsLUT.reset(new (std::nothrow) UInt8[kEntries]);
        XAssertText(itsLUT != nullptr, "itsLUT");
        const float scale = float(aRenderer.GetGain() / (aRenderer.GetWhite() - aRenderer.GetBlack()));
        const float offset = float(aRenderer.GetOffset()), black = float(aRenderer.GetBlack());
        const float gamma = float(aRenderer.GetGamma());
        for (std::size_t i = 0; i < kEntries; ++i)
        {
            float t = (float(i) - black) * scale + offset;
            if (t < 1.0f)
                t = t > 0.0f ? t : 0.0f;
            else
                t = 1.0f;
            // A gamma that is negative or not a number could leave 0..1: such levels saturate.
            const double level = double(std::pow(t, gamma)) * 255.0;
            itsLUT[i] = level < 255.0 ? (level > 0.0 ? UInt8(level) : 0) : 255;
        }
        const XARGB32Colour c0 = aRenderer.GetBlackColour(), c1 = aRenderer.GetWhiteColour();
        SetChannel(0, aRenderer.GetRedBalance(), c0.GetRed(), c1.GetRed());
        SetChannel(1, aRenderer.GetGreenBalance(), c0.GetGreen(), c1.GetGreen());
        SetChannel(2, aRenderer.GetBlueBalance(), c0.GetBlue(), c1.GetBlue());
    }

    // One voxel, opaque.
    XARGB32Colour GetColour(T aVoxel) const
    {
        const SInt32 level = itsLUT[aVoxel];
        auto channel = [&](int c) { return UInt8(((itsSlope[c] * level) >> 16) + itsBase[c]); };
        return XARGB32Colour(255, channel(0), channel(1), channel(2));
    }

private:
    void SetChannel(int aChannel, double aBalance, UInt8 aBlack, UInt8 aWhite)
    {
        const SInt32 c0 = XImageRenderer::BalancedByte(aBalance, aBlack);
        const SInt32 c1 = XImageRenderer::BalancedByte(aBalance, aWhite);
        itsSlope[aChannel] = SInt32(double(c1 - c0) / 255.0 * 65536.0);
        itsBase[aChannel] = c0;
    }

    std::unique_ptr<UInt8[]> itsLUT;
    SInt32 itsSlope[3] = {};
    SInt32 itsBase[3] = {};
};
