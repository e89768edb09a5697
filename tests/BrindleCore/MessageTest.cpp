// Speakers, listeners and the message queue: immediate and queued delivery, coalescing, order,
// lifetime (listeners and speakers destroyed with messages waiting) and threads.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "XAssert.h"
#include "XListener.h"
#include "XMessage.h"
#include "XProgressChangedMessage.h"
#include "XSpeaker.h"

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

// Records what it receives; thread-safe.
class XRecorder : public XListener
{
public:
    ~XRecorder() override { StopListening(); }

    void HandleMessage(const XMessage & aMessage) override
    {
        std::lock_guard<std::mutex> guard(itsMutex);
        itsSpeakers.push_back(aMessage.GetSpeaker());
        itsSequences.push_back(aMessage.GetSequenceNumber());
        if (const auto * number = dynamic_cast<const XNumberMessage *>(&aMessage))
            itsNumbers.push_back(number->itsNumber);
        else if (const auto * progress = dynamic_cast<const XProgressChangedMessage *>(&aMessage))
            itsFractions.push_back(progress->GetFraction());
        itsThreads.push_back(std::this_thread::get_id());
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

TEST_F(MessageTest, ImmediateDeliveryReachesSubscribersInOrder)
{
    XSpeaker speaker;
    XRecorder first;
    XRecorder second;
    XRecorder outsider;
    first.Subscribe(speaker);
    second.Subscribe(speaker);
    first.Subscribe(speaker); // no second subscription
    EXPECT_EQ(speaker.GetListenerCount(), 2u);
    EXPECT_TRUE(speaker.HasListener(first));
    EXPECT_FALSE(speaker.HasListener(outsider));

    speaker.SpeakMessage(XNumberMessage(&speaker, 7), XSpeaker::kImmediately);
    EXPECT_EQ(first.Numbers(), std::vector<int>{7});
    EXPECT_EQ(second.Numbers(), std::vector<int>{7});
    EXPECT_EQ(first.itsSpeakers[0], &speaker);
    EXPECT_EQ(outsider.Count(), 0u);
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 0u);

    second.Unsubscribe(speaker);
    speaker.SpeakMessage(XNumberMessage(&speaker, 8));
    EXPECT_EQ(first.Numbers(), (std::vector<int>{7, 8}));
    EXPECT_EQ(second.Numbers(), std::vector<int>{7});

    XSpeaker::PostXMessage(XNumberMessage(nullptr, 9), outsider, XSpeaker::kImmediately);
    EXPECT_EQ(outsider.Numbers(), std::vector<int>{9});
}

TEST_F(MessageTest, QueuedMessagesWaitForProcessing)
{
    XSpeaker speaker;
    XRecorder first;
    XRecorder second;
    first.Subscribe(speaker);
    second.Subscribe(speaker);

    speaker.SpeakMessage(XNumberMessage(&speaker, 1), XSpeaker::kQueued);
    speaker.SpeakMessage(XNumberMessage(&speaker, 2), XSpeaker::kQueued);
    XSpeaker::PostXMessage(XNumberMessage(&speaker, 3), first, XSpeaker::kQueued);
    EXPECT_EQ(first.Count(), 0u);
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 5u);
    EXPECT_TRUE(XSpeaker::WaitForQueuedMessages(0));

    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 5u);
    EXPECT_EQ(first.Numbers(), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(second.Numbers(), (std::vector<int>{1, 2}));
    // The queue's copies are numbered in the order of delivery.
    EXPECT_LT(first.itsSequences[0], first.itsSequences[1]);
    EXPECT_LT(first.itsSequences[1], first.itsSequences[2]);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 0u);
    EXPECT_FALSE(XSpeaker::WaitForQueuedMessages(0));

    // A speaker without listeners queues nothing.
    XSpeaker lonely;
    lonely.SpeakMessage(XNumberMessage(&lonely, 4), XSpeaker::kQueued);
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 0u);
}

TEST_F(MessageTest, MessagesOrderByMakingAndCopiesKeepTheirNumber)
{
    XNumberMessage early(nullptr, 1);
    XNumberMessage late(nullptr, 2);
    EXPECT_TRUE(early < late);
    EXPECT_FALSE(late < early);
    XNumberMessage copy(late);
    EXPECT_EQ(copy.GetSequenceNumber(), late.GetSequenceNumber());
    std::unique_ptr<XMessage> clone(late.Clone());
    EXPECT_EQ(clone->GetSequenceNumber(), late.GetSequenceNumber());
    EXPECT_NE(dynamic_cast<XNumberMessage *>(clone.get()), nullptr);
}

