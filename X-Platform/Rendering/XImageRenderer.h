#pragma once
// The display adjustment of one volume: how its voxel values map to display levels.
//
// Every renderer follows one transfer function of an input value v:
//     scale = gain / (white - black) if white > black, else 0
//     t = (v - black) * scale + offset, clamped to 0..1 (a t not below 1 gives 1 first, so a
//         NaN gives 1)
//     luminance = trunc(pow(t, gamma) * 255)
// followed by a colour balance per channel. The setters only store: a renderer keeps no cache.
// Subclasses tell how one voxel of their type becomes a colour (GetColour) and what range of
// input values they take (GetMinInputValue, GetMaxInputValue).
//
// Properties are numbered for generic handling (XImageRendererProperty): 1 black, 2 white,
// 3 gain, 4 offset, 5 gamma, 6-8 the red, green and blue balance; the grey renderers add 10-15,
// the red, green and blue bytes of the black and the white colour. 9 is no property.
//
// Stream form (class 12001, version 0): the class word, then offset, gain, gamma, black, white
// and the red, green and blue balance as 64-bit floats. Subclasses append their levels.

#include "XARGB32Colour.h"
#include "XStorable.h"
#include "XTypes.h"

class XIntToColourLUT;

class XImageRenderer : public XStorable
{
public:
    enum XImageRendererProperty : UInt32
    {
        kBlackProperty = 1,
        kWhiteProperty = 2,
        kGainProperty = 3,
        kOffsetProperty = 4,
        kGammaProperty = 5,
        kRedBalanceProperty = 6,
        kGreenBalanceProperty = 7,
        kBlueBalanceProperty = 8,
        kBlackColourRedProperty = 10,
        kBlackColourGreenProperty = 11,
        kBlackColourBlueProperty = 12,
        kWhiteColourRedProperty = 13,
        kWhiteColourGreenProperty = 14,
        kWhiteColourBlueProperty = 15
    };
    // How a grey renderer colours its luminance: a ramp between its two colours, or a rainbow.
    enum XRendererType : UInt32
    {
        kRampRenderer = 0,
        kRainbowRenderer = 1
    };
    // The byte order of rendered pixels: that of XARGB32Colour or of XBGRA32Colour.
    enum XPixelFormat : UInt32
    {
        kARGB32Format = 0,
        kBGRA32Format = 1
    };
    static constexpr UInt32 kClassID = 12001;

    XImageRenderer() = default;
    XImageRenderer(const XImageRenderer &) = default;
    XImageRenderer & operator=(const XImageRenderer &) = default;
    // The older stream form: the class word and the eight numbers.
    explicit XImageRenderer(XStream & aStream);
    ~XImageRenderer() override;

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XVersion(48); }
    XImageRenderer * Clone() const override = 0;
    UInt64 GetStreamUsage() const override { return 80; }

    virtual void SetOffset(double aValue) { itsOffset = aValue; }
    virtual void SetGain(double aValue) { itsGain = aValue; }
    virtual void SetGamma(double aValue) { itsGamma = aValue; }
    virtual void SetBlack(double aValue) { itsBlack = aValue; }
    virtual void SetWhite(double aValue) { itsWhite = aValue; }
    virtual void SetColourBalance(double aRed, double aGreen, double aBlue);
    // The end colours and the renderer type belong to the grey renderers; here they do nothing.
    virtual void SetBlackColour(const XARGB32Colour &) {}
    virtual void SetWhiteColour(const XARGB32Colour &) {}
    virtual void SetRendererType(XRendererType) {}
    virtual double GetOffset() const { return itsOffset; }
    virtual double GetGain() const { return itsGain; }
    virtual double GetGamma() const { return itsGamma; }
    virtual double GetBlack() const { return itsBlack; }
    virtual double GetWhite() const { return itsWhite; }
    virtual double GetRedBalance() const { return itsRedBalance; }
    virtual double GetGreenBalance() const { return itsGreenBalance; }
    virtual double GetBlueBalance() const { return itsBlueBalance; }
    virtual XARGB32Colour GetBlackColour() const { return XARGB32Colour::kBlack; }
    virtual XARGB32Colour GetWhiteColour() const { return XARGB32Colour::kWhite; }
    virtual XRendererType GetRendererType() const { return kRampRenderer; }

    // Properties 1 to 8.
    virtual bool HasProperty(UInt32 aProperty) const;
    // Any number that is no property of this class is ignored, and read as 0.0.
    virtual void SetProperty(UInt32 aProperty, double aValue);
    virtual double GetProperty(UInt32 aProperty) const;
    // Carries an adjustment over from another renderer, also of another class: black and white
    // are rescaled from the other's input range to this one's when the classes differ; gain,
    // offset, gamma and the balances are copied. Each only if the other offers that property.
    virtual void CopyProperties(const XImageRenderer & aSource);

    virtual double GetMaxInputValue() const { return 255.0; }
    virtual double GetMinInputValue() const { return 0.0; }
    // No adjustment: offset 0, gain 1, gamma 1, black 0, white at the maximum input, balances
    // 1, all compared exactly. Black is compared with 0, not with the minimum input.
    virtual bool IsNormal() const;
    // The same test without the white point.
    virtual bool IsNormalExceptForWhitePoint() const;
    // Sets the state that IsNormal describes, with black at the minimum input.
    virtual void Normalise();
    virtual bool IsMonochromatic() const { return false; }
    // The display colour of one voxel of this renderer's type. For read-outs, not for drawing.
    virtual void GetColour(const void * aVoxel, XARGB32Colour & outColour) const = 0;

    // The transfer function, in double precision.
    virtual UInt8 GetLuminance(double aValue) const;
    // Its inverse: the input value that gives a luminance. White equal to black is not guarded.
    virtual double GetValueForLuminance(double aLuminance) const;

    // The renderer as a palette, and a palette turned into renderer settings. Here both raise
    // XException kErrNoLUT: only the single-channel renderers have them.
    virtual XIntToColourLUT GetLUT() const;
    virtual void ApplyLUT(const XIntToColourLUT & aTable);

    // min(balance * byte, 255) truncated; a NaN product gives 255, a negative one 0.
    static UInt8 BalancedByte(double aBalance, UInt8 aByte);

    void ReadStream2(XStream & aStream, XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XOptions anOptions) const override;

protected:
    void ReadStream2_XImageRenderer(XStream & aStream, XOptions anOptions);
    void WriteStream2_XImageRenderer(XStream & aStream, XOptions anOptions) const;
    // The scale of the transfer function: gain / (white - black), or 0 without a range.
    double GetTransferScale() const;
    // Clamps a normalised value to 0..1; a value not below 1 (or a NaN) gives 1.
    static double ClampUnit(double aValue);
    // The test of IsNormal, with or without the white point.
    bool IsNormalTest(bool aWithWhite) const;

private:
    void ReadStreamSelf(XStream & aStream, const XVersion & aVersion, XOptions anOptions);
    void WriteStreamSelf(XStream & aStream, XOptions anOptions) const;

    double itsOffset = 0.0;
    double itsGain = 1.0;
    double itsGamma = 1.0;
    double itsBlack = 0.0;
    double itsWhite = 255.0;
    double itsRedBalance = 1.0;
    double itsGreenBalance = 1.0;
    double itsBlueBalance = 1.0;
};
