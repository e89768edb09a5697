// Speakers, listeners and the message queue: immediate and queued delivery, coalescing, order,
// lifetime (listeners and speakers destroyed with messages waiting), handlers and threads.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "XListener.h"
#include "XMessage.h"
#include "XProgressChangedMessage.h"
#include "XSpeaker.h"
#include "XTestSupport.h"

namespace
{
// A message with a number, to follow order.
class XNumberMessage : public XMessage
{
public:
    XNumberMessage(const XSpeaker * aSpeaker, int aNumber) : XMessage(aSpeaker), itsNumber(aNumber) {}
    XNumberMessage * Clone() const override { return new XNumberMessage(*this); }
    int itsNumber;
};

// Drops a new one while one is waiting ("first wins").
class XFirstWinsMessage : public XNumberMessage
{
public:
    using XNumberMessage::XNumberMessage;
    XFirstWinsMessage * Clone() const override { return new XFirstWinsMessage(*this); }
    XCoalesce ShouldCoalesceQueueMessage(const XMessage & aQueued) const override
    {
        return dynamic_cast<const XFirstWinsMessage *>(&aQueued) != nullptr ? kCoalesceDropNew : kCoalesceKeepBoth;
    }
};

// Forgets to override Clone.
class XSlicedMessage : public XNumberMessage
{
public:
    using XNumberMessage::XNumberMessage;
};

// Records what it receives; thread-safe. A number message below itsEchoBelow is answered with
// the next number, queued; the number itsThrowAt makes the handler throw.
class XRecorder : public XListener
{
public:
    ~XRecorder() override { StopListening(); }

    void HandleMessage(const XMessage & aMessage) override
    {
        const auto * number = dynamic_cast<const XNumberMessage *>(&aMessage);
        {
            std::lock_guard<std::mutex> guard(itsMutex);
            itsSpeakers.push_back(aMessage.GetSpeaker());
            itsSequences.push_back(aMessage.GetSequenceNumber());
            if (number != nullptr)
                itsNumbers.push_back(number->itsNumber);
            else if (const auto * progress = dynamic_cast<const XProgressChangedMessage *>(&aMessage))
                itsFractions.push_back(progress->GetFraction());
            itsThreads.push_back(std::this_thread::get_id());
        }
        if (number != nullptr && number->itsNumber < itsEchoBelow)
            XSpeaker::PostXMessage(XNumberMessage(nullptr, number->itsNumber + 1), *this, XSpeaker::kQueued);
        if (number != nullptr && number->itsNumber == itsThrowAt)
            throw std::runtime_error("handler failed");
    }

    std::vector<int> Numbers() const
    {
        std::lock_guard<std::mutex> guard(itsMutex);
        return itsNumbers;
    }
    std::size_t Count() const
    {
        std::lock_guard<std::mutex> guard(itsMutex);
        return itsSpeakers.size();
    }

    int itsEchoBelow = 0;
    int itsThrowAt = -1;
    mutable std::mutex itsMutex;
    std::vector<const XSpeaker *> itsSpeakers;
    std::vector<UInt64> itsSequences;
    std::vector<int> itsNumbers;
    std::vector<double> itsFractions;
    std::vector<std::thread::id> itsThreads;
};

class MessageTest : public ::testing::Test
{
protected:
    void SetUp() override { XSpeaker::ProcessAllNextEventMessages(); }
    void TearDown() override
    {
        XSpeaker::SetQueueNotifier(nullptr);
        XSpeaker::ProcessAllNextEventMessages();
    }
};
} // namespace

