// The resource tracker: counts and bytes by kind, kept right by threads and stopping at zero.

#include <gtest/gtest.h>

#include "XFoundationTestSupport.h"
#include "XResourceTracker.h"

TEST(ResourceTrackerTest, ThreadsBalanceOutAndRemovalsStopAtZero)
{
    // The tracker lives as long as the process: a kind of this run's own.
    static int sRun = 0;
    const std::string kind = "TrackerTest" + std::to_string(++sRun);
    XResourceTracker & tracker = XResourceTracker::GetTracker();
    RunOnThreads(4, [&tracker, &kind](int) {
        XResourceTracker::XCounter & counter = tracker.GetCounter(kind);
        for (int i = 0; i < 10000; ++i)
        {
            tracker.AddResource(kind, 8);
            counter.Remove(8);
        }
    });
    tracker.AddResource(kind.c_str(), 1000);
    tracker.AddResource(XString(kind), 24);
    tracker.RemoveResource(kind, 1000);
    XResourceTracker::XCounter & counter = tracker.GetCounter(kind);
    EXPECT_EQ(counter.GetCount(), 1u);
    EXPECT_EQ(counter.GetBytes(), 24u);
    EXPECT_EQ(counter.GetTotalAdded(), 40002u);
    EXPECT_LE(counter.GetPeakCount(), 4u);
    EXPECT_EQ(counter.GetUnbalancedRemovals(), 0u);
    EXPECT_NE(tracker.Describe().GetStdString().find(kind + ": 1 (24 bytes, peak "), std::string::npos);

    // Removing more than there is stops at zero and is counted.
    counter.Remove(30);
    EXPECT_EQ(counter.GetBytes(), 0u);
    counter.Remove();
    EXPECT_EQ(counter.GetCount(), 0u);
    EXPECT_EQ(counter.GetUnbalancedRemovals(), 2u);
    EXPECT_EQ(tracker.Describe().GetStdString().find(kind), std::string::npos); // no live objects
}
