#pragma once
// Base of every object that names its class with an XVersion.

#include "XVersion.h"

class XVersioned
{
public:
    XVersioned() = default;
    XVersioned(const XVersioned &) = default;
    XVersioned & operator=(const XVersioned &) = default;
    virtual ~XVersioned();

    virtual XVersion GetVersion() const = 0;

    bool IsA(const XVersion & aBase) const { return GetVersion().IsA(aBase); }
    bool IsA(const XVersioned & aBase) const { return GetVersion().IsA(aBase.GetVersion()); }
};