TEST_F(MessageTest, ImmediateAndQueuedDeliveryInOrder)
{
    XSpeaker speaker;
    XRecorder first;
    XRecorder second;
    XRecorder outsider;
    first.Subscribe(speaker);
    second.Subscribe(speaker);
    first.Subscribe(speaker); // no second subscription
    EXPECT_EQ(speaker.GetListenerCount(), 2u);
    EXPECT_FALSE(speaker.HasListener(outsider));

    speaker.SpeakMessage(XNumberMessage(&speaker, 7), XSpeaker::kImmediately);
    EXPECT_EQ(first.Numbers(), std::vector<int>{7});
    EXPECT_EQ(second.Numbers(), std::vector<int>{7});
    EXPECT_EQ(first.itsSpeakers[0], &speaker);
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 0u);
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 9), outsider, XSpeaker::kImmediately);
    EXPECT_EQ(outsider.Numbers(), std::vector<int>{9});

    speaker.SpeakMessage(XNumberMessage(&speaker, 1), XSpeaker::kQueued);
    speaker.SpeakMessage(XNumberMessage(&speaker, 2), XSpeaker::kQueued);
    XSpeaker::PostXMessage(XNumberMessage(&speaker, 3), first, XSpeaker::kQueued);
    EXPECT_EQ(first.Count(), 1u);
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 5u);
    EXPECT_TRUE(XSpeaker::WaitForQueuedMessages(0));
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 5u);
    EXPECT_EQ(first.Numbers(), (std::vector<int>{7, 1, 2, 3}));
    EXPECT_EQ(second.Numbers(), (std::vector<int>{7, 1, 2}));
    // The queue's copies keep the numbers of their making, which order the messages.
    EXPECT_LT(first.itsSequences[1], first.itsSequences[2]);
    EXPECT_LT(first.itsSequences[2], first.itsSequences[3]);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 0u);
    EXPECT_FALSE(XSpeaker::WaitForQueuedMessages(0));
    XNumberMessage early(nullptr, 1);
    XNumberMessage late(nullptr, 2);
    EXPECT_TRUE(early < late);
    EXPECT_FALSE(late < early);
    EXPECT_EQ(std::unique_ptr<XMessage>(late.Clone())->GetSequenceNumber(), late.GetSequenceNumber());

    second.Unsubscribe(speaker);
    speaker.SpeakMessage(XNumberMessage(&speaker, 8));
    EXPECT_EQ(first.Numbers().back(), 8);
    EXPECT_EQ(second.Numbers().back(), 2);
    // A speaker without listeners queues nothing.
    XSpeaker lonely;
    lonely.SpeakMessage(XNumberMessage(&lonely, 4), XSpeaker::kQueued);
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 0u);
}

TEST_F(MessageTest, QueuedMessagesCoalesce)
{
    XSpeaker speaker;
    XSpeaker other;
    XRecorder recorder;
    recorder.Subscribe(speaker);
    recorder.Subscribe(other);
    // Progress of one task of one speaker: the last replaces the rest.
    speaker.SpeakMessage(XNumberMessage(&speaker, 1), XSpeaker::kQueued);
    for (int i = 0; i < 100; ++i)
        speaker.SpeakMessage(XProgressChangedMessage(&speaker, 5, i / 100.0, "step", false), XSpeaker::kQueued);
    // Another task and another speaker do not replace them.
    speaker.SpeakMessage(XProgressChangedMessage(&speaker, 6, 0.5, "other task", false), XSpeaker::kQueued);
    other.SpeakMessage(XProgressChangedMessage(&other, 5, 0.25, "other speaker", false), XSpeaker::kQueued);
    speaker.SpeakMessage(XNumberMessage(&speaker, 2), XSpeaker::kQueued);
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 5u);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 5u);
    EXPECT_EQ(recorder.Numbers(), (std::vector<int>{1, 2}));
    EXPECT_EQ(recorder.itsFractions, (std::vector<double>{0.99, 0.5, 0.25}));
    // The replacement goes where the newest message would: after the first number.
    EXPECT_EQ(recorder.itsSpeakers,
              (std::vector<const XSpeaker *>{&speaker, &speaker, &speaker, &other, &speaker}));

    // A message may drop the new one instead.
    XRecorder direct;
    XSpeaker::PostXMessage(XFirstWinsMessage(nullptr, 1), direct, XSpeaker::kQueued);
    XSpeaker::PostXMessage(XFirstWinsMessage(nullptr, 2), direct, XSpeaker::kQueued);
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 3), direct, XSpeaker::kQueued);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 2u);
    EXPECT_EQ(direct.Numbers(), (std::vector<int>{1, 3}));
}

