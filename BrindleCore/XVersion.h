#pragma once
// A class word: the class identifier in the low 16 bits and the version of that class's stream
// form in the high 16 bits. 65641 is class 105, version 1.

#include "XTypes.h"

class XVersion
{
public:
    constexpr XVersion() : itsWord(0) {}
    constexpr XVersion(UInt32 aWord) : itsWord(aWord) {} // NOLINT: words are written as numbers
    constexpr XVersion(UInt32 aClass, UInt32 aVersion)
        : itsWord((aVersion << 16) | (aClass & 0xFFFFu))
    {
    }

    constexpr UInt32 GetWord() const { return itsWord; }
    constexpr UInt32 GetClass() const { return itsWord & 0xFFFFu; }
    constexpr UInt32 GetVersion() const { return itsWord >> 16; }
    constexpr bool IsNull() const { return itsWord == 0; }

    // True for the same class, an old identifier (alias) of it, or a class that inherits from
    // it, as the class registry knows them. Versions are not compared.
    bool IsA(const XVersion & aBase) const;

    constexpr bool operator==(const XVersion & anOther) const { return itsWord == anOther.itsWord; }
    constexpr bool operator!=(const XVersion & anOther) const { return itsWord != anOther.itsWord; }

private:
    UInt32 itsWord;
};