TEST_F(MessageTest, QueuedProgressMessagesCoalesceToTheLast)
{
    XSpeaker speaker;
    XSpeaker other;
    XRecorder recorder;
    recorder.Subscribe(speaker);
    recorder.Subscribe(other);

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
    ASSERT_EQ(recorder.itsFractions.size(), 3u);
    EXPECT_DOUBLE_EQ(recorder.itsFractions[0], 0.99);
    EXPECT_DOUBLE_EQ(recorder.itsFractions[1], 0.5);
    EXPECT_DOUBLE_EQ(recorder.itsFractions[2], 0.25);
    // The replacement goes where the newest message would: after the first number.
    EXPECT_EQ(recorder.itsSpeakers,
              (std::vector<const XSpeaker *>{&speaker, &speaker, &speaker, &other, &speaker}));
}

TEST_F(MessageTest, CoalescingCanDropTheNewMessage)
{
    XRecorder recorder;
    XSpeaker::PostXMessage(XFirstWinsMessage(nullptr, 1), recorder, XSpeaker::kQueued);
    XSpeaker::PostXMessage(XFirstWinsMessage(nullptr, 2), recorder, XSpeaker::kQueued);
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 3), recorder, XSpeaker::kQueued);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 2u);
    EXPECT_EQ(recorder.Numbers(), (std::vector<int>{1, 3}));
}

TEST_F(MessageTest, DestroyedListenerGetsNothing)
{
    XSpeaker speaker;
    XRecorder survivor;
    auto doomed = std::make_unique<XRecorder>();
    doomed->Subscribe(speaker);
    survivor.Subscribe(speaker);
    speaker.SpeakMessage(XNumberMessage(&speaker, 1), XSpeaker::kQueued);
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 2), *doomed, XSpeaker::kQueued);
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 3u);

    doomed.reset();
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 1u);
    EXPECT_EQ(speaker.GetListenerCount(), 1u);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 1u);
    EXPECT_EQ(survivor.Numbers(), std::vector<int>{1});
}

TEST_F(MessageTest, DestroyedSpeakerTakesItsMessagesAndSubscriptions)
{
    XRecorder recorder;
    XSpeaker keeper;
    recorder.Subscribe(keeper);
    {
        XSpeaker speaker;
        recorder.Subscribe(speaker);
        EXPECT_EQ(recorder.GetSubscriptionCount(), 2u);
        speaker.SpeakMessage(XNumberMessage(&speaker, 1), XSpeaker::kQueued);
        XSpeaker::PostXMessage(XNumberMessage(&speaker, 2), recorder, XSpeaker::kQueued);
        keeper.SpeakMessage(XNumberMessage(&keeper, 3), XSpeaker::kQueued);
    }
    EXPECT_EQ(recorder.GetSubscriptionCount(), 1u);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 1u);
    EXPECT_EQ(recorder.Numbers(), std::vector<int>{3});
}

TEST_F(MessageTest, UnsubscribeDropsWaitingMessagesOfThatSpeaker)
{
    XSpeaker first;
    XSpeaker second;
    XRecorder recorder;
    recorder.Subscribe(first);
    recorder.Subscribe(second);
    first.SpeakMessage(XNumberMessage(&first, 1), XSpeaker::kQueued);
    second.SpeakMessage(XNumberMessage(&second, 2), XSpeaker::kQueued);
    recorder.Unsubscribe(first);
    EXPECT_FALSE(recorder.IsSubscribed(first));
    EXPECT_TRUE(recorder.IsSubscribed(second));
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 1u);
    EXPECT_EQ(recorder.Numbers(), std::vector<int>{2});

    second.RemoveAllListeners();
    EXPECT_EQ(recorder.GetSubscriptionCount(), 0u);
}

TEST_F(MessageTest, CopiesOfSpeakersAndListenersStartAlone)
{
    XSpeaker speaker;
    XRecorder recorder;
    recorder.Subscribe(speaker);
    XSpeaker speakerCopy(speaker);
    EXPECT_EQ(speakerCopy.GetListenerCount(), 0u);
    XListener listenerCopy(recorder);
    EXPECT_EQ(listenerCopy.GetSubscriptionCount(), 0u);
    EXPECT_EQ(speaker.GetListenerCount(), 1u);
}

TEST_F(MessageTest, HandlersMayQueueMoreWhichWaitsForTheNextRound)
{
    class XEcho : public XRecorder
    {
    public:
        void HandleMessage(const XMessage & aMessage) override
        {
            XRecorder::HandleMessage(aMessage);
            int number = dynamic_cast<const XNumberMessage &>(aMessage).itsNumber;
            if (number < 3)
                XSpeaker::PostXMessage(XNumberMessage(nullptr, number + 1), *this, XSpeaker::kQueued);
        }
    };
    XEcho echo;
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 1), echo, XSpeaker::kQueued);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 1u);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 1u);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 1u);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 0u);
    EXPECT_EQ(echo.Numbers(), (std::vector<int>{1, 2, 3}));
}

