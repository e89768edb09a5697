#pragma once
// The receiving side of XSpeaker (which tells how and when messages arrive).
//
// A listener may receive messages on other threads (a worker that speaks immediately). Its
// destructor then waits until such deliveries have returned, but by the time ~XListener runs
// the subclass part is already gone: such a subclass calls StopListening first thing in its own
// destructor. StopListening and the destructor must not be called while the same listener's
// handler, on another thread, waits for the calling thread (that would never end).

#include <memory>

#include "XTypes.h"

class XMessage;
class XSpeaker;

class XListener
{
public:
    XListener();
    // A copy listens to nothing; assignment keeps the listener's own subscriptions.
    XListener(const XListener &);
    XListener & operator=(const XListener &) { return *this; }
    virtual ~XListener();

    // Subscribing twice to the same speaker has no further effect.
    void Subscribe(const XSpeaker & aSpeaker);
    // Ends the subscription and drops the queued messages of aSpeaker for this listener.
    void Unsubscribe(const XSpeaker & aSpeaker);
    bool IsSubscribed(const XSpeaker & aSpeaker) const;
    UInt32 GetSubscriptionCount() const;

    // Unsubscribes from every speaker, drops every message queued for this listener and waits
    // until deliveries to it on other threads have returned. Messages posted to it directly
    // after this are delivered again.
    void StopListening();

    // Called for each message delivered; the default ignores it.
    virtual void HandleMessage(const XMessage & aMessage);

private:
    friend class XSpeaker;
    // The listener's place in the messaging (kept in XSpeaker.cpp): its subscriptions, its
    // queued messages and the deliveries running now. Shared with deliveries in flight, so that
    // a listener that destroys itself in its handler leaves nothing dangling.
    struct XState;
    std::shared_ptr<XState> itsState;
};
