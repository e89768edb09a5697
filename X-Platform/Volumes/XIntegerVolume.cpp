#include "XIntegerVolume.h"

#include <memory>

#include "XStream.h"

template <typename T>
XIntegerVolume<T>::XIntegerVolume(const XIntegerVolume & aVolume)
    : XNumberVolume<T>(aVolume),
      itsLegacyLUT(aVolume.itsLegacyLUT ? std::make_unique<XIntToColourLUT>(*aVolume.itsLegacyLUT) : nullptr)
{
}

template <typename T>
XIntegerVolume<T>::~XIntegerVolume() = default;

template <typename T>
XIntegerVolume<T>::XIntegerVolume(XStream & aStream) : XNumberVolume<T>(aStream)
{
    if (XVolume::IsReadingLossyForm(aStream))
        return;
    if (XVolume::IsReadingLegacyImage(aStream))
    {
        ReadIntegerImageStream(aStream);
        return;
    }
    const XVersion word = XStorable::ReadLevelVersion(aStream, GetClassVersion());
    if (word.GetVersion() == 0)
        ReadLegacyTable(aStream);
}

template <typename T>
void XIntegerVolume<T>::ReadIntegerImageStream(XStream & aStream)
{
    // Legacy masks carry no table.
    if (aStream.GetLastClassCreated().IsA(XVersion(5)))
        return;
    XStorable::ReadClassVersion(aStream, GetClassVersion());
    ReadLegacyTable(aStream);
}

template <typename T>
void XIntegerVolume<T>::ReadLegacyTable(XStream & aStream)
{
    itsLegacyLUT.reset(aStream.ReadObjectAs<XIntToColourLUT>(XStorable::kNormal));
}

template <typename T>
void XIntegerVolume<T>::ApplyLegacyLUT()
{
    if (!itsLegacyLUT)
        return;
    this->GetPlaneRenderer().ApplyLUT(*itsLegacyLUT);
    itsLegacyLUT.reset();
    this->SetHadLegacyLUT(true);
}

template <typename T>
void XIntegerVolume<T>::ReadStream2(XStream & aStream, XStorable::XOptions anOptions)
{
    ReadStream2_XIntegerVolume(aStream, anOptions);
}

template <typename T>
void XIntegerVolume<T>::WriteStream2(XStream & aStream, XStorable::XOptions anOptions) const
{
    WriteStream2_XIntegerVolume(aStream, anOptions);
}

template <typename T>
void XIntegerVolume<T>::ReadStream2_XIntegerVolume(XStream & aStream, XStorable::XOptions anOptions)
{
    this->ReadStream2_XNumberVolume(aStream, anOptions);
    const XVersion word = XStorable::ReadLevelVersion(aStream, GetClassVersion());
    if (word.GetVersion() == 0)
        ReadLegacyTable(aStream);
}

template <typename T>
void XIntegerVolume<T>::WriteStream2_XIntegerVolume(XStream & aStream, XStorable::XOptions anOptions) const
{
    this->WriteStream2_XNumberVolume(aStream, anOptions);
    aStream.WriteVersion(GetClassVersion());
}

template class XIntegerVolume<UInt8>;
template class XIntegerVolume<UInt16>;
template class XIntegerVolume<UInt32>;
