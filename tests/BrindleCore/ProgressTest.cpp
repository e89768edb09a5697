// Progress: what reaches the strategy (begin, changes, end), delays, nesting, cancel, the thread
// strategy's coalescing messages and the terminal bar's line.

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "XException.h"
#include "XInternalError.h"
#include "XListener.h"
#include "XProgress.h"
#include "XProgressChangedMessage.h"
#include "XProgressStrategy.h"
#include "XSpeaker.h"
#include "XTerminalProgressStrategy.h"
#include "XThreadProgressStrategy.h"

namespace
{
// Records every call; thread-safe.
class XRecordingStrategy : public XProgressStrategy
{
public:
    struct XCall
    {
        char itsKind; // 'b' begin, 'c' changed, 'e' end
        XReport itsReport;
    };

    void ProgressBegin(const XReport & aReport) override { Add('b', aReport); }
    void ProgressChanged(const XReport & aReport) override { Add('c', aReport); }
    void ProgressEnd(const XReport & aReport) override { Add('e', aReport); }

    std::vector<XCall> Calls()
    {
        std::lock_guard<std::mutex> guard(itsMutex);
        return itsCalls;
    }
    std::string Kinds()
    {
        std::string kinds;
        for (const XCall & call : Calls())
            kinds += call.itsKind;
        return kinds;
    }

private:
    void Add(char aKind, const XReport & aReport)
    {
        std::lock_guard<std::mutex> guard(itsMutex);
        itsCalls.push_back({aKind, aReport});
    }

    std::mutex itsMutex;
    std::vector<XCall> itsCalls;
};

class XProgressRecorder : public XListener
{
public:
    ~XProgressRecorder() override { StopListening(); }
    void HandleMessage(const XMessage & aMessage) override
    {
        if (const auto * progress = dynamic_cast<const XProgressChangedMessage *>(&aMessage))
            itsMessages.push_back(*progress);
    }
    std::vector<XProgressChangedMessage> itsMessages;
};

// Every test starts with no strategy and reports at every step, and leaves it so.
class ProgressTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        XProgressStrategy::SetStrategy(nullptr);
        XProgress::SetReportIntervalMs(0);
        XSpeaker::ProcessAllNextEventMessages();
    }
    void TearDown() override
    {
        XProgressStrategy::SetStrategy(nullptr);
        XProgressStrategy::SetThreadStrategy(nullptr);
        XProgress::SetReportIntervalMs(XProgress::kReportIntervalMs);
        XSpeaker::ProcessAllNextEventMessages();
    }
};
} // namespace

TEST_F(ProgressTest, CountsWithoutAStrategy)
{
    XProgress progress(8, 3, 2000, false);
    progress.Increment();
    progress.Increment(3);
    EXPECT_EQ(progress.GetCurrent(), 4u);
    EXPECT_DOUBLE_EQ(progress.GetFraction(), 0.5);
    progress.SetProgress(20);
    EXPECT_DOUBLE_EQ(progress.GetFraction(), 1.0);
    progress.SetProgress(2);
    EXPECT_DOUBLE_EQ(progress.GetFraction(), 0.25);
    progress.SetMessage("Median");
    EXPECT_EQ(progress.GetMessageA(), "Median");
    EXPECT_EQ(XProgress::GetCurrentProgress(), &progress);
    EXPECT_DOUBLE_EQ(XProgress(0, 3, 0, false).GetFraction(), 1.0);
    EXPECT_THROW(XProgress(1, 4, 0, false), XInternalError);
}

