#pragma once
// An object with an intrusive, thread-safe reference count. It deletes itself when the last
// reference goes. Held through XRefPtr<T>.

#include <atomic>

#include "XTypes.h"

class XRefCountable
{
public:
    XRefCountable() = default;
    // A copy starts with no references of its own.
    XRefCountable(const XRefCountable &) : itsRefCount(0) {}
    XRefCountable & operator=(const XRefCountable &) { return *this; }
    virtual ~XRefCountable();

    void AddReference() const { itsRefCount.fetch_add(1, std::memory_order_relaxed); }
    // Drops one reference and deletes the object when it was the last.
    void RemoveReference() const;
    UInt32 GetReferenceCount() const { return itsRefCount.load(std::memory_order_acquire); }

private:
    mutable std::atomic<UInt32> itsRefCount{0};
};
