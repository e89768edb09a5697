#include "XIntegerVolume.h"

#include <memory>

#include "XException.h"
#include "XStream.h"

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
    std::unique_ptr<XStorable> table(aStream.ReadStorable(XStorable::kNormal));
    if (table)
        throw XException(kErrUnknownClass, "volume stream with a look-up table of an old version, which this "
                                           "version cannot turn into a renderer");
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
