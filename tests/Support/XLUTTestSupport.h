#pragma once
// Tables made from and read back into plain vectors of entries.

#include <vector>

#include "XLUT.h"
#include "XLock.h"

template <class Table>
void XSetEntries(Table & aTable, const std::vector<typename Table::XEntry> & anEntries)
{
    XLock lock(aTable, kLockReadWrite);
    for (UInt32 i = 0; i < anEntries.size(); ++i)
        aTable.SetValue(i, anEntries[i]);
}

template <class Table>
Table XMakeTable(const std::vector<typename Table::XEntry> & anEntries)
{
    Table table(UInt32(anEntries.size()));
    XSetEntries(table, anEntries);
    return table;
}

template <class Table>
std::vector<typename Table::XEntry> XGetEntries(const Table & aTable)
{
    const XLUT<typename Table::XEntry> & table = aTable;
    XLock lock(table, kLockRead);
    std::vector<typename Table::XEntry> entries;
    for (UInt32 i = 0; i < table.GetSize(); ++i)
        entries.push_back(table.IndexToValue(i));
    return entries;
}
