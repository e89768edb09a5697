// libFuzzer target: outside bytes read as a stream of library objects (see XFuzzObjects.h).
// What is read is used: voxels locked, compared, written back and read again.

#include "XFuzzObjects.h"

namespace
{
void Exercise(const XStorable & anObject)
{
    const XVolume * volume = dynamic_cast<const XVolume *>(&anObject);
    if (volume == nullptr)
        return;
    {
        XLock lock(*volume, kLockRead);
    }
    if (!volume->operator==(*volume) && !volume->IsA(XVersion(XFPVolume::kClassID)))
        __builtin_trap();
    XMemoryHandle bytes;
    {
        XHandleStream out(bytes);
        out.WriteObject(*volume);
    }
    XHandleStream in(bytes);
    std::unique_ptr<XStorable> again(in.ReadStorable());
    if (!again)
        __builtin_trap();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t * aData, size_t aSize)
{
    return XFuzzObjects(aData, aSize, Exercise);
}
