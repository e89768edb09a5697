#pragma once
// How progress is shown. Long work reports through XProgress objects; the strategy in force
// when the outermost XProgress of a thread is made receives that task's reports, on that thread.
//
// The strategy in force on a thread is the thread's own (SetThreadStrategy, or an XThreadScope)
// if it has one, else the process-wide one (SetStrategy). The process-wide one is null at start:
// progress is then silent and costs next to nothing. A strategy may serve several threads at
// once, so its operations must be thread-safe.
//
// This base class is itself a silent strategy (every step does nothing), useful to silence one
// thread while the process shows progress.

#include <memory>

#include "XString.h"
#include "XTypes.h"

class XProgressStrategy
{
public:
    using XStrategyPtr = std::shared_ptr<XProgressStrategy>;

    // What a strategy is told about a task (the outermost progress of a thread, with the
    // progress objects nested in it folded in, see XProgress).
    struct XReport
    {
        UInt64 itsTaskID = 0;          // unique in the process
        UInt32 itsType = 0;            // XProgress::XProgressType of the outermost progress
        double itsFraction = -1.0;     // 0 to 1; below 0 when not known (indeterminate)
        XString itsMessage;            // the innermost message set, empty if none
        double itsElapsedSeconds = 0;  // since the outermost progress was made
        double itsRemainingSeconds = -1.0; // estimate, only for the type with an estimate; below 0 when not known
        bool itsCanCancel = false;     // the outermost progress may be cancelled
        bool itsFinished = false;      // set in ProgressEnd only
    };

    XProgressStrategy() = default;
    XProgressStrategy(const XProgressStrategy &) = delete;
    XProgressStrategy & operator=(const XProgressStrategy &) = delete;
    virtual ~XProgressStrategy();

    // A task is to be shown (once its delay has passed), has changed (at most every
    // XProgress::GetReportIntervalMs()), has ended (its outermost progress was destroyed, at the end
    // of the work or by an exception). Begin and End come in pairs; End only after Begin.
    virtual void ProgressBegin(const XReport & aReport);
    virtual void ProgressChanged(const XReport & aReport);
    virtual void ProgressEnd(const XReport & aReport);
    // Asked by cancellable progress objects at each of their report steps, on the working
    // thread; true makes the progress throw XException kErrThreadStopped. Must be cheap.
    virtual bool IsCancelRequested(UInt64 aTaskID) const;

    // The process-wide strategy; null for silence.
    static void SetStrategy(XStrategyPtr aStrategy);
    static XStrategyPtr GetStrategy();
    // The calling thread's own strategy; null to follow the process-wide one again.
    static void SetThreadStrategy(XStrategyPtr aStrategy);
    static XStrategyPtr GetThreadStrategy();
    // The thread's strategy if it has one, else the process-wide one.
    static XStrategyPtr GetStrategyInForce();

    // Sets the calling thread's strategy for the life of the scope, then restores the one before.
    class XThreadScope
    {
    public:
        explicit XThreadScope(XStrategyPtr aStrategy);
        XThreadScope(const XThreadScope &) = delete;
        XThreadScope & operator=(const XThreadScope &) = delete;
        ~XThreadScope();

    private:
        XStrategyPtr itsPrevious;
    };
};
