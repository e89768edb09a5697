#include "XResourceTracker.h"

void XResourceTracker::XCounter::Add(UInt64 aBytes)
{
    UInt64 count = itsCount.fetch_add(1, std::memory_order_relaxed) + 1;
    itsBytes.fetch_add(aBytes, std::memory_order_relaxed);
    itsTotalAdded.fetch_add(1, std::memory_order_relaxed);
    UInt64 peak = itsPeakCount.load(std::memory_order_relaxed);
    while (count > peak && !itsPeakCount.compare_exchange_weak(peak, count, std::memory_order_relaxed))
    {
    }
}

void XResourceTracker::XCounter::Remove(UInt64 aBytes)
{
    bool balanced = SubtractDown(itsCount, 1);
    balanced = SubtractDown(itsBytes, aBytes) && balanced;
    if (!balanced)
        itsUnbalanced.fetch_add(1, std::memory_order_relaxed);
}

// Subtracts anAmount, stopping at zero; false if the value was smaller than anAmount.
bool XResourceTracker::XCounter::SubtractDown(std::atomic<UInt64> & aValue, UInt64 anAmount)
{
    UInt64 value = aValue.load(std::memory_order_relaxed);
    for (;;)
    {
        UInt64 next = value >= anAmount ? value - anAmount : 0;
        if (aValue.compare_exchange_weak(value, next, std::memory_order_relaxed))
            return value >= anAmount;
    }
}

XResourceTracker & XResourceTracker::GetTracker()
{
    // Never destroyed: destructors of static objects may still report to it.
    static XResourceTracker * sTracker = new XResourceTracker;
    return *sTracker;
}

XResourceTracker::XCounter & XResourceTracker::GetCounter(std::string_view aKind)
{
    std::lock_guard<std::mutex> guard(itsMutex);
    auto found = itsCounters.find(aKind);
    if (found == itsCounters.end())
        found = itsCounters.emplace(std::string(aKind), std::make_unique<XCounter>()).first;
    return *found->second;
}

const XResourceTracker::XCounter * XResourceTracker::FindCounter(std::string_view aKind) const
{
    auto found = itsCounters.find(aKind);
    return found == itsCounters.end() ? nullptr : found->second.get();
}

UInt64 XResourceTracker::GetCount(std::string_view aKind) const
{
    std::lock_guard<std::mutex> guard(itsMutex);
    const XCounter * counter = FindCounter(aKind);
    return counter != nullptr ? counter->GetCount() : 0;
}

UInt64 XResourceTracker::GetBytes(std::string_view aKind) const
{
    std::lock_guard<std::mutex> guard(itsMutex);
    const XCounter * counter = FindCounter(aKind);
    return counter != nullptr ? counter->GetBytes() : 0;
}

std::vector<XResourceTracker::XRecord> XResourceTracker::GetSnapshot() const
{
    std::lock_guard<std::mutex> guard(itsMutex);
    std::vector<XRecord> records;
    records.reserve(itsCounters.size());
    for (const auto & [kind, counter] : itsCounters)
    {
        XRecord record;
        record.itsKind = XString(kind);
        record.itsCount = counter->GetCount();
        record.itsBytes = counter->GetBytes();
        record.itsPeakCount = counter->GetPeakCount();
        record.itsTotalAdded = counter->GetTotalAdded();
        records.push_back(record);
    }
    return records;
}

XString XResourceTracker::Describe() const
{
    std::string text;
    for (const XRecord & record : GetSnapshot())
    {
        if (record.itsCount == 0)
            continue;
        text += record.itsKind.GetStdString() + ": " + std::to_string(record.itsCount) + " (" +
                std::to_string(record.itsBytes) + " bytes, peak " +
                std::to_string(record.itsPeakCount) + ")\n";
    }
    return XString(text);
}
