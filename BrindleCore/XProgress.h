#pragma once
// Progress of a long run: made on the stack with the number of steps, ticked once per step,
// destroyed at the end (normally or by an exception). Reports go to the XProgressStrategy in
// force on the thread (silent unless one is set).
//
//     XProgress progress(planeCount, 3, 2000, false);
//     for (...) { ...; progress.Increment(); }
//
// Arguments:
//   aTotal     the number of steps (0 is allowed; the fraction is then 1, or unknown for the
//              indeterminate type).
//   aType      how it is shown:
//                0 kProgressHidden          counts but reports nothing (and, outermost,
//                                           cannot be cancelled: it asks no strategy)
//                1 kProgressIndeterminate   activity and message, no fraction
//                2 kProgressDeterminate     fraction of the total
//                3 kProgressWithEstimate    fraction and an estimate of the time left (the usual)
//   aDelayMs   milliseconds from the making of the progress before it is shown at all, so that
//              short runs never flash a bar (2000 is usual; 0 shows it at the first report).
//   aCanCancel whether the run may be cancelled through the strategy: a cancellable progress
//              asks XProgressStrategy::IsCancelRequested at each report step and throws
//              XException kErrThreadStopped (1010) from Increment or SetProgress when asked to.
//
// Cost: Increment is an add and a compare; every 1/1000 of the total (every step for totals
// under 1000, every 64 steps for the indeterminate type) it does more: the cancel question and
// a look at the clock, and it calls the strategy at most every GetReportIntervalMs().
//
// Nesting: a progress made while another is alive on the same thread is a part of it. It fills
// the span of one step of the enclosing progress, so a tool that runs a tool reports one smooth
// fraction. Only the outermost progress talks to the strategy: its strategy, type, delay and
// task identity are the task's. The message shown is the innermost message that was set by a
// progress that is not hidden; a hidden or indeterminate inner progress does not move the
// fraction between the steps of the enclosing one. Progress objects belong to the thread that
// made them and are destroyed in the reverse order of making (as stack objects are).

#include <chrono>
#include <memory>

#include "XProgressStrategy.h"
#include "XString.h"
#include "XTypes.h"

class XProgress
{
public:
    using XProgressType = UInt32;
    static constexpr XProgressType kProgressHidden = 0;
    static constexpr XProgressType kProgressIndeterminate = 1;
    static constexpr XProgressType kProgressDeterminate = 2;
    static constexpr XProgressType kProgressWithEstimate = 3;

    static constexpr UInt32 kDefaultDelayMs = 2000;
    // Least time between two reports of a task to its strategy, by default.
    static constexpr UInt32 kReportIntervalMs = 20;

    // aType up to 3 (asserted).
    explicit XProgress(UInt64 aTotal, XProgressType aType = kProgressWithEstimate,
                       UInt32 aDelayMs = kDefaultDelayMs, bool aCanCancel = false);
    XProgress(const XProgress &) = delete;
    XProgress & operator=(const XProgress &) = delete;
    // Ends the task if this is the outermost progress and it was shown.
    ~XProgress();

    void Increment()
    {
        if (++itsCurrent >= itsNextCheck)
            CheckSelf();
    }
    void Increment(UInt64 aCount)
    {
        itsCurrent += aCount;
        if (itsCurrent >= itsNextCheck)
            CheckSelf();
    }
    // Sets the number of steps done (it may go back).
    void SetProgress(UInt64 aCurrent);

    void SetMessage(const XString & aMessage);
    const XString & GetMessageA() const { return itsMessage; }

    UInt64 GetCurrent() const { return itsCurrent; }
    UInt64 GetTotal() const { return itsTotal; }
    // Steps done over the total, at most 1 (1 for a total of 0).
    double GetFraction() const;
    XProgressType GetType() const { return itsType; }
    bool CanCancel() const { return itsCanCancel; }
    // The enclosing progress on this thread, null for the outermost.
    XProgress * GetParent() const { return itsParent; }
    // The innermost progress alive on the calling thread, null if none.
    static XProgress * GetCurrentProgress();

    // Least time between two reports of a task, for the whole process (kReportIntervalMs at
    // start; 0 reports at every step, which tests use to follow a run exactly).
    static void SetReportIntervalMs(UInt32 anInterval);
    static UInt32 GetReportIntervalMs();

private:
    using XClock = std::chrono::steady_clock;

    void CheckSelf();
    void SetNextCheck();
    XProgress & GetOutermost();
    // Outermost only: shows the task when its delay has passed, or reports a change when the
    // last report is old enough. False if nothing was reported.
    bool ReportSelf();
    XProgressStrategy::XReport MakeReport(XClock::time_point aNow) const;

    UInt64 itsCurrent = 0;
    UInt64 itsNextCheck = 0;
    UInt64 itsStep = 1;
    UInt64 itsTotal;
    XProgressType itsType;
    bool itsCanCancel;
    XString itsMessage;
    XProgress * itsParent;
    XProgress * itsChild = nullptr;

    // Used in the outermost progress only.
    XProgressStrategy::XStrategyPtr itsStrategy;
    UInt64 itsTaskID = 0;
    UInt32 itsDelayMs;
    bool itsShown = false;
    XClock::time_point itsStartTime;
    XClock::time_point itsLastReport;
};
