#include "XSpeaker.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <thread>
#include <typeinfo>
#include <unordered_map>
#include <utility>
#include <vector>

#include "XAssert.h"
#include "XMessage.h"

// A listener's place in the messaging. Guarded by the hub's mutex.
struct XListener::XState
{
    explicit XState(XListener & aListener) : itsListener(&aListener) {}

    XListener * itsListener;
    std::vector<const XSpeaker *> itsSpeakers;  // in the order of subscription
    std::deque<UInt64> itsQueued;               // keys of its queue entries, ascending
    std::vector<std::thread::id> itsDeliveries; // threads that are in its HandleMessage now
    bool itsClosing = false;                    // StopListening waits for itsDeliveries
};

// One mutex guards everything; no listener, no Clone and no message destructor runs under it
// (only ShouldCoalesceQueueMessage, which compares two messages).
struct XSpeaker::XHub
{
    struct XEntry
    {
        XListenerStatePtr itsTarget;
        std::shared_ptr<const XMessage> itsMessage;
    };
    using XGarbage = std::vector<std::shared_ptr<const XMessage>>;

    std::mutex itsMutex;
    std::condition_variable itsDeliveryEnded;
    std::condition_variable itsQueueFilled;
    std::unordered_map<const XSpeaker *, std::vector<XListenerStatePtr>> itsSubscribers;
    std::map<UInt64, XEntry> itsQueue; // by key, which is the order of delivery
    UInt64 itsNextKey = 1;
    std::function<void()> itsNotifier;

    // Queues aMessage for aTarget after asking the coalescing rule; true if the queue was empty
    // before. Messages that are dropped go to outGarbage, to be destroyed after the lock.
    bool Enqueue(const XListenerStatePtr & aTarget, const std::shared_ptr<const XMessage> & aMessage,
                 XGarbage & outGarbage)
    {
        std::vector<UInt64> replaced;
        for (UInt64 key : aTarget->itsQueued)
        {
            XMessage::XCoalesce answer = aMessage->ShouldCoalesceQueueMessage(*itsQueue.at(key).itsMessage);
            if (answer == XMessage::kCoalesceDropNew)
                return false;
            if (answer == XMessage::kCoalesceReplaceQueued)
                replaced.push_back(key);
        }
        for (UInt64 key : replaced)
            RemoveEntry(key, outGarbage);
        bool wasEmpty = itsQueue.empty();
        UInt64 key = itsNextKey++;
        itsQueue.emplace(key, XEntry{aTarget, aMessage});
        aTarget->itsQueued.push_back(key);
        return wasEmpty;
    }

    void RemoveEntry(UInt64 aKey, XGarbage & outGarbage)
    {
        auto found = itsQueue.find(aKey);
        if (found == itsQueue.end())
            return;
        std::deque<UInt64> & keys = found->second.itsTarget->itsQueued;
        keys.erase(std::find(keys.begin(), keys.end(), aKey));
        outGarbage.push_back(std::move(found->second.itsMessage));
        itsQueue.erase(found);
    }

    // Drops the entries of aTarget (every listener when null) whose message aSpeaker speaks.
    void RemoveEntriesOf(const XSpeaker * aSpeaker, const XListener::XState * aTarget, XGarbage & outGarbage)
    {
        for (auto entry = itsQueue.begin(); entry != itsQueue.end();)
        {
            auto next = std::next(entry);
            if ((aTarget == nullptr || entry->second.itsTarget.get() == aTarget) &&
                entry->second.itsMessage->GetSpeaker() == aSpeaker)
                RemoveEntry(entry->first, outGarbage);
            entry = next;
        }
    }

    void RemoveSubscriber(const XSpeaker * aSpeaker, const XListener::XState * aTarget)
    {
        auto found = itsSubscribers.find(aSpeaker);
        if (found == itsSubscribers.end())
            return;
        std::vector<XListenerStatePtr> & listeners = found->second;
        listeners.erase(std::remove_if(listeners.begin(), listeners.end(),
                                       [aTarget](const XListenerStatePtr & aState) { return aState.get() == aTarget; }),
                        listeners.end());
        if (listeners.empty())
            itsSubscribers.erase(found);
    }

    // A delivery on this thread to aTarget has returned.
    void EndDelivery(XListener::XState & aTarget)
    {
        auto found = std::find(aTarget.itsDeliveries.begin(), aTarget.itsDeliveries.end(),
                               std::this_thread::get_id());
        if (found != aTarget.itsDeliveries.end())
            aTarget.itsDeliveries.erase(found);
        if (aTarget.itsClosing)
            itsDeliveryEnded.notify_all();
    }
};

namespace
{
std::shared_ptr<XMessage> CloneMessage(const XMessage & aMessage)
{
    std::shared_ptr<XMessage> copy(aMessage.Clone());
    const XMessage * made = copy.get();
    XAssertText(made != nullptr && typeid(*made) == typeid(aMessage),
                "the Clone of a message makes a message of the same class");
    return copy;
}
} // namespace

