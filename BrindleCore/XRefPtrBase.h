#pragma once
// Smart pointers over XRefCountable objects. XRefPtrBase holds the untyped reference;
// XRefPtr<T> adds the typed access.

#include <utility>

#include "XRefCountable.h"

class XRefPtrBase
{
public:
    XRefPtrBase() = default;
    explicit XRefPtrBase(const XRefCountable * anObject);
    XRefPtrBase(const XRefPtrBase & anOther);
    XRefPtrBase(XRefPtrBase && anOther) noexcept;
    XRefPtrBase & operator=(const XRefPtrBase & anOther);
    XRefPtrBase & operator=(XRefPtrBase && anOther) noexcept;
    ~XRefPtrBase();

    void Reset(const XRefCountable * anObject = nullptr);
    bool IsNull() const { return itsObject == nullptr; }
    explicit operator bool() const { return itsObject != nullptr; }

protected:
    const XRefCountable * GetObject() const { return itsObject; }

private:
    const XRefCountable * itsObject = nullptr;
};

template <class T>
class XRefPtr : public XRefPtrBase
{
public:
    XRefPtr() = default;
    explicit XRefPtr(T * anObject) : XRefPtrBase(anObject) {}

    T * Get() const { return const_cast<T *>(static_cast<const T *>(GetObject())); }
    T * operator->() const { return Get(); }
    T & operator*() const { return *Get(); }
    bool operator==(const XRefPtr & anOther) const { return Get() == anOther.Get(); }
};
