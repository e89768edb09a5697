#pragma once
// A vector of owned pointers: the vector deletes what it holds when an element is erased,
// replaced or when the vector dies. It moves but does not copy.

#include <utility>
#include <vector>

#include "XTypes.h"

template <class T>
class XPtrVector
{
public:
    using iterator = typename std::vector<T *>::iterator;
    using const_iterator = typename std::vector<T *>::const_iterator;

    XPtrVector() = default;
    XPtrVector(const XPtrVector &) = delete;
    XPtrVector & operator=(const XPtrVector &) = delete;
    XPtrVector(XPtrVector && anOther) noexcept : itsItems(std::move(anOther.itsItems)) {}
    XPtrVector & operator=(XPtrVector && anOther) noexcept
    {
        if (this != &anOther)
        {
            Clear();
            itsItems = std::move(anOther.itsItems);
        }
        return *this;
    }
    ~XPtrVector() { Clear(); }

    // Takes ownership of anItem (which may be null).
    void push_back(T * anItem)
    {
        try
        {
            itsItems.push_back(anItem);
        }
        catch (...)
        {
            delete anItem;
            throw;
        }
    }
    UInt64 size() const { return itsItems.size(); }
    bool empty() const { return itsItems.empty(); }
    void reserve(UInt64 aCount) { itsItems.reserve(aCount); }
    T * operator[](UInt64 anIndex) const { return itsItems[anIndex]; }
    T * at(UInt64 anIndex) const { return itsItems.at(anIndex); }
    T * front() const { return itsItems.front(); }
    T * back() const { return itsItems.back(); }
    iterator begin() { return itsItems.begin(); }
    iterator end() { return itsItems.end(); }
    const_iterator begin() const { return itsItems.begin(); }
    const_iterator end() const { return itsItems.end(); }

    // Deletes the element at anIndex and puts anItem there.
    void Replace(UInt64 anIndex, T * anItem) { delete std::exchange(itsItems.at(anIndex), anItem); }
    // Deletes the element at anIndex and closes the gap.
    void Erase(UInt64 anIndex)
    {
        delete itsItems.at(anIndex);
        itsItems.erase(itsItems.begin() + static_cast<std::ptrdiff_t>(anIndex));
    }
    // Hands the element at anIndex to the caller and closes the gap.
    T * Release(UInt64 anIndex)
    {
        T * item = itsItems.at(anIndex);
        itsItems.erase(itsItems.begin() + static_cast<std::ptrdiff_t>(anIndex));
        return item;
    }
    void Clear()
    {
        for (T * item : itsItems)
            delete item;
        itsItems.clear();
    }

private:
    std::vector<T *> itsItems;
};