TEST_F(ProgressTest, StrategySeesBeginChangesAndEnd)
{
    auto strategy = std::make_shared<XRecordingStrategy>();
    XProgressStrategy::SetStrategy(strategy);
    {
        XProgress progress(4, XProgress::kProgressDeterminate, 0, false);
        progress.SetMessage("Gauss");
        for (int i = 0; i < 4; ++i)
            progress.Increment();
    }
    std::vector<XRecordingStrategy::XCall> calls = strategy->Calls();
    ASSERT_EQ(strategy->Kinds(), "bcccce");
    EXPECT_DOUBLE_EQ(calls[0].itsReport.itsFraction, 0.0); // shown by the message
    EXPECT_EQ(calls[0].itsReport.itsMessage, "Gauss");
    EXPECT_DOUBLE_EQ(calls[1].itsReport.itsFraction, 0.25);
    EXPECT_DOUBLE_EQ(calls[4].itsReport.itsFraction, 1.0);
    EXPECT_TRUE(calls.back().itsReport.itsFinished);
    EXPECT_FALSE(calls[4].itsReport.itsFinished);
    EXPECT_DOUBLE_EQ(calls.back().itsReport.itsFraction, 1.0);
    EXPECT_LT(calls.back().itsReport.itsRemainingSeconds, 0.0); // no estimate for type 2
    for (const auto & call : calls)
        EXPECT_EQ(call.itsReport.itsTaskID, calls[0].itsReport.itsTaskID);

    // Type 1 has no fraction; type 3 estimates the time left once it has a fraction.
    {
        XProgress busy(0, XProgress::kProgressIndeterminate, 0, false);
        busy.Increment(64);
    }
    calls = strategy->Calls();
    EXPECT_LT(calls.back().itsReport.itsFraction, 0.0);
    {
        XProgress estimated(2, XProgress::kProgressWithEstimate, 0, false);
        estimated.Increment();
    }
    calls = strategy->Calls();
    EXPECT_GE(calls.back().itsReport.itsRemainingSeconds, 0.0);
    EXPECT_NE(calls.back().itsReport.itsTaskID, calls[0].itsReport.itsTaskID);
}

TEST_F(ProgressTest, ShortRunsAndHiddenProgressStayQuiet)
{
    auto strategy = std::make_shared<XRecordingStrategy>();
    XProgressStrategy::SetStrategy(strategy);
    {
        XProgress delayed(100, 3, 3600000, false); // shown after an hour only
        for (int i = 0; i < 100; ++i)
            delayed.Increment();
    }
    {
        XProgress hidden(100, XProgress::kProgressHidden, 0, false);
        for (int i = 0; i < 100; ++i)
            hidden.Increment();
        XProgress inner(10, 3, 0, false); // a part of a hidden task is hidden too
        inner.Increment();
    }
    EXPECT_EQ(strategy->Kinds(), "");
}

TEST_F(ProgressTest, NestedProgressFillsOneStepOfTheOuter)
{
    auto strategy = std::make_shared<XRecordingStrategy>();
    XProgressStrategy::SetStrategy(strategy);
    {
        XProgress outer(4, 3, 0, false);
        outer.SetMessage("Outer");
        outer.Increment();
        {
            XProgress inner(10, 3, 0, false);
            EXPECT_EQ(inner.GetParent(), &outer);
            EXPECT_EQ(XProgress::GetCurrentProgress(), &inner);
            inner.SetMessage("Inner");
            for (int i = 0; i < 5; ++i)
                inner.Increment();
            XProgress hiddenInner(2, XProgress::kProgressHidden, 0, false);
            hiddenInner.SetMessage("never shown");
            hiddenInner.Increment();
        }
        EXPECT_EQ(XProgress::GetCurrentProgress(), &outer);
        outer.Increment();
    }
    std::vector<XRecordingStrategy::XCall> calls = strategy->Calls();
    ASSERT_EQ(strategy->Kinds(), "bccccccccce");
    // begin (message), outer 1/4, inner message, inner 1/10 ... 5/10, hidden step, outer 2/4, end.
    EXPECT_EQ(calls[0].itsReport.itsMessage, "Outer");
    EXPECT_DOUBLE_EQ(calls[1].itsReport.itsFraction, 0.25);
    EXPECT_EQ(calls[2].itsReport.itsMessage, "Inner");
    EXPECT_DOUBLE_EQ(calls[3].itsReport.itsFraction, 0.275);
    EXPECT_DOUBLE_EQ(calls[7].itsReport.itsFraction, 0.375);
    EXPECT_EQ(calls[8].itsReport.itsMessage, "Inner");
    EXPECT_DOUBLE_EQ(calls[8].itsReport.itsFraction, 0.375);
    EXPECT_EQ(calls[9].itsReport.itsMessage, "Outer");
    EXPECT_DOUBLE_EQ(calls[9].itsReport.itsFraction, 0.5);
    EXPECT_EQ(XProgress::GetCurrentProgress(), nullptr);
}

