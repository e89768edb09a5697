#include "XRefPtrBase.h"

XRefPtrBase::XRefPtrBase(const XRefCountable * anObject) : itsObject(anObject)
{
    if (itsObject != nullptr)
        itsObject->AddReference();
}

XRefPtrBase::XRefPtrBase(const XRefPtrBase & anOther) : XRefPtrBase(anOther.itsObject) {}

XRefPtrBase::XRefPtrBase(XRefPtrBase && anOther) noexcept
    : itsObject(std::exchange(anOther.itsObject, nullptr))
{
}

XRefPtrBase & XRefPtrBase::operator=(const XRefPtrBase & anOther)
{
    Reset(anOther.itsObject);
    return *this;
}

XRefPtrBase & XRefPtrBase::operator=(XRefPtrBase && anOther) noexcept
{
    if (this != &anOther)
    {
        const XRefCountable * old = std::exchange(itsObject, std::exchange(anOther.itsObject, nullptr));
        if (old != nullptr)
            old->RemoveReference();
    }
    return *this;
}

XRefPtrBase::~XRefPtrBase()
{
    if (itsObject != nullptr)
        itsObject->RemoveReference();
}

void XRefPtrBase::Reset(const XRefCountable * anObject)
{
    if (anObject != nullptr)
        anObject->AddReference();
    const XRefCountable * old = std::exchange(itsObject, anObject);
    if (old != nullptr)
        old->RemoveReference();
}
