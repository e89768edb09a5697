#pragma once
// Speakers and listeners: a listener subscribes to speakers and receives what they speak.
//
// Delivery, by XWhen:
//   kImmediately  on the speaking thread, before SpeakMessage returns, to each subscribed
//                 listener in the order they subscribed.
//   kQueued       a copy is put in the one process-wide queue, once per subscribed listener;
//                 ProcessAllNextEventMessages, called by the thread that runs the event loop
//                 (usually the main thread), delivers the queue in order. A new queued message
//                 is first compared with those already waiting for the same listener
//                 (XMessage::ShouldCoalesceQueueMessage): a newer progress report replaces an
//                 older one that was not delivered yet.
//
// Threads: any thread may speak, post, subscribe and unsubscribe while another processes the
// queue. Listeners are called without any lock of the messaging held, so a handler may speak,
// post, subscribe, unsubscribe, process the queue or destroy listeners (itself included).
// An exception thrown by a handler ends that delivery and passes to the caller of SpeakMessage,
// PostXMessage or ProcessAllNextEventMessages; messages not yet delivered stay queued.
//
// Lifetime: destroying a speaker unsubscribes its listeners and drops the queued messages that
// it speaks (GetSpeaker). Destroying a listener unsubscribes it, drops the messages queued for
// it and waits until deliveries to it that run on other threads have returned (see XListener).
// A speaker must not be destroyed while it speaks on another thread.

#include <functional>
#include <memory>

#include "XListener.h"
#include "XTypes.h"

class XMessage;

class XSpeaker
{
public:
    enum XWhen : UInt32
    {
        kImmediately = 0,
        kQueued = 1
    };

    XSpeaker() = default;
    // A copy is a speaker of its own, with no listeners; assignment keeps the listeners.
    XSpeaker(const XSpeaker &) {}
    XSpeaker & operator=(const XSpeaker &) { return *this; }
    virtual ~XSpeaker();

    // Speaks aMessage to every listener subscribed now (see above for aWhen). With kImmediately
    // the work is done by SpeakMessageNowSelf.
    void SpeakMessage(const XMessage & aMessage, XWhen aWhen = kImmediately) const;

    UInt32 GetListenerCount() const;
    bool HasListener(const XListener & aListener) const;
    void RemoveAllListeners();

    // Hands aMessage to aListener alone, whether or not it is subscribed to anyone.
    static void PostXMessage(const XMessage & aMessage, XListener & aListener, XWhen aWhen);

    // Delivers, on the calling thread, every message that was queued when the call began, in
    // order (messages queued by the handlers meanwhile wait for the next call); returns how many
    // were delivered.
    static UInt64 ProcessAllNextEventMessages();
    // How many deliveries are waiting.
    static UInt64 GetQueuedMessageCount();
    // Waits until the queue holds a message, at most aTimeOutMs milliseconds; true if it does.
    static bool WaitForQueuedMessages(UInt32 aTimeOutMs);
    // aNotifier (may be empty) is called whenever the queue turns from empty to not empty, on
    // the thread that queued, with no lock held: an event loop uses it to wake up.
    static void SetQueueNotifier(std::function<void()> aNotifier);

protected:
    // The speaker's own step of an immediate speak; the default delivers to every subscribed
    // listener (DeliverToListeners). Runs on the speaking thread.
    virtual void SpeakMessageNowSelf(const XMessage & aMessage) const;
    void DeliverToListeners(const XMessage & aMessage) const;

private:
    friend class XListener;
    using XListenerStatePtr = std::shared_ptr<XListener::XState>;
    // The process-wide subscriptions and queue (in XSpeaker.cpp).
    struct XHub;
    static XHub & GetHub();

    // The listener side, called by XListener.
    static XListenerStatePtr MakeListenerState(XListener & aListener);
    static void AddSubscription(const XListenerStatePtr & aState, const XSpeaker & aSpeaker);
    static void RemoveSubscription(const XListenerStatePtr & aState, const XSpeaker & aSpeaker);
    static bool HasSubscription(const XListenerStatePtr & aState, const XSpeaker & aSpeaker);
    static UInt32 CountSubscriptions(const XListenerStatePtr & aState);
    static void EndListening(const XListenerStatePtr & aState) noexcept;

    static void Deliver(const XListenerStatePtr & aState, const XMessage & aMessage,
                        const XSpeaker * aRequiredSpeaker);
};
