#pragma once
// An ordered set of values.

#include <set>

template <class T>
class XSet : public std::set<T>
{
public:
    using std::set<T>::set;
    XSet() = default;

    bool Contains(const T & aValue) const { return this->find(aValue) != this->end(); }
    // True when the value was not in the set before.
    bool Add(const T & aValue) { return this->insert(aValue).second; }
    bool Remove(const T & aValue) { return this->erase(aValue) != 0; }
};
