#include "XProgressChangedMessage.h"

XProgressChangedMessage::XProgressChangedMessage(const XSpeaker * aSpeaker, UInt64 aTaskID,
                                                 double aFraction, const XString & aMessage,
                                                 bool aFinished, double aRemainingSeconds)
    : XMessage(aSpeaker), itsTaskID(aTaskID), itsFraction(aFraction), itsMessage(aMessage),
      itsFinished(aFinished), itsRemainingSeconds(aRemainingSeconds)
{
}

XProgressChangedMessage::~XProgressChangedMessage() = default;

XProgressChangedMessage * XProgressChangedMessage::Clone() const
{
    return new XProgressChangedMessage(*this);
}

XMessage::XCoalesce XProgressChangedMessage::ShouldCoalesceQueueMessage(const XMessage & aQueued) const
{
    const auto * queued = dynamic_cast<const XProgressChangedMessage *>(&aQueued);
    if (queued != nullptr && queued->GetSpeaker() == GetSpeaker() && queued->itsTaskID == itsTaskID)
        return kCoalesceReplaceQueued;
    return kCoalesceKeepBoth;
}
