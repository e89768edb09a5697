#pragma once
// Counts of live objects by kind ("XVolume", "XMemoryHandle", ...), with the bytes they hold:
// constructors call AddResource, destructors RemoveResource. Used to spot leaks and to report
// how much a process holds. Thread-safe.
//
// Cost: AddResource and RemoveResource by name look the kind up under a mutex (no allocation
// once the kind is known). Hot code asks once for the kind's counter and then only touches its
// atomics:
//     static XResourceTracker::XCounter & sCounter = XResourceTracker::GetTracker().GetCounter("XVolume");
//     sCounter.Add(bytes);
// Counters live as long as the process; the tracker itself is never destroyed, so objects
// destroyed during shut-down may still remove themselves.

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "XString.h"
#include "XTypes.h"

class XResourceTracker
{
public:
    // The counts of one kind. A removal beyond what was added is not counted (the count stays at
    // zero) but noted in GetUnbalancedRemovals: a destructor must never fail.
    class XCounter
    {
    public:
        void Add(UInt64 aBytes = 0);
        void Remove(UInt64 aBytes = 0);

        UInt64 GetCount() const { return itsCount.load(std::memory_order_relaxed); }
        UInt64 GetBytes() const { return itsBytes.load(std::memory_order_relaxed); }
        // The largest count seen, and how many were added in all.
        UInt64 GetPeakCount() const { return itsPeakCount.load(std::memory_order_relaxed); }
        UInt64 GetTotalAdded() const { return itsTotalAdded.load(std::memory_order_relaxed); }
        UInt64 GetUnbalancedRemovals() const { return itsUnbalanced.load(std::memory_order_relaxed); }

    private:
        static bool SubtractDown(std::atomic<UInt64> & aValue, UInt64 anAmount);

        std::atomic<UInt64> itsCount{0};
        std::atomic<UInt64> itsBytes{0};
        std::atomic<UInt64> itsPeakCount{0};
        std::atomic<UInt64> itsTotalAdded{0};
        std::atomic<UInt64> itsUnbalanced{0};
    };

    // One line of a snapshot.
    struct XRecord
    {
        XString itsKind;
        UInt64 itsCount = 0;
        UInt64 itsBytes = 0;
        UInt64 itsPeakCount = 0;
        UInt64 itsTotalAdded = 0;
    };

    static XResourceTracker & GetTracker();

    // The counter of aKind, made at the first call; the reference stays valid for ever.
    XCounter & GetCounter(std::string_view aKind);

    void AddResource(std::string_view aKind, UInt64 aBytes = 0) { GetCounter(aKind).Add(aBytes); }
    void AddResource(const char * aKind, UInt64 aBytes = 0) { GetCounter(aKind).Add(aBytes); }
    void RemoveResource(std::string_view aKind, UInt64 aBytes = 0) { GetCounter(aKind).Remove(aBytes); }
    void RemoveResource(const char * aKind, UInt64 aBytes = 0) { GetCounter(aKind).Remove(aBytes); }

    // Live count and bytes of aKind; zero for a kind never seen.
    UInt64 GetCount(std::string_view aKind) const;
    UInt64 GetBytes(std::string_view aKind) const;

    // Every kind seen, sorted by name.
    std::vector<XRecord> GetSnapshot() const;
    // The snapshot as text, one "kind: count (bytes bytes, peak count)" line per kind with live
    // objects.
    XString Describe() const;

    XResourceTracker(const XResourceTracker &) = delete;
    XResourceTracker & operator=(const XResourceTracker &) = delete;

private:
    XResourceTracker() = default;
    ~XResourceTracker() = default;

    const XCounter * FindCounter(std::string_view aKind) const;

    mutable std::mutex itsMutex;
    std::map<std::string, std::unique_ptr<XCounter>, std::less<>> itsCounters;
};