XSpeaker::XHub & XSpeaker::GetHub()
{
    // Never destroyed: static speakers and listeners may go after it otherwise.
    static XHub * sHub = new XHub;
    return *sHub;
}

XSpeaker::~XSpeaker()
{
    RemoveAllListeners();
}

void XSpeaker::SpeakMessage(const XMessage & aMessage, XWhen aWhen) const
{
    XAssert(aWhen == kImmediately || aWhen == kQueued);
    if (aWhen == kImmediately)
    {
        SpeakMessageNowSelf(aMessage);
        return;
    }
    XHub & hub = GetHub();
    {
        std::lock_guard<std::mutex> guard(hub.itsMutex);
        if (hub.itsSubscribers.find(this) == hub.itsSubscribers.end())
            return;
    }
    std::shared_ptr<XMessage> copy = CloneMessage(aMessage);
    XHub::XGarbage garbage;
    std::function<void()> notifier;
    bool filled = false;
    {
        std::lock_guard<std::mutex> guard(hub.itsMutex);
        auto found = hub.itsSubscribers.find(this);
        if (found == hub.itsSubscribers.end())
            return;
        copy->itsSequence = XMessage::MakeSequenceNumber();
        for (const XListenerStatePtr & state : found->second)
            filled = hub.Enqueue(state, copy, garbage) || filled;
        if (filled)
        {
            notifier = hub.itsNotifier;
            hub.itsQueueFilled.notify_all();
        }
    }
    if (notifier)
        notifier();
}

void XSpeaker::SpeakMessageNowSelf(const XMessage & aMessage) const
{
    DeliverToListeners(aMessage);
}

void XSpeaker::DeliverToListeners(const XMessage & aMessage) const
{
    XHub & hub = GetHub();
    std::vector<XListenerStatePtr> listeners;
    {
        std::lock_guard<std::mutex> guard(hub.itsMutex);
        auto found = hub.itsSubscribers.find(this);
        if (found == hub.itsSubscribers.end())
            return;
        listeners = found->second;
    }
    for (const XListenerStatePtr & state : listeners)
        Deliver(state, aMessage, this);
}

void XSpeaker::Deliver(const XListenerStatePtr & aState, const XMessage & aMessage,
                       const XSpeaker * aRequiredSpeaker)
{
    XHub & hub = GetHub();
    std::unique_lock<std::mutex> lock(hub.itsMutex);
    // A listener that left since the list was taken gets nothing.
    if (aRequiredSpeaker != nullptr &&
        std::find(aState->itsSpeakers.begin(), aState->itsSpeakers.end(), aRequiredSpeaker) ==
            aState->itsSpeakers.end())
        return;
    aState->itsDeliveries.push_back(std::this_thread::get_id());
    lock.unlock();
    try
    {
        aState->itsListener->HandleMessage(aMessage);
    }
    catch (...)
    {
        lock.lock();
        hub.EndDelivery(*aState);
        throw;
    }
    lock.lock();
    hub.EndDelivery(*aState);
}

UInt32 XSpeaker::GetListenerCount() const
{
    XHub & hub = GetHub();
    std::lock_guard<std::mutex> guard(hub.itsMutex);
    auto found = hub.itsSubscribers.find(this);
    return found == hub.itsSubscribers.end() ? 0 : UInt32(found->second.size());
}

bool XSpeaker::HasListener(const XListener & aListener) const
{
    return HasSubscription(aListener.itsState, *this);
}

void XSpeaker::RemoveAllListeners()
{
    XHub & hub = GetHub();
    XHub::XGarbage garbage;
    std::lock_guard<std::mutex> guard(hub.itsMutex);
    auto found = hub.itsSubscribers.find(this);
    if (found != hub.itsSubscribers.end())
    {
        for (const XListenerStatePtr & state : found->second)
            state->itsSpeakers.erase(std::find(state->itsSpeakers.begin(), state->itsSpeakers.end(), this));
        hub.itsSubscribers.erase(found);
    }
    hub.RemoveEntriesOf(this, nullptr, garbage);
}

void XSpeaker::PostXMessage(const XMessage & aMessage, XListener & aListener, XWhen aWhen)
{
    XAssert(aWhen == kImmediately || aWhen == kQueued);
    if (aWhen == kImmediately)
    {
        Deliver(aListener.itsState, aMessage, nullptr);
        return;
    }
    std::shared_ptr<XMessage> copy = CloneMessage(aMessage);
    XHub & hub = GetHub();
    XHub::XGarbage garbage;
    std::function<void()> notifier;
    {
        std::lock_guard<std::mutex> guard(hub.itsMutex);
        copy->itsSequence = XMessage::MakeSequenceNumber();
        if (hub.Enqueue(aListener.itsState, copy, garbage))
        {
            notifier = hub.itsNotifier;
            hub.itsQueueFilled.notify_all();
        }
    }
    if (notifier)
        notifier();
}