TEST_F(MessageTest, EndedSubscriptionsTakeTheirWaitingMessages)
{
    XSpeaker keeper;
    XSpeaker first;
    XRecorder survivor;
    survivor.Subscribe(keeper);
    survivor.Subscribe(first);
    // A destroyed listener: its messages go, the speaker forgets it.
    auto doomed = std::make_unique<XRecorder>();
    doomed->Subscribe(keeper);
    keeper.SpeakMessage(XNumberMessage(&keeper, 1), XSpeaker::kQueued);
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 2), *doomed, XSpeaker::kQueued);
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 3u);
    doomed.reset();
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 1u);
    EXPECT_EQ(keeper.GetListenerCount(), 1u);
    // An unsubscribed speaker: its waiting messages go.
    first.SpeakMessage(XNumberMessage(&first, 3), XSpeaker::kQueued);
    survivor.Unsubscribe(first);
    EXPECT_FALSE(survivor.IsSubscribed(first));
    // A destroyed speaker: its messages, also those posted in its name, and subscriptions go.
    {
        XSpeaker speaker;
        survivor.Subscribe(speaker);
        EXPECT_EQ(survivor.GetSubscriptionCount(), 2u);
        speaker.SpeakMessage(XNumberMessage(&speaker, 4), XSpeaker::kQueued);
        XSpeaker::PostXMessage(XNumberMessage(&speaker, 5), survivor, XSpeaker::kQueued);
    }
    EXPECT_EQ(survivor.GetSubscriptionCount(), 1u);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 1u);
    EXPECT_EQ(survivor.Numbers(), std::vector<int>{1});
    keeper.RemoveAllListeners();
    EXPECT_EQ(survivor.GetSubscriptionCount(), 0u);

    // Copies of speakers and listeners start alone.
    survivor.Subscribe(keeper);
    XSpeaker speakerCopy(keeper);
    EXPECT_EQ(speakerCopy.GetListenerCount(), 0u);
    XListener listenerCopy(survivor);
    EXPECT_EQ(listenerCopy.GetSubscriptionCount(), 0u);
    EXPECT_EQ(keeper.GetListenerCount(), 1u);
}

TEST_F(MessageTest, HandlersMayQueueMoreThrowOrDestroyTheirListener)
{
    // Messages queued by a handler wait for the next round.
    XRecorder echo;
    echo.itsEchoBelow = 3;
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 1), echo, XSpeaker::kQueued);
    for (UInt64 expected : {1u, 1u, 1u, 0u})
        EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), expected);
    EXPECT_EQ(echo.Numbers(), (std::vector<int>{1, 2, 3}));

    // An exception passes out of the processing and leaves the rest queued.
    XRecorder thrower;
    thrower.itsThrowAt = 1;
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 1), thrower, XSpeaker::kQueued);
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 2), thrower, XSpeaker::kQueued);
    EXPECT_THROW(XSpeaker::ProcessAllNextEventMessages(), std::runtime_error);
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 1u);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 1u);
    EXPECT_EQ(thrower.Numbers(), (std::vector<int>{1, 2}));

    // A listener that deletes itself in its handler, immediately and from the queue.
    class XSelfDestroyer : public XListener
    {
    public:
        explicit XSelfDestroyer(int & aCount) : itsCount(aCount) {}
        void HandleMessage(const XMessage &) override
        {
            ++itsCount;
            delete this;
        }
        int & itsCount;
    };
    XSpeaker speaker;
    int count = 0;
    (new XSelfDestroyer(count))->Subscribe(speaker);
    speaker.SpeakMessage(XNumberMessage(&speaker, 1));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(speaker.GetListenerCount(), 0u);
    auto * queued = new XSelfDestroyer(count);
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 2), *queued, XSpeaker::kQueued);
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 3), *queued, XSpeaker::kQueued);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 1u); // the second went with the listener
    EXPECT_EQ(count, 2);
}

