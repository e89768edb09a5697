#include "XImageRenderer.h"

#include <cmath>

#include "XException.h"
#include "XImagingErrors.h"
#include "XIntToColourLUT.h"
#include "XStream.h"

XImageRenderer::XImageRenderer(XStream & aStream)
{
    XVersion word = ReadClassVersion(aStream, GetClassVersion());
    CheckClassVersion(word, GetClassVersion());
    ReadStreamSelf(aStream, word, kNormal);
}

XImageRenderer::~XImageRenderer() = default;

void XImageRenderer::SetColourBalance(double aRed, double aGreen, double aBlue)
{
    itsRedBalance = aRed;
    itsGreenBalance = aGreen;
    itsBlueBalance = aBlue;
}

bool XImageRenderer::HasProperty(UInt32 aProperty) const
{
    return aProperty >= kBlackProperty && aProperty <= kBlueBalanceProperty;
}

void XImageRenderer::SetProperty(UInt32 aProperty, double aValue)
{
    switch (aProperty)
    {
    case kBlackProperty: SetBlack(aValue); break;
    case kWhiteProperty: SetWhite(aValue); break;
    case kGainProperty: SetGain(aValue); break;
    case kOffsetProperty: SetOffset(aValue); break;
    case kGammaProperty: SetGamma(aValue); break;
    case kRedBalanceProperty: itsRedBalance = aValue; break;
    case kGreenBalanceProperty: itsGreenBalance = aValue; break;
    case kBlueBalanceProperty: itsBlueBalance = aValue; break;
    default: break;
    }
}

double XImageRenderer::GetProperty(UInt32 aProperty) const
{
    switch (aProperty)
    {
    case kBlackProperty: return GetBlack();
    case kWhiteProperty: return GetWhite();
    case kGainProperty: return GetGain();
    case kOffsetProperty: return GetOffset();
    case kGammaProperty: return GetGamma();
    case kRedBalanceProperty: return GetRedBalance();
    case kGreenBalanceProperty: return GetGreenBalance();
    case kBlueBalanceProperty: return GetBlueBalance();
    default: return 0.0;
    }
}

void XImageRenderer::CopyProperties(const XImageRenderer & aSource)
{
    if (aSource.GetVersion() != GetVersion())
    {
        const double sourceMin = aSource.GetMinInputValue();
        const double sourceRange = aSource.GetMaxInputValue() - sourceMin;
        const double ownMin = GetMinInputValue();
        const double ownRange = GetMaxInputValue() - ownMin;
        auto rescale = [&](double aValue) {
            return ownMin + ownRange * ((aValue - sourceMin) / sourceRange);
        };
        if (aSource.HasProperty(kBlackProperty))
            SetBlack(rescale(aSource.GetBlack()));
        if (aSource.HasProperty(kWhiteProperty))
            SetWhite(rescale(aSource.GetWhite()));
    }
    else
    {
        SetBlack(aSource.GetBlack());
        SetWhite(aSource.GetWhite());
    }
    for (UInt32 property = kGainProperty; property <= kBlueBalanceProperty; ++property)
        if (aSource.HasProperty(property))
            SetProperty(property, aSource.GetProperty(property));
}

bool XImageRenderer::IsNormalTest(bool aWithWhite) const
{
    return GetOffset() == 0.0 && GetGain() == 1.0 && GetGamma() == 1.0 && GetBlack() == 0.0 &&
           (!aWithWhite || GetWhite() == GetMaxInputValue()) && GetRedBalance() == 1.0 &&
           GetGreenBalance() == 1.0 && GetBlueBalance() == 1.0;
}

bool XImageRenderer::IsNormal() const
{
    return IsNormalTest(true);
}

bool XImageRenderer::IsNormalExceptForWhitePoint() const
{
    return IsNormalTest(false);
}

void XImageRenderer::Normalise()
{
    SetOffset(0.0);
    SetGain(1.0);
    SetGamma(1.0);
    SetBlack(GetMinInputValue());
    SetWhite(GetMaxInputValue());
    SetColourBalance(1.0, 1.0, 1.0);
}

double XImageRenderer::GetTransferScale() const
{
    const double range = GetWhite() - GetBlack();
    return range > 0.0 ? GetGain() / range : 0.0;
}

double XImageRenderer::ClampUnit(double aValue)
{
    if (!(aValue < 1.0))
        return 1.0;
    if (!(aValue > 0.0))
        return 0.0;
    return aValue;
}

UInt8 XImageRenderer::BalancedByte(double aBalance, UInt8 aByte)
{
    const double value = aBalance * double(aByte);
    if (!(value < 255.0))
        return 255;
    return value > 0.0 ? UInt8(value) : 0;
}

XIntToColourLUT XImageRenderer::GetLUT() const
{
    throw XException(kErrNoLUT, "a renderer of this kind has no look-up table");
}

void XImageRenderer::ApplyLUT(const XIntToColourLUT &)
{
    throw XException(kErrNoLUT, "a renderer of this kind takes no look-up table");
}

UInt8 XImageRenderer::GetLuminance(double aValue) const
{
    const double t = ClampUnit((aValue - GetBlack()) * GetTransferScale() + GetOffset());
    return UInt8(std::pow(t, GetGamma()) * 255.0);
}

double XImageRenderer::GetValueForLuminance(double aLuminance) const
{
    const double u = ClampUnit(std::pow(aLuminance / 255.0, 1.0 / GetGamma()));
    return (u - GetOffset()) / (GetGain() / (GetWhite() - GetBlack())) + GetBlack();
}

void XImageRenderer::ReadStream2(XStream & aStream, XOptions anOptions)
{
    ReadStream2_XImageRenderer(aStream, anOptions);
}

void XImageRenderer::WriteStream2(XStream & aStream, XOptions anOptions) const
{
    WriteStream2_XImageRenderer(aStream, anOptions);
}

void XImageRenderer::ReadStream2_XImageRenderer(XStream & aStream, XOptions anOptions)
{
    XVersion word = ReadLevelVersion(aStream, GetClassVersion());
    ReadStreamSelf(aStream, word, anOptions);
}

void XImageRenderer::WriteStream2_XImageRenderer(XStream & aStream, XOptions anOptions) const
{
    aStream.WriteVersion(GetClassVersion());
    WriteStreamSelf(aStream, anOptions);
}

void XImageRenderer::ReadStreamSelf(XStream & aStream, const XVersion &, XOptions)
{
    itsOffset = aStream.ReadFloat64S();
    itsGain = aStream.ReadFloat64S();
    itsGamma = aStream.ReadFloat64S();
    itsBlack = aStream.ReadFloat64S();
    itsWhite = aStream.ReadFloat64S();
    itsRedBalance = aStream.ReadFloat64S();
    itsGreenBalance = aStream.ReadFloat64S();
    itsBlueBalance = aStream.ReadFloat64S();
}

void XImageRenderer::WriteStreamSelf(XStream & aStream, XOptions) const
{
    for (double value : {itsOffset, itsGain, itsGamma, itsBlack, itsWhite, itsRedBalance,
                         itsGreenBalance, itsBlueBalance})
        aStream.WriteFloat64S(value);
}
