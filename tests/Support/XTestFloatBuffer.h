#pragma once
// An array of floats that starts a chosen number of floats after a 16-byte boundary, in a heap
// block of exactly that size, so that AddressSanitizer sees any read or write past its end.

#include <cstddef>
#include <initializer_list>
#include <new>

#include "XTypes.h"

class XTestFloatBuffer
{
public:
    XTestFloatBuffer(UInt64 aCount, UInt64 anOffset)
        : itsBlock(static_cast<float *>(
              ::operator new[]((aCount + anOffset) * sizeof(float), std::align_val_t(16)))),
          itsData(itsBlock + anOffset), itsCount(aCount)
    {
        for (UInt64 i = 0; i < aCount; ++i)
            itsData[i] = 0.f;
    }
    XTestFloatBuffer(std::initializer_list<float> someValues, UInt64 anOffset = 0)
        : XTestFloatBuffer(someValues.size(), anOffset)
    {
        UInt64 i = 0;
        for (float value : someValues)
            itsData[i++] = value;
    }
    XTestFloatBuffer(const XTestFloatBuffer &) = delete;
    XTestFloatBuffer & operator=(const XTestFloatBuffer &) = delete;
    ~XTestFloatBuffer() { ::operator delete[](itsBlock, std::align_val_t(16)); }

    float * Data() { return itsData; }
    operator float *() { return itsData; } // NOLINT: passes as the array it is
    float & operator[](UInt64 anIndex) { return itsData[anIndex]; }
    UInt64 Count() const { return itsCount; }

private:
    float * itsBlock;
    float * itsData;
    UInt64 itsCount;
};
