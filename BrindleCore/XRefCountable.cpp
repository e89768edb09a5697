#include "XRefCountable.h"

#include "XAssert.h"

XRefCountable::~XRefCountable() = default;

void XRefCountable::RemoveReference() const
{
    UInt32 previous = itsRefCount.fetch_sub(1, std::memory_order_acq_rel);
    XAssertText(previous != 0, "reference count of an object without references");
    if (previous == 1)
        delete this;
}
