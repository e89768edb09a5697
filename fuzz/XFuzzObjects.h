#pragma once
// The frame of the fuzz targets that read object streams. The first byte of the input picks
// the byte order (bit 0: big-endian) and the stream format (bit 1: the older format, whose
// objects the classes' stream constructors read); the rest is objects, read one after the
// other, at most eight, until the stream ends or refuses them. Each object read goes to
// anExercise. A refusal must be an XException: anything else (a crash, a sanitizer report, an
// XInternalError, a hang, a huge allocation) is a finding.

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "BrindleImaging.h"

template <class Exercise>
int XFuzzObjects(const uint8_t * aData, size_t aSize, Exercise anExercise)
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
                anExercise(*object);
        }
    }
    catch (const XException &)
    {
    }
    return 0;
}