TEST_F(ProgressTest, ThreadStrategyOverridesTheProcessStrategy)
{
    auto processWide = std::make_shared<XRecordingStrategy>();
    auto ownStrategy = std::make_shared<XRecordingStrategy>();
    XProgressStrategy::SetStrategy(processWide);
    std::thread worker([&] {
        XProgressStrategy::XThreadScope scope(ownStrategy);
        EXPECT_EQ(XProgressStrategy::GetStrategyInForce(), ownStrategy);
        XProgress progress(2, 3, 0, false);
        progress.Increment();
    });
    worker.join();
    {
        XProgress progress(2, 3, 0, false);
        progress.Increment();
    }
    EXPECT_EQ(ownStrategy->Kinds(), "be");
    EXPECT_EQ(processWide->Kinds(), "be");
    EXPECT_EQ(XProgressStrategy::GetThreadStrategy(), nullptr);

    // A silent strategy quiets one thread.
    XProgressStrategy::XThreadScope silence(std::make_shared<XProgressStrategy>());
    {
        XProgress progress(2, 3, 0, false);
        progress.Increment();
    }
    EXPECT_EQ(processWide->Kinds(), "be");
}

TEST_F(ProgressTest, ThreadStrategyPostsCoalescingMessages)
{
    auto strategy = std::make_shared<XThreadProgressStrategy>(nullptr, XSpeaker::kQueued);
    XProgressRecorder recorder;
    recorder.Subscribe(*strategy);
    std::thread worker([&] {
        XProgressStrategy::XThreadScope scope(strategy);
        XProgress progress(1000, 3, 0, false);
        progress.SetMessage("Deconvolve");
        for (int i = 0; i < 1000; ++i)
            progress.Increment();
    });
    worker.join();
    EXPECT_TRUE(recorder.itsMessages.empty());
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 1u);
    ASSERT_EQ(recorder.itsMessages.size(), 1u);
    const XProgressChangedMessage & last = recorder.itsMessages[0];
    EXPECT_TRUE(last.IsFinished());
    EXPECT_DOUBLE_EQ(last.GetFraction(), 1.0);
    EXPECT_EQ(last.GetMessageA(), "Deconvolve");
    EXPECT_EQ(last.GetSpeaker(), strategy.get());
}

TEST_F(ProgressTest, ThreadStrategySpeaksThroughAGivenSpeakerAtOnce)
{
    XSpeaker speaker;
    XProgressRecorder recorder;
    recorder.Subscribe(speaker);
    auto strategy = std::make_shared<XThreadProgressStrategy>(&speaker, XSpeaker::kImmediately);
    XProgressStrategy::SetThreadStrategy(strategy);
    {
        XProgress progress(2, 2, 0, false);
        progress.Increment();
        progress.Increment();
    }
    XProgressStrategy::SetThreadStrategy(nullptr);
    ASSERT_EQ(recorder.itsMessages.size(), 3u); // begin at the first step, the second step, end
    EXPECT_DOUBLE_EQ(recorder.itsMessages[0].GetFraction(), 0.5);
    EXPECT_DOUBLE_EQ(recorder.itsMessages[1].GetFraction(), 1.0);
    EXPECT_FALSE(recorder.itsMessages[1].IsFinished());
    EXPECT_TRUE(recorder.itsMessages[2].IsFinished());
    EXPECT_EQ(recorder.itsMessages[0].GetSpeaker(), &speaker);
}

