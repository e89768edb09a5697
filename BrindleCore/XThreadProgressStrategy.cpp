#include "XThreadProgressStrategy.h"

#include "XAssert.h"
#include "XProgressChangedMessage.h"

XThreadProgressStrategy::XThreadProgressStrategy(XSpeaker * aSpeaker, XSpeaker::XWhen aWhen)
    : itsSpeaker(aSpeaker != nullptr ? aSpeaker : this), itsWhen(aWhen)
{
    XAssert(aWhen == XSpeaker::kImmediately || aWhen == XSpeaker::kQueued);
}

XThreadProgressStrategy::~XThreadProgressStrategy() = default;

void XThreadProgressStrategy::ProgressBegin(const XReport & aReport)
{
    Post(aReport);
}

void XThreadProgressStrategy::ProgressChanged(const XReport & aReport)
{
    Post(aReport);
}

void XThreadProgressStrategy::ProgressEnd(const XReport & aReport)
{
    Post(aReport);
}

bool XThreadProgressStrategy::IsCancelRequested(UInt64) const
{
    return itsCancel.load(std::memory_order_relaxed);
}

void XThreadProgressStrategy::Post(const XReport & aReport) const
{
    XProgressChangedMessage message(itsSpeaker, aReport.itsTaskID, aReport.itsFraction,
                                    aReport.itsMessage, aReport.itsFinished, aReport.itsRemainingSeconds);
    itsSpeaker->SpeakMessage(message, itsWhen);
}