UInt64 XSpeaker::ProcessAllNextEventMessages()
{
    XHub & hub = GetHub();
    UInt64 delivered = 0;
    std::unique_lock<std::mutex> lock(hub.itsMutex);
    const UInt64 limit = hub.itsNextKey;
    for (;;)
    {
        auto first = hub.itsQueue.begin();
        if (first == hub.itsQueue.end() || first->first >= limit)
            break;
        XListenerStatePtr target = std::move(first->second.itsTarget);
        std::shared_ptr<const XMessage> message = std::move(first->second.itsMessage);
        std::deque<UInt64> & keys = target->itsQueued;
        keys.erase(std::find(keys.begin(), keys.end(), first->first));
        hub.itsQueue.erase(first);
        target->itsDeliveries.push_back(std::this_thread::get_id());
        lock.unlock();
        try
        {
            target->itsListener->HandleMessage(*message);
        }
        catch (...)
        {
            message.reset();
            lock.lock();
            hub.EndDelivery(*target);
            throw;
        }
        message.reset();
        lock.lock();
        hub.EndDelivery(*target);
        ++delivered;
    }
    return delivered;
}

UInt64 XSpeaker::GetQueuedMessageCount()
{
    XHub & hub = GetHub();
    std::lock_guard<std::mutex> guard(hub.itsMutex);
    return hub.itsQueue.size();
}

bool XSpeaker::WaitForQueuedMessages(UInt32 aTimeOutMs)
{
    XHub & hub = GetHub();
    std::unique_lock<std::mutex> lock(hub.itsMutex);
    return hub.itsQueueFilled.wait_for(lock, std::chrono::milliseconds(aTimeOutMs),
                                       [&hub] { return !hub.itsQueue.empty(); });
}

void XSpeaker::SetQueueNotifier(std::function<void()> aNotifier)
{
    XHub & hub = GetHub();
    std::unique_lock<std::mutex> lock(hub.itsMutex);
    std::swap(hub.itsNotifier, aNotifier);
    lock.unlock(); // the old notifier goes with aNotifier, outside the lock
}

XSpeaker::XListenerStatePtr XSpeaker::MakeListenerState(XListener & aListener)
{
    return std::make_shared<XListener::XState>(aListener);
}

void XSpeaker::AddSubscription(const XListenerStatePtr & aState, const XSpeaker & aSpeaker)
{
    XHub & hub = GetHub();
    std::lock_guard<std::mutex> guard(hub.itsMutex);
    std::vector<const XSpeaker *> & speakers = aState->itsSpeakers;
    if (std::find(speakers.begin(), speakers.end(), &aSpeaker) != speakers.end())
        return;
    speakers.push_back(&aSpeaker);
    hub.itsSubscribers[&aSpeaker].push_back(aState);
}

void XSpeaker::RemoveSubscription(const XListenerStatePtr & aState, const XSpeaker & aSpeaker)
{
    XHub & hub = GetHub();
    XHub::XGarbage garbage;
    std::lock_guard<std::mutex> guard(hub.itsMutex);
    std::vector<const XSpeaker *> & speakers = aState->itsSpeakers;
    auto found = std::find(speakers.begin(), speakers.end(), &aSpeaker);
    if (found == speakers.end())
        return;
    speakers.erase(found);
    hub.RemoveSubscriber(&aSpeaker, aState.get());
    hub.RemoveEntriesOf(&aSpeaker, aState.get(), garbage);
}

bool XSpeaker::HasSubscription(const XListenerStatePtr & aState, const XSpeaker & aSpeaker)
{
    XHub & hub = GetHub();
    std::lock_guard<std::mutex> guard(hub.itsMutex);
    const std::vector<const XSpeaker *> & speakers = aState->itsSpeakers;
    return std::find(speakers.begin(), speakers.end(), &aSpeaker) != speakers.end();
}

UInt32 XSpeaker::CountSubscriptions(const XListenerStatePtr & aState)
{
    XHub & hub = GetHub();
    std::lock_guard<std::mutex> guard(hub.itsMutex);
    return UInt32(aState->itsSpeakers.size());
}

void XSpeaker::EndListening(const XListenerStatePtr & aState) noexcept
{
    XHub & hub = GetHub();
    XHub::XGarbage garbage;
    std::unique_lock<std::mutex> lock(hub.itsMutex);
    for (const XSpeaker * speaker : aState->itsSpeakers)
        hub.RemoveSubscriber(speaker, aState.get());
    aState->itsSpeakers.clear();
    while (!aState->itsQueued.empty())
        hub.RemoveEntry(aState->itsQueued.front(), garbage);
    // Wait for deliveries on other threads; one on this thread is the caller's own handler.
    const std::thread::id self = std::this_thread::get_id();
    aState->itsClosing = true;
    hub.itsDeliveryEnded.wait(lock, [&aState, self] {
        return std::all_of(aState->itsDeliveries.begin(), aState->itsDeliveries.end(),
                           [self](std::thread::id anID) { return anID == self; });
    });
    aState->itsClosing = false;
}
