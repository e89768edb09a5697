#pragma once
// A message that an XSpeaker hands to XListeners, at once or through the process-wide queue
// (see XSpeaker). Subclasses carry the content; a listener tells them apart with dynamic_cast.
//
// Every subclass overrides Clone (the queue keeps a copy of the message, and checks that the
// copy is of the same class). A subclass whose queued messages go stale when a newer one comes
// (progress, "the selection changed") overrides ShouldCoalesceQueueMessage.

#include "XTypes.h"

class XSpeaker;

class XMessage
{
public:
    // What happens to a new message that is queued for a listener for which aQueued is already
    // waiting.
    enum XCoalesce : UInt32
    {
        kCoalesceKeepBoth = 0,       // both are delivered, the queued one first
        kCoalesceReplaceQueued = 1,  // the queued one is dropped; the new one goes to the end
        kCoalesceDropNew = 2         // the new one is dropped
    };

    // aSpeaker names who speaks; it may be null for a message posted by no speaker.
    explicit XMessage(const XSpeaker * aSpeaker = nullptr);
    // A copy is the same message: same speaker and sequence number.
    XMessage(const XMessage & aMessage) = default;
    XMessage & operator=(const XMessage & aMessage) = default;
    virtual ~XMessage();

    const XSpeaker * GetSpeaker() const { return itsSpeaker; }

    // A new copy of the most derived class, owned by the caller.
    virtual XMessage * Clone() const;

    // Asked of a new message against each message already queued for the same listener; called
    // with the queue locked, so it must only compare the two messages. Default: keep both.
    virtual XCoalesce ShouldCoalesceQueueMessage(const XMessage & aQueued) const;

    // Messages are numbered as they are made, and the queue numbers its copy again when it takes
    // it, so that the order of the numbers is the order of delivery.
    UInt64 GetSequenceNumber() const { return itsSequence; }
    bool operator<(const XMessage & anOther) const { return itsSequence < anOther.itsSequence; }

private:
    friend class XSpeaker;

    static UInt64 MakeSequenceNumber();

    const XSpeaker * itsSpeaker;
    UInt64 itsSequence;
};