TEST_F(ProgressTest, CancelStopsOnlyCancellableProgress)
{
    auto strategy = std::make_shared<XThreadProgressStrategy>(nullptr, XSpeaker::kQueued);
    XProgressStrategy::XThreadScope scope(strategy);
    strategy->RequestCancel();
    {
        XProgress steady(10, 3, 0, false);
        for (int i = 0; i < 10; ++i)
            steady.Increment();
    }
    try
    {
        XProgress cancellable(10, 3, 3600000, true); // also while not shown yet
        cancellable.Increment();
        FAIL() << "the cancel was not seen";
    }
    catch (const XException & anException)
    {
        EXPECT_EQ(anException.GetErrorNumber(), UInt32(kErrThreadStopped));
    }
    strategy->ClearCancel();
    XProgress again(10, 3, 0, true);
    EXPECT_NO_THROW(again.Increment());
}

TEST_F(ProgressTest, EndIsReportedWhenAnExceptionLeavesTheRun)
{
    auto strategy = std::make_shared<XRecordingStrategy>();
    XProgressStrategy::SetStrategy(strategy);
    try
    {
        XProgress progress(10, 3, 0, false);
        progress.Increment(3);
        throw std::runtime_error("tool failed");
    }
    catch (const std::runtime_error &)
    {
    }
    std::vector<XRecordingStrategy::XCall> calls = strategy->Calls();
    EXPECT_EQ(strategy->Kinds(), "be");
    EXPECT_TRUE(calls[1].itsReport.itsFinished);
    EXPECT_DOUBLE_EQ(calls[1].itsReport.itsFraction, 0.3);
}

TEST_F(ProgressTest, TerminalLineShowsBarPercentMessageAndTimeLeft)
{
    XProgressStrategy::XReport report;
    report.itsFraction = 0.5;
    report.itsMessage = "Median";
    report.itsRemainingSeconds = 10.4;
    // 80 columns: the line is kept to 79, the bar to a third of it (26).
    EXPECT_EQ(XTerminalProgressStrategy::MakeLine(report, 80, 0),
              "[" + std::string(13, '#') + std::string(13, '-') + "]  50%  Median  (0:10 left)");
    report.itsRemainingSeconds = 3725.0;
    report.itsMessage = "a\nb";
    EXPECT_EQ(XTerminalProgressStrategy::MakeLine(report, 80, 0),
              "[" + std::string(13, '#') + std::string(13, '-') + "]  50%  a b  (1:02:05 left)");
    report.itsFraction = -1.0;
    report.itsRemainingSeconds = -1.0;
    report.itsMessage = "Loading";
    EXPECT_EQ(XTerminalProgressStrategy::MakeLine(report, 80, 1), "[/]  Loading");
    // Long messages are cut to the width, never inside a UTF-8 character.
    report.itsMessage = std::string(30, 'x') + "\xC3\xA9\xC3\xA9\xC3\xA9";
    std::string line = XTerminalProgressStrategy::MakeLine(report, 38, 0);
    EXPECT_EQ(line, "[|]  " + std::string(30, 'x') + "\xC3\xA9");
}

TEST_F(ProgressTest, TerminalStrategyDrawsOnlyWhereAsked)
{
    int pipeEnds[2];
    ASSERT_EQ(::pipe(pipeEnds), 0);
    EXPECT_FALSE(XTerminalProgressStrategy(pipeEnds[1], true).IsDrawing());

    auto strategy = std::make_shared<XTerminalProgressStrategy>(pipeEnds[1], false);
    EXPECT_TRUE(strategy->IsDrawing());
    XProgressStrategy::SetStrategy(strategy);
    {
        XProgress progress(4, 2, 0, false);
        for (int i = 0; i < 4; ++i)
            progress.Increment();
    }
    ::close(pipeEnds[1]);
    std::string output;
    char buffer[4096];
    ssize_t count = 0;
    while ((count = ::read(pipeEnds[0], buffer, sizeof(buffer))) > 0)
        output.append(buffer, std::size_t(count));
    ::close(pipeEnds[0]);
    ASSERT_FALSE(output.empty());
    EXPECT_EQ(output.front(), '\r');
    EXPECT_NE(output.find(" 25%"), std::string::npos); // the first draw, at begin
    EXPECT_NE(output.find("100%\n"), std::string::npos); // the last, ended by a line break
    EXPECT_EQ(output.back(), '\n');
}
