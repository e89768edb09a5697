#pragma once
// A progress strategy for worker threads: each report becomes an XProgressChangedMessage spoken
// by a speaker, usually queued for the thread that shows progress (the main thread), where
// listeners of the speaker receive it from XSpeaker::ProcessAllNextEventMessages. Queued reports
// of one task coalesce, so only the latest waits.
//
//     auto strategy = std::make_shared<XThreadProgressStrategy>(nullptr, XSpeaker::kQueued);
//     window.Subscribe(*strategy);                 // the strategy is itself the speaker
//     worker: XProgressStrategy::XThreadScope scope(strategy); ... run the tool ...
//
// The strategy is also a way back to the worker: RequestCancel makes cancellable progress on the
// threads that use this strategy throw XException kErrThreadStopped at its next report step.

#include <atomic>

#include "XProgressStrategy.h"
#include "XSpeaker.h"

class XThreadProgressStrategy : public XProgressStrategy, public XSpeaker
{
public:
    // aSpeaker speaks the messages; null for the strategy itself. A given speaker must outlive
    // the strategy's use. Queued messages of a speaker are dropped when it is destroyed.
    explicit XThreadProgressStrategy(XSpeaker * aSpeaker = nullptr, XSpeaker::XWhen aWhen = XSpeaker::kQueued);
    ~XThreadProgressStrategy() override;

    const XSpeaker & GetSpeaker() const { return *itsSpeaker; }
    XSpeaker::XWhen GetWhen() const { return itsWhen; }

    void RequestCancel() { itsCancel.store(true, std::memory_order_relaxed); }
    void ClearCancel() { itsCancel.store(false, std::memory_order_relaxed); }

    void ProgressBegin(const XReport & aReport) override;
    void ProgressChanged(const XReport & aReport) override;
    void ProgressEnd(const XReport & aReport) override;
    bool IsCancelRequested(UInt64 aTaskID) const override;

private:
    void Post(const XReport & aReport) const;

    const XSpeaker * itsSpeaker;
    XSpeaker::XWhen itsWhen;
    std::atomic<bool> itsCancel{false};
};
