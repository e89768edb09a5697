#include "XMessage.h"

#include <atomic>

XMessage::XMessage(const XSpeaker * aSpeaker) : itsSpeaker(aSpeaker), itsSequence(MakeSequenceNumber()) {}

XMessage::~XMessage() = default;

XMessage * XMessage::Clone() const
{
    return new XMessage(*this);
}

XMessage::XCoalesce XMessage::ShouldCoalesceQueueMessage(const XMessage &) const
{
    return kCoalesceKeepBoth;
}

UInt64 XMessage::MakeSequenceNumber()
{
    static std::atomic<UInt64> sNext{1};
    return sNext.fetch_add(1, std::memory_order_relaxed);
}