TEST_F(MessageTest, QueueRefusesASlicingCloneAndWakesItsNotifier)
{
    XRecorder recorder;
    EXPECT_THROW(XSpeaker::PostXMessage(XSlicedMessage(nullptr, 1), recorder, XSpeaker::kQueued), XInternalError);
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 0u);
    // Immediate delivery makes no copy.
    XSpeaker::PostXMessage(XSlicedMessage(nullptr, 2), recorder, XSpeaker::kImmediately);
    EXPECT_EQ(recorder.Numbers(), std::vector<int>{2});

    // The notifier runs when the empty queue gets a message.
    std::atomic<int> wakeUps{0};
    XSpeaker::SetQueueNotifier([&wakeUps] { ++wakeUps; });
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 1), recorder, XSpeaker::kQueued);
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 2), recorder, XSpeaker::kQueued);
    EXPECT_EQ(wakeUps.load(), 1);
    XSpeaker::ProcessAllNextEventMessages();
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 3), recorder, XSpeaker::kQueued);
    EXPECT_EQ(wakeUps.load(), 2);
}

TEST_F(MessageTest, WorkerThreadsPostWhileTheMainThreadProcesses)
{
    constexpr int kPerWorker = 500;
    XSpeaker first;
    XSpeaker second;
    XRecorder recorder;
    recorder.Subscribe(first);
    recorder.Subscribe(second);
    auto work = [](const XSpeaker & aSpeaker, int aBase) {
        for (int i = 0; i < kPerWorker; ++i)
            aSpeaker.SpeakMessage(XNumberMessage(&aSpeaker, aBase + i), XSpeaker::kQueued);
    };
    std::thread one(work, std::cref(first), 0);
    std::thread two(work, std::cref(second), 100000);
    auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (recorder.Count() < 2 * kPerWorker && std::chrono::steady_clock::now() < deadline)
    {
        XSpeaker::WaitForQueuedMessages(100);
        XSpeaker::ProcessAllNextEventMessages();
    }
    one.join();
    two.join();
    XSpeaker::ProcessAllNextEventMessages();

    ASSERT_EQ(recorder.Count(), std::size_t(2 * kPerWorker));
    // Each worker's messages arrive in its order, all on the processing thread.
    int lastOfFirst = -1;
    int lastOfSecond = 99999;
    for (std::size_t i = 0; i < recorder.itsNumbers.size(); ++i)
    {
        int number = recorder.itsNumbers[i];
        int & last = number >= 100000 ? lastOfSecond : lastOfFirst;
        EXPECT_EQ(number, last + 1);
        last = number;
        EXPECT_EQ(recorder.itsThreads[i], std::this_thread::get_id());
        if (i > 0)
        {
            EXPECT_LT(recorder.itsSequences[i - 1], recorder.itsSequences[i]);
        }
    }

    // Immediate messages from a worker are handled on the worker.
    std::thread::id workerID;
    std::thread([&] {
        workerID = std::this_thread::get_id();
        first.SpeakMessage(XNumberMessage(&first, 1), XSpeaker::kImmediately);
    }).join();
    EXPECT_EQ(recorder.itsThreads.back(), workerID);
}

TEST_F(MessageTest, StopListeningWaitsForADeliveryOnAnotherThread)
{
    // The handler holds the worker until released; StopListening on a third thread must not
    // return before the handler has.
    class XSlowListener : public XListener
    {
    public:
        ~XSlowListener() override { StopListening(); }
        void HandleMessage(const XMessage &) override
        {
            itsEntered.Arrive();
            itsReleased.WaitFor(1);
            itsExited = true;
        }
        XTestGate itsEntered;
        XTestGate itsReleased;
        std::atomic<bool> itsExited{false};
    };
    XSpeaker speaker;
    XSlowListener listener;
    listener.Subscribe(speaker);
    std::thread worker([&] { speaker.SpeakMessage(XNumberMessage(&speaker, 1)); });
    ASSERT_TRUE(listener.itsEntered.WaitFor(1));
    bool exitedWhenStopped = false;
    std::thread stopper([&] {
        listener.StopListening();
        exitedWhenStopped = listener.itsExited;
    });
    listener.itsReleased.Arrive();
    stopper.join();
    worker.join();
    EXPECT_TRUE(exitedWhenStopped);
    EXPECT_EQ(speaker.GetListenerCount(), 0u);
}
