#include "XClassRegistry.h"

#include <algorithm>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>
#include <vector>

#include "XException.h"
#include "XStream.h"

namespace
{
struct XEntry
{
    XClassRegistry::XStreamCreator itsStreamCreator = nullptr;
    XClassRegistry::XReadCreator itsReadCreator = nullptr;
    XClassRegistry::XDefaultCreator itsDefaultCreator = nullptr;
    std::string itsDescription;
    bool itsRegistered = false;
    UInt32 itsAliasOf = 0;        // the current class of an old identifier, else 0
    std::vector<UInt32> itsParents; // classes this one inherits from
};

struct XTable
{
    std::shared_mutex itsMutex;
    std::unordered_map<UInt32, XEntry> itsEntries;
};

XTable & Table()
{
    static XTable sTable;
    return sTable;
}

void AddParent(XEntry & anEntry, UInt32 aParent)
{
    if (std::find(anEntry.itsParents.begin(), anEntry.itsParents.end(), aParent) ==
        anEntry.itsParents.end())
        anEntry.itsParents.push_back(aParent);
}

// Walks from aClass through aliases and parents; the table is read-locked by the caller.
bool Reaches(const XTable & aTable, UInt32 aClass, UInt32 aBase)
{
    std::vector<UInt32> pending{aClass};
    std::vector<UInt32> seen;
    while (!pending.empty())
    {
        UInt32 current = pending.back();
        pending.pop_back();
        if (current == aBase)
            return true;
        if (std::find(seen.begin(), seen.end(), current) != seen.end())
            continue;
        seen.push_back(current);
        auto found = aTable.itsEntries.find(current);
        if (found == aTable.itsEntries.end())
            continue;
        if (found->second.itsAliasOf != 0)
            pending.push_back(found->second.itsAliasOf);
        pending.insert(pending.end(), found->second.itsParents.begin(),
                       found->second.itsParents.end());
    }
    return false;
}

// The entry that makes aClass's objects: aliases followed. Null if none is registered.
const XEntry * FindCreatorEntry(const XTable & aTable, UInt32 aClass)
{
    for (UInt32 step = 0; step < 64; ++step)
    {
        auto found = aTable.itsEntries.find(aClass);
        if (found == aTable.itsEntries.end())
            return nullptr;
        if (found->second.itsRegistered || found->second.itsAliasOf == 0)
            return found->second.itsRegistered ? &found->second : nullptr;
        aClass = found->second.itsAliasOf;
    }
    return nullptr;
}
} // namespace

void XClassRegistry::RegisterClassA(XVersion aClass, XVersion aSuper,
                                    XStreamCreator aStreamCreator, XReadCreator aReadCreator,
                                    XDefaultCreator aDefaultCreator, const XString & aDescription)
{
    XTable & table = Table();
    std::unique_lock<std::shared_mutex> guard(table.itsMutex);
    XEntry & entry = table.itsEntries[aClass.GetClass()];
    entry.itsRegistered = true;
    if (entry.itsStreamCreator == nullptr)
        entry.itsStreamCreator = aStreamCreator;
    if (entry.itsReadCreator == nullptr)
        entry.itsReadCreator = aReadCreator;
    if (entry.itsDefaultCreator == nullptr)
        entry.itsDefaultCreator = aDefaultCreator;
    if (!aDescription.IsEmpty())
        entry.itsDescription = aDescription.GetStdString();
    if (!aSuper.IsNull() && aSuper.GetClass() != aClass.GetClass())
        AddParent(entry, aSuper.GetClass());
}

void XClassRegistry::RegisterInheritance(XVersion aClass, XVersion aParent)
{
    XTable & table = Table();
    std::unique_lock<std::shared_mutex> guard(table.itsMutex);
    if (aClass.GetClass() != aParent.GetClass())
        AddParent(table.itsEntries[aClass.GetClass()], aParent.GetClass());
}

