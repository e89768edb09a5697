// libFuzzer target: outside bytes read as a stream of library objects. The first byte picks the
// byte order and the stream format (current forms or the older ones that the stream
// constructors read); the rest is objects, read one after the other until the stream ends or
// refuses them. What is read is used: voxels locked, compared, written back and read again.
//
// A damaged stream must end in an XException; anything else (a crash, a sanitizer report, an
// XInternalError, a hang, a huge allocation) is a finding.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "BrindleImaging.h"

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
    static const bool sRegistered = [] {
        XRegisterImagingClasses();
        return true;
    }();
    (void)sRegistered;
    if (aSize < 1)
        return 0;
    XMemoryHandle handle(aSize - 1);
    {
        XLock lock(handle, kLockWrite);
        if (aSize > 1)
            std::memcpy(handle.GetData(), aData + 1, aSize - 1);
    }
    XHandleStream stream(handle);
    stream.SetByteOrder((aData[0] & 1) != 0 ? kBigEndian : kLittleEndian);
    if ((aData[0] & 2) != 0)
        stream.SetFormatVersion(1, 0);
    try
    {
        for (int i = 0; i < 8 && stream.GetBytesLeft() > 0; ++i)
        {
            std::unique_ptr<XStorable> object(stream.ReadStorable());
            if (object)
                Exercise(*object);
        }
    }
    catch (const XException &)
    {
    }
    return 0;
}
