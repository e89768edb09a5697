#pragma once
// The integer volumes (unsigned char, unsigned short, 32-bit unsigned). Streams of version 0
// of this level, and legacy images, carried a look-up table: it is kept as the legacy table
// until the concrete class applies it to its renderer (ApplyLegacyLUT), which marks the volume
// as having had a legacy table. A volume without a renderer (32-bit grey) keeps it.
//
// Stream level (class 104, version 1): the class word alone.

#include <memory>

#include "XIntToColourLUT.h"
#include "XNumberVolume.h"

template <typename T>
class XIntegerVolume : public XNumberVolume<T>
{
public:
    static constexpr UInt32 kClassID = 104;
    static XVersion GetClassVersion() { return XVersion(kClassID, 1); }
    static XVersion GetSuperClassVersion() { return XNumberVolume<T>::GetClassVersion(); }

    ~XIntegerVolume() override;

    void CopyFrom(const XVolume & aSource) override { XPackedVolume<T>::CopyFrom(aSource); }
    void ReadStream2(XStream & aStream, XStorable::XOptions anOptions) override;
    void WriteStream2(XStream & aStream, XStorable::XOptions anOptions) const override;

    // The renderer's palette (XImageRenderer::GetLUT).
    XIntToColourLUT GetLUT() const { return this->GetPlaneRenderer().GetLUT(); }
    // The renderer takes its settings from a palette (XImageRenderer::ApplyLUT).
    void ApplyLUT(const XIntToColourLUT & aTable) { this->GetPlaneRenderer().ApplyLUT(aTable); }
    // The table that a stream carried and that no renderer has taken; null when there is none.
    const XIntToColourLUT * GetLegacyLUT() const { return itsLegacyLUT.get(); }

protected:
    XIntegerVolume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth) : XNumberVolume<T>(aWidth, aHeight, aDepth) {}
    explicit XIntegerVolume(const X3DRect & aBounds) : XNumberVolume<T>(aBounds) {}
    // Copies the legacy table too.
    XIntegerVolume(const XIntegerVolume & aVolume);
    explicit XIntegerVolume(XStream & aStream);

    void ReadStream2_XIntegerVolume(XStream & aStream, XStorable::XOptions anOptions);
    void WriteStream2_XIntegerVolume(XStream & aStream, XStorable::XOptions anOptions) const;
    // A legacy image's table: the word, then the table object, except for legacy masks.
    void ReadIntegerImageStream(XStream & aStream);
    // When a stream carried a table: the renderer takes its settings from it, the table goes
    // and the volume is marked as having had a legacy table.
    void ApplyLegacyLUT();

private:
    // Reads the table object (which may be null) into the legacy table.
    void ReadLegacyTable(XStream & aStream);

    std::unique_ptr<XIntToColourLUT> itsLegacyLUT;
};

extern template class XIntegerVolume<UInt8>;
extern template class XIntegerVolume<UInt16>;
extern template class XIntegerVolume<UInt32>;
