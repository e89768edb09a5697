#include "XProgress.h"

#include <algorithm>
#include <atomic>
#include <limits>

#include "XAssert.h"
#include "XException.h"

namespace
{
thread_local XProgress * tInnermost = nullptr;

constexpr UInt64 kNever = std::numeric_limits<UInt64>::max();

std::atomic<UInt32> sReportIntervalMs{XProgress::kReportIntervalMs};

UInt64 MakeTaskID()
{
    static std::atomic<UInt64> sNext{1};
    return sNext.fetch_add(1, std::memory_order_relaxed);
}
} // namespace

XProgress::XProgress(UInt64 aTotal, XProgressType aType, UInt32 aDelayMs, bool aCanCancel)
    : itsTotal(aTotal), itsType(aType), itsCanCancel(aCanCancel), itsParent(tInnermost),
      itsDelayMs(aDelayMs)
{
    XAssertText(aType <= kProgressWithEstimate, "aType <= kProgressWithEstimate");
    if (itsType == kProgressIndeterminate)
        itsStep = 64;
    else
        itsStep = std::max<UInt64>(1, aTotal / 1000);
    if (itsParent == nullptr)
    {
        if (itsType != kProgressHidden)
            itsStrategy = XProgressStrategy::GetStrategyInForce();
        itsTaskID = MakeTaskID();
        itsStartTime = XClock::now();
        itsLastReport = itsStartTime;
    }
    else
    {
        itsParent->itsChild = this;
    }
    tInnermost = this;
    SetNextCheck();
}

XProgress::~XProgress()
{
    // Unlink, also when destroyed out of order.
    if (itsChild != nullptr)
        itsChild->itsParent = itsParent;
    if (itsParent != nullptr)
        itsParent->itsChild = itsChild;
    if (tInnermost == this)
        tInnermost = itsParent;
    if (itsParent == nullptr && itsShown && itsStrategy)
    {
        try
        {
            XProgressStrategy::XReport report = MakeReport(XClock::now());
            report.itsFinished = true;
            itsStrategy->ProgressEnd(report);
        }
        catch (...)
        {
            // A failing display must not turn the end of a run into a failure.
        }
    }
}

XProgress * XProgress::GetCurrentProgress()
{
    return tInnermost;
}

void XProgress::SetReportIntervalMs(UInt32 anInterval)
{
    sReportIntervalMs.store(anInterval, std::memory_order_relaxed);
}

UInt32 XProgress::GetReportIntervalMs()
{
    return sReportIntervalMs.load(std::memory_order_relaxed);
}

double XProgress::GetFraction() const
{
    if (itsTotal == 0)
        return 1.0;
    return itsCurrent >= itsTotal ? 1.0 : double(itsCurrent) / double(itsTotal);
}

void XProgress::SetProgress(UInt64 aCurrent)
{
    itsCurrent = aCurrent;
    if (itsCurrent >= itsNextCheck)
        CheckSelf();
    else if (itsNextCheck != kNever && itsNextCheck - itsCurrent > itsStep)
        itsNextCheck = itsCurrent + itsStep;
}

void XProgress::SetMessage(const XString & aMessage)
{
    itsMessage = aMessage;
    XProgress & outermost = GetOutermost();
    if (!outermost.itsStrategy || itsType == kProgressHidden)
        return;
    // Shown now if a report is due, else at the next step.
    if (!outermost.ReportSelf())
        itsNextCheck = std::min(itsNextCheck, itsCurrent + 1);
}

XProgress & XProgress::GetOutermost()
{
    XProgress * progress = this;
    while (progress->itsParent != nullptr)
        progress = progress->itsParent;
    return *progress;
}

void XProgress::SetNextCheck()
{
    const XProgress & outermost = GetOutermost();
    bool reports = outermost.itsStrategy != nullptr;
    if (!reports && !itsCanCancel)
        itsNextCheck = kNever;
    else
        itsNextCheck = itsCurrent > kNever - itsStep ? kNever : itsCurrent + itsStep;
}

void XProgress::CheckSelf()
{
    SetNextCheck();
    XProgress & outermost = GetOutermost();
    if (!outermost.itsStrategy)
        return;
    if (itsCanCancel && outermost.itsStrategy->IsCancelRequested(outermost.itsTaskID))
        throw XException(kErrThreadStopped, "the run was cancelled");
    outermost.ReportSelf();
}

bool XProgress::ReportSelf()
{
    XClock::time_point now = XClock::now();
    if (!itsShown)
    {
        if (now - itsStartTime < std::chrono::milliseconds(itsDelayMs))
            return false;
        itsShown = true;
        itsLastReport = now;
        itsStrategy->ProgressBegin(MakeReport(now));
        return true;
    }
    if (now - itsLastReport < std::chrono::milliseconds(GetReportIntervalMs()))
        return false;
    itsLastReport = now;
    itsStrategy->ProgressChanged(MakeReport(now));
    return true;
}

XProgressStrategy::XReport XProgress::MakeReport(XClock::time_point aNow) const
{
    XProgressStrategy::XReport report;
    report.itsTaskID = itsTaskID;
    report.itsType = itsType;
    report.itsCanCancel = itsCanCancel;
    report.itsElapsedSeconds = std::chrono::duration<double>(aNow - itsStartTime).count();

    // The fraction: each determinate level adds its own part within one step of the level above.
    if (itsType == kProgressDeterminate || itsType == kProgressWithEstimate)
    {
        double fraction = 0.0;
        double span = 1.0;
        for (const XProgress * level = this; level != nullptr; level = level->itsChild)
        {
            if (level->itsType != kProgressDeterminate && level->itsType != kProgressWithEstimate)
                break;
            fraction += span * level->GetFraction();
            if (level->itsTotal == 0 || level->itsCurrent >= level->itsTotal)
                break;
            span /= double(level->itsTotal);
        }
        report.itsFraction = std::min(fraction, 1.0);
        if (itsType == kProgressWithEstimate && report.itsFraction > 0.0)
            report.itsRemainingSeconds =
                report.itsElapsedSeconds * (1.0 - report.itsFraction) / report.itsFraction;
    }
    for (const XProgress * level = this; level != nullptr; level = level->itsChild)
    {
        if (level->itsType != kProgressHidden && !level->itsMessage.IsEmpty())
            report.itsMessage = level->itsMessage;
    }
    return report;
}
