// The resource tracker: counts and bytes by kind, peaks, unbalanced removals and threads.

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "XResourceTracker.h"

namespace
{
// The tracker lives as long as the process: each test (and each repetition of it) counts under
// kinds of its own.
std::string MakeKind(const std::string & aName)
{
    static std::atomic<int> sRun{0};
    return "TrackerTest" + std::to_string(++sRun) + aName;
}
} // namespace

TEST(ResourceTrackerTest, CountsLiveObjectsByKindAndStopsAtZero)
{
    const std::string volume = MakeKind("Volume");
    const std::string region = MakeKind("Region");
    XResourceTracker & tracker = XResourceTracker::GetTracker();
    tracker.AddResource(volume.c_str(), 1000);
    tracker.AddResource(volume, 24);
    tracker.AddResource(XString(region));
    tracker.RemoveResource(volume, 1000);
    EXPECT_EQ(tracker.GetCount(volume), 1u);
    EXPECT_EQ(tracker.GetBytes(volume), 24u);
    EXPECT_EQ(tracker.GetCount(region), 1u);
    EXPECT_EQ(tracker.GetCount(MakeKind("NeverSeen")), 0u);
    XResourceTracker::XCounter & counter = tracker.GetCounter(volume);
    EXPECT_EQ(counter.GetPeakCount(), 2u);
    EXPECT_EQ(counter.GetTotalAdded(), 2u);
    EXPECT_NE(tracker.Describe().GetStdString().find(volume + ": 1 (24 bytes, peak 2)\n"), std::string::npos);
    tracker.RemoveResource(volume, 24);
    tracker.RemoveResource(region);
    // Kinds without live objects are left out.
    EXPECT_EQ(tracker.Describe().GetStdString().find(volume), std::string::npos);

    // Removing more than there is stops at zero and is counted.
    counter.Add(10);
    counter.Remove(30);
    EXPECT_EQ(counter.GetCount(), 0u);
    EXPECT_EQ(counter.GetBytes(), 0u);
    counter.Remove();
    EXPECT_EQ(counter.GetCount(), 0u);
    EXPECT_EQ(counter.GetUnbalancedRemovals(), 2u);
}

TEST(ResourceTrackerTest, ThreadsBalanceOut)
{
    const std::string kind = MakeKind("Threads");
    XResourceTracker & tracker = XResourceTracker::GetTracker();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&tracker, &kind] {
            XResourceTracker::XCounter & counter = tracker.GetCounter(kind);
            for (int i = 0; i < 10000; ++i)
            {
                tracker.AddResource(kind, 8);
                counter.Remove(8);
            }
        });
    for (std::thread & thread : threads)
        thread.join();
    XResourceTracker::XCounter & counter = tracker.GetCounter(kind);
    EXPECT_EQ(counter.GetCount(), 0u);
    EXPECT_EQ(counter.GetBytes(), 0u);
    EXPECT_EQ(counter.GetTotalAdded(), 40000u);
    EXPECT_LE(counter.GetPeakCount(), 4u);
    EXPECT_EQ(counter.GetUnbalancedRemovals(), 0u);
}