void XClassRegistry::RegisterAlias(XVersion anOld, XVersion aCurrent)
{
    XTable & table = Table();
    std::unique_lock<std::shared_mutex> guard(table.itsMutex);
    if (anOld.GetClass() != aCurrent.GetClass())
        table.itsEntries[anOld.GetClass()].itsAliasOf = aCurrent.GetClass();
}

bool XClassRegistry::IsA(XVersion aClass, XVersion aBase)
{
    if (aClass.GetClass() == aBase.GetClass())
        return true;
    XTable & table = Table();
    std::shared_lock<std::shared_mutex> guard(table.itsMutex);
    return Reaches(table, aClass.GetClass(), aBase.GetClass());
}

bool XClassRegistry::IsOldIdentifier(XVersion aClass)
{
    XTable & table = Table();
    std::shared_lock<std::shared_mutex> guard(table.itsMutex);
    auto found = table.itsEntries.find(aClass.GetClass());
    return found != table.itsEntries.end() && found->second.itsAliasOf != 0;
}

UInt32 XClassRegistry::GetCurrentClass(XVersion aClass)
{
    XTable & table = Table();
    std::shared_lock<std::shared_mutex> guard(table.itsMutex);
    UInt32 current = aClass.GetClass();
    for (UInt32 step = 0; step < 64; ++step)
    {
        auto found = table.itsEntries.find(current);
        if (found == table.itsEntries.end() || found->second.itsAliasOf == 0)
            break;
        current = found->second.itsAliasOf;
    }
    return current;
}

bool XClassRegistry::IsRegistered(XVersion aClass)
{
    XTable & table = Table();
    std::shared_lock<std::shared_mutex> guard(table.itsMutex);
    return FindCreatorEntry(table, aClass.GetClass()) != nullptr;
}

XString XClassRegistry::GetDescription(XVersion aClass)
{
    XTable & table = Table();
    std::shared_lock<std::shared_mutex> guard(table.itsMutex);
    const XEntry * entry = FindCreatorEntry(table, aClass.GetClass());
    if (entry == nullptr || entry->itsDescription.empty())
        return XString("Class " + std::to_string(aClass.GetClass()));
    return XString(entry->itsDescription);
}

XStorable * XClassRegistry::CreateObject(XVersion aClass, XStream & aStream, XVersion aVersion,
                                         XStorable::XOptions anOptions)
{
    XStreamCreator streamCreator = nullptr;
    XReadCreator readCreator = nullptr;
    bool oldIdentifier = false;
    {
        XTable & table = Table();
        std::shared_lock<std::shared_mutex> guard(table.itsMutex);
        const XEntry * entry = FindCreatorEntry(table, aClass.GetClass());
        if (entry != nullptr)
        {
            streamCreator = entry->itsStreamCreator;
            readCreator = entry->itsReadCreator;
        }
        auto found = table.itsEntries.find(aClass.GetClass());
        oldIdentifier = found != table.itsEntries.end() && found->second.itsAliasOf != 0;
    }
    const bool currentForm = !oldIdentifier && aStream.GetFormatMajorVersion() >= kCurrentFormMajorVersion;
    if (readCreator != nullptr && (currentForm || streamCreator == nullptr))
        return readCreator(aStream, aVersion, anOptions);
    if (streamCreator != nullptr)
        return streamCreator(aStream, aVersion, anOptions);
    throw XException(kErrUnknownClass,
                     "no reader for class " + std::to_string(aClass.GetClass()) + " (word " +
                         std::to_string(aClass.GetWord()) + ")");
}

XStorable * XClassRegistry::CreateObject(XVersion aClass)
{
    XDefaultCreator creator = nullptr;
    {
        XTable & table = Table();
        std::shared_lock<std::shared_mutex> guard(table.itsMutex);
        const XEntry * entry = FindCreatorEntry(table, aClass.GetClass());
        if (entry != nullptr)
            creator = entry->itsDefaultCreator;
    }
    if (creator == nullptr)
        throw XException(kErrUnknownClass,
                         "no default creator for class " + std::to_string(aClass.GetClass()));
    return creator();
}