TEST_F(MessageTest, ListenerMayDestroyItselfInItsHandler)
{
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
    auto * immediate = new XSelfDestroyer(count);
    immediate->Subscribe(speaker);
    speaker.SpeakMessage(XNumberMessage(&speaker, 1));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(speaker.GetListenerCount(), 0u);

    auto * queued = new XSelfDestroyer(count);
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 2), *queued, XSpeaker::kQueued);
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 3), *queued, XSpeaker::kQueued);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 1u); // the second went with the listener
    EXPECT_EQ(count, 2);
}

TEST_F(MessageTest, HandlerExceptionPassesAndLeavesTheRestQueued)
{
    class XThrower : public XRecorder
    {
    public:
        void HandleMessage(const XMessage & aMessage) override
        {
            XRecorder::HandleMessage(aMessage);
            if (dynamic_cast<const XNumberMessage &>(aMessage).itsNumber == 1)
                throw std::runtime_error("handler failed");
        }
    };
    XThrower thrower;
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 1), thrower, XSpeaker::kQueued);
    XSpeaker::PostXMessage(XNumberMessage(nullptr, 2), thrower, XSpeaker::kQueued);
    EXPECT_THROW(XSpeaker::ProcessAllNextEventMessages(), std::runtime_error);
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 1u);
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 1u);
    EXPECT_EQ(thrower.Numbers(), (std::vector<int>{1, 2}));
}

TEST_F(MessageTest, QueueRefusesAMessageWhoseCloneSlices)
{
    XRecorder recorder;
    EXPECT_THROW(XSpeaker::PostXMessage(XSlicedMessage(nullptr, 1), recorder, XSpeaker::kQueued), XInternalError);
    EXPECT_EQ(XSpeaker::GetQueuedMessageCount(), 0u);
    // Immediate delivery makes no copy.
    XSpeaker::PostXMessage(XSlicedMessage(nullptr, 2), recorder, XSpeaker::kImmediately);
    EXPECT_EQ(recorder.Numbers(), std::vector<int>{2});
}

TEST_F(MessageTest, NotifierRunsWhenTheQueueFills)
{
    std::atomic<int> wakeUps{0};
    XSpeaker::SetQueueNotifier([&wakeUps] { ++wakeUps; });
    XRecorder recorder;
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

    const std::thread::id mainThread = std::this_thread::get_id();
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
        EXPECT_EQ(recorder.itsThreads[i], mainThread);
        if (i > 0)
        {
            EXPECT_LT(recorder.itsSequences[i - 1], recorder.itsSequences[i]);
        }
    }
}

TEST_F(MessageTest, ImmediateMessagesFromAWorkerRunOnTheWorker)
{
    XSpeaker speaker;
    XRecorder recorder;
    recorder.Subscribe(speaker);
    std::thread::id workerID;
    std::thread worker([&] {
        workerID = std::this_thread::get_id();
        speaker.SpeakMessage(XNumberMessage(&speaker, 1), XSpeaker::kImmediately);
    });
    worker.join();
    ASSERT_EQ(recorder.Count(), 1u);
    EXPECT_EQ(recorder.itsThreads[0], workerID);
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
            std::unique_lock<std::mutex> lock(itsMutex);
            itsEntered = true;
            itsChanged.notify_all();
            itsChanged.wait_for(lock, std::chrono::seconds(30), [this] { return itsReleased; });
            itsExited = true;
        }
        std::mutex itsMutex;
        std::condition_variable itsChanged;
        bool itsEntered = false;
        bool itsReleased = false;
        bool itsExited = false;
    };

    XSpeaker speaker;
    XSlowListener listener;
    listener.Subscribe(speaker);
    std::thread worker([&] { speaker.SpeakMessage(XNumberMessage(&speaker, 1)); });
    {
        std::unique_lock<std::mutex> lock(listener.itsMutex);
        ASSERT_TRUE(listener.itsChanged.wait_for(lock, std::chrono::seconds(30), [&] { return listener.itsEntered; }));
    }
    bool exitedWhenStopped = false;
    std::thread stopper([&] {
        listener.StopListening();
        std::lock_guard<std::mutex> guard(listener.itsMutex);
        exitedWhenStopped = listener.itsExited;
    });
    {
        std::lock_guard<std::mutex> guard(listener.itsMutex);
        listener.itsReleased = true;
        listener.itsChanged.notify_all();
    }
    stopper.join();
    worker.join();
    EXPECT_TRUE(exitedWhenStopped);
    EXPECT_EQ(speaker.GetListenerCount(), 0u);
}
