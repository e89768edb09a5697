// libFuzzer target: outside bytes read as stored look-up tables (see XFuzzObjects.h). Each
// table read is used: searched, tested for monotonicity, copied and resampled, written back,
// read again and written again, which must give the same bytes.

#include "XFuzzObjects.h"

namespace
{
XMemoryHandle Stored(const XStorable & anObject)
{
    XMemoryHandle bytes;
    {
        XHandleStream out(bytes);
        out.WriteObject(anObject);
    }
    return bytes;
}

void ExerciseColours(const XIntToColourLUT & aTable)
{
    {
        XLock lock(aTable, kLockRead);
        for (UInt8 level : {0, 100, 255})
            if (aTable.ValueToIndex(XARGB32Colour(level)) >= aTable.GetSize() && !aTable.IsEmpty())
                __builtin_trap();
        if (const auto * real = dynamic_cast<const XFloatToColourLUT *>(&aTable); real != nullptr && !real->IsEmpty())
        {
            XARGB32Colour colour;
            real->ValueToColour(0.5, colour);
            real->ValueToColour(real->GetMax(), colour);
        }
    }
    for (UInt32 direction = 0; direction < 3; ++direction)
        aTable.IsMonotonic(direction);
    if (aTable.GetVectorOfColours().size() > 256)
        __builtin_trap();
    if (!aTable.IsEmpty())
    {
        XIntToColourLUT resampled(256);
        resampled = aTable;
    }
}

void Exercise(const XStorable & anObject)
{
    if (const auto * colours = dynamic_cast<const XIntToColourLUT *>(&anObject))
        ExerciseColours(*colours);
    else if (const auto * bytes = dynamic_cast<const XIntToIntLUT *>(&anObject))
    {
        XLock lock(*bytes, kLockRead);
        bytes->ValueToIndex(7);
    }
    else
        return;
    XMemoryHandle first = Stored(anObject);
    XHandleStream in(first);
    std::unique_ptr<XStorable> again(in.ReadStorable());
    if (!again || Stored(*again) != first)
        __builtin_trap();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t * aData, size_t aSize)
{
    return XFuzzObjects(aData, aSize, Exercise);
}
