#pragma once
// The integer volumes (unsigned char, unsigned short, 32-bit unsigned). Streams of version 0
// of this level carried a look-up table, which the concrete class turns into its renderer.
//
// Stream level (class 104, version 1): the class word alone.

#include "XNumberVolume.h"

template <typename T>
class XIntegerVolume : public XNumberVolume<T>
{
public:
    static constexpr UInt32 kClassID = 104;
    static XVersion GetClassVersion() { return XVersion(kClassID, 1); }
    static XVersion GetSuperClassVersion() { return XNumberVolume<T>::GetClassVersion(); }

    void CopyFrom(const XVolume & aSource) override { XPackedVolume<T>::CopyFrom(aSource); }
    void ReadStream2(XStream & aStream, XStorable::XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XStorable::XOptions anOptions) const override;

protected:
    XIntegerVolume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth) : XNumberVolume<T>(aWidth, aHeight, aDepth) {}
    explicit XIntegerVolume(const X3DRect & aBounds) : XNumberVolume<T>(aBounds) {}
    XIntegerVolume(const XIntegerVolume &) = default;
    explicit XIntegerVolume(XStream & aStream);

    void ReadStream2_XIntegerVolume(XStream & aStream, XStorable::XOptions anOptions);
    void WriteStream2_XIntegerVolume(XStream & aStream, XStorable::XOptions anOptions) const;
    // A legacy image's table: the word, then the table object, except for legacy masks.
    void ReadIntegerImageStream(XStream & aStream);

private:
    // The table of an old stream, which this version cannot turn into a renderer yet.
    static void ReadLegacyTable(XStream & aStream);
};

extern template class XIntegerVolume<UInt8>;
extern template class XIntegerVolume<UInt16>;
extern template class XIntegerVolume<UInt32>;
