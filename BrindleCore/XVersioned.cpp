#include "XVersioned.h"

#include "XClassRegistry.h"

XVersioned::~XVersioned() = default;

bool XVersion::IsA(const XVersion & aBase) const
{
    return XClassRegistry::IsA(*this, aBase);
}
