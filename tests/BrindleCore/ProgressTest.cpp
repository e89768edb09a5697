// Progress: what reaches the strategy (begin, changes, end), delays, nesting, cancel, the thread
// strategy's coalescing messages and the terminal bar's line.

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <unistd.h>

#include "XException.h"
#include "XInternalError.h"
#include "XListener.h"
#include "XProgress.h"
#include "XProgressChangedMessage.h"
#include "XProgressStrategy.h"
#include "XSpeaker.h"
#include "XTerminalProgressStrategy.h"
#include "XTestSupport.h"
#include "XThreadProgressStrategy.h"

namespace
{
// Records every call as a letter (b begin, c changed, e end) and its report; thread-safe.
class XRecordingStrategy : public XProgressStrategy
{
public:
    void ProgressBegin(const XReport & aReport) override { Add('b', aReport); }
    void ProgressChanged(const XReport & aReport) override { Add('c', aReport); }
    void ProgressEnd(const XReport & aReport) override { Add('e', aReport); }

    std::string Kinds()
    {
        std::lock_guard<std::mutex> guard(itsMutex);
        return itsKinds;
    }
    std::vector<XReport> Reports()
    {
        std::lock_guard<std::mutex> guard(itsMutex);
        return itsReports;
    }

private:
    void Add(char aKind, const XReport & aReport)
    {
        std::lock_guard<std::mutex> guard(itsMutex);
        itsKinds += aKind;
        itsReports.push_back(aReport);
    }

    std::mutex itsMutex;
    std::string itsKinds;
    std::vector<XReport> itsReports;
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

// Runs aSteps increments of a progress of aTotal steps and type 3.
void RunSteps(UInt64 aTotal, UInt64 aSteps, UInt32 aDelayMs = 0, bool aCanCancel = false)
{
    XProgress progress(aTotal, XProgress::kProgressWithEstimate, aDelayMs, aCanCancel);
    for (UInt64 i = 0; i < aSteps; ++i)
        progress.Increment();
}

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
    std::shared_ptr<XRecordingStrategy> itsStrategy = std::make_shared<XRecordingStrategy>();
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
    EXPECT_EQ(XProgress::GetCurrentProgress(), &progress);
    EXPECT_DOUBLE_EQ(XProgress(0, 3, 0, false).GetFraction(), 1.0);
    EXPECT_THROW(XProgress(1, 4, 0, false), XInternalError);
}

TEST_F(ProgressTest, StrategySeesBeginChangesAndEnd)
{
    XProgressStrategy::SetStrategy(itsStrategy);
    {
        XProgress progress(4, XProgress::kProgressDeterminate, 0, false);
        progress.SetMessage("Gauss");
        for (int i = 0; i < 4; ++i)
            progress.Increment();
    }
    std::vector<XProgressStrategy::XReport> reports = itsStrategy->Reports();
    ASSERT_EQ(itsStrategy->Kinds(), "bcccce");
    EXPECT_DOUBLE_EQ(reports[0].itsFraction, 0.0); // shown by the message
    EXPECT_EQ(reports[0].itsMessage, "Gauss");
    EXPECT_DOUBLE_EQ(reports[1].itsFraction, 0.25);
    EXPECT_DOUBLE_EQ(reports[4].itsFraction, 1.0);
    EXPECT_FALSE(reports[4].itsFinished);
    EXPECT_TRUE(reports[5].itsFinished);
    EXPECT_DOUBLE_EQ(reports[5].itsFraction, 1.0);
    EXPECT_LT(reports[5].itsRemainingSeconds, 0.0); // no estimate for type 2
    for (const XProgressStrategy::XReport & report : reports)
        EXPECT_EQ(report.itsTaskID, reports[0].itsTaskID);

    // Type 1 has no fraction; type 3 estimates the time left once it has a fraction.
    {
        XProgress busy(0, XProgress::kProgressIndeterminate, 0, false);
        busy.Increment(64);
    }
    EXPECT_LT(itsStrategy->Reports().back().itsFraction, 0.0);
    RunSteps(2, 1);
    EXPECT_GE(itsStrategy->Reports().back().itsRemainingSeconds, 0.0);
    EXPECT_NE(itsStrategy->Reports().back().itsTaskID, reports[0].itsTaskID);

    // The end is reported when an exception leaves the run.
    const std::size_t before = itsStrategy->Kinds().size();
    try
    {
        XProgress progress(10, 3, 0, false);
        progress.Increment(3);
        throw std::runtime_error("tool failed");
    }
    catch (const std::runtime_error &)
    {
    }
    EXPECT_EQ(itsStrategy->Kinds().substr(before), "be");
    EXPECT_TRUE(itsStrategy->Reports().back().itsFinished);
    EXPECT_DOUBLE_EQ(itsStrategy->Reports().back().itsFraction, 0.3);
}

TEST_F(ProgressTest, ShortRunsAndHiddenProgressStayQuiet)
{
    XProgressStrategy::SetStrategy(itsStrategy);
    RunSteps(100, 100, 3600000); // shown after an hour only
    {
        XProgress hidden(100, XProgress::kProgressHidden, 0, false);
        for (int i = 0; i < 100; ++i)
            hidden.Increment();
        RunSteps(10, 1); // a part of a hidden task is hidden too
    }
    EXPECT_EQ(itsStrategy->Kinds(), "");
}

TEST_F(ProgressTest, NestedProgressFillsOneStepOfTheOuter)
{
    XProgressStrategy::SetStrategy(itsStrategy);
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
    std::vector<XProgressStrategy::XReport> reports = itsStrategy->Reports();
    ASSERT_EQ(itsStrategy->Kinds(), "bccccccccce");
    // begin (message), outer 1/4, inner message, inner 1/10 ... 5/10, hidden step, outer 2/4, end.
    EXPECT_EQ(reports[0].itsMessage, "Outer");
    EXPECT_DOUBLE_EQ(reports[1].itsFraction, 0.25);
    EXPECT_EQ(reports[2].itsMessage, "Inner");
    EXPECT_DOUBLE_EQ(reports[3].itsFraction, 0.275);
    EXPECT_DOUBLE_EQ(reports[7].itsFraction, 0.375);
    EXPECT_EQ(reports[8].itsMessage, "Inner");
    EXPECT_DOUBLE_EQ(reports[8].itsFraction, 0.375);
    EXPECT_EQ(reports[9].itsMessage, "Outer");
    EXPECT_DOUBLE_EQ(reports[9].itsFraction, 0.5);
    EXPECT_EQ(XProgress::GetCurrentProgress(), nullptr);
}

TEST_F(ProgressTest, ThreadStrategyOverridesTheProcessStrategy)
{
    auto ownStrategy = std::make_shared<XRecordingStrategy>();
    XProgressStrategy::SetStrategy(itsStrategy);
    std::thread([&] {
        XProgressStrategy::XThreadScope scope(ownStrategy);
        EXPECT_EQ(XProgressStrategy::GetStrategyInForce(), ownStrategy);
        RunSteps(2, 1);
    }).join();
    RunSteps(2, 1);
    EXPECT_EQ(ownStrategy->Kinds(), "be");
    EXPECT_EQ(itsStrategy->Kinds(), "be");
    EXPECT_EQ(XProgressStrategy::GetThreadStrategy(), nullptr);

    // A silent strategy quiets one thread.
    XProgressStrategy::XThreadScope silence(std::make_shared<XProgressStrategy>());
    RunSteps(2, 1);
    EXPECT_EQ(itsStrategy->Kinds(), "be");
}

TEST_F(ProgressTest, ThreadStrategyPostsCoalescingMessagesOrSpeaksAtOnce)
{
    auto queued = std::make_shared<XThreadProgressStrategy>(nullptr, XSpeaker::kQueued);
    XProgressRecorder recorder;
    recorder.Subscribe(*queued);
    std::thread([&] {
        XProgressStrategy::XThreadScope scope(queued);
        XProgress progress(1000, 3, 0, false);
        progress.SetMessage("Deconvolve");
        for (int i = 0; i < 1000; ++i)
            progress.Increment();
    }).join();
    EXPECT_TRUE(recorder.itsMessages.empty());
    EXPECT_EQ(XSpeaker::ProcessAllNextEventMessages(), 1u);
    ASSERT_EQ(recorder.itsMessages.size(), 1u);
    EXPECT_TRUE(recorder.itsMessages[0].IsFinished());
    EXPECT_DOUBLE_EQ(recorder.itsMessages[0].GetFraction(), 1.0);
    EXPECT_EQ(recorder.itsMessages[0].GetMessageA(), "Deconvolve");
    EXPECT_EQ(recorder.itsMessages[0].GetSpeaker(), queued.get());

    // Through a given speaker, at once.
    XSpeaker speaker;
    XProgressRecorder direct;
    direct.Subscribe(speaker);
    XProgressStrategy::SetThreadStrategy(std::make_shared<XThreadProgressStrategy>(&speaker, XSpeaker::kImmediately));
    {
        XProgress progress(2, 2, 0, false);
        progress.Increment();
        progress.Increment();
    }
    XProgressStrategy::SetThreadStrategy(nullptr);
    ASSERT_EQ(direct.itsMessages.size(), 3u); // begin at the first step, the second step, end
    EXPECT_DOUBLE_EQ(direct.itsMessages[0].GetFraction(), 0.5);
    EXPECT_DOUBLE_EQ(direct.itsMessages[1].GetFraction(), 1.0);
    EXPECT_FALSE(direct.itsMessages[1].IsFinished());
    EXPECT_TRUE(direct.itsMessages[2].IsFinished());
    EXPECT_EQ(direct.itsMessages[0].GetSpeaker(), &speaker);
}

TEST_F(ProgressTest, CancelStopsOnlyCancellableProgress)
{
    auto strategy = std::make_shared<XThreadProgressStrategy>(nullptr, XSpeaker::kQueued);
    XProgressStrategy::XThreadScope scope(strategy);
    strategy->RequestCancel();
    EXPECT_NO_THROW(RunSteps(10, 10));
    // Also while not shown yet.
    EXPECT_EQ(ErrorOf([] { RunSteps(10, 1, 3600000, true); }), UInt32(kErrThreadStopped));
    strategy->ClearCancel();
    EXPECT_NO_THROW(RunSteps(10, 1, 0, true));
}

TEST_F(ProgressTest, TerminalLineShowsBarPercentMessageAndTimeLeft)
{
    XProgressStrategy::XReport report;
    report.itsFraction = 0.5;
    report.itsMessage = "Median";
    report.itsRemainingSeconds = 10.4;
    // 80 columns: the line is kept to 79, the bar to a third of it (26).
    const std::string bar = "[" + std::string(13, '#') + std::string(13, '-') + "]  50%  ";
    EXPECT_EQ(XTerminalProgressStrategy::MakeLine(report, 80, 0), bar + "Median  (0:10 left)");
    report.itsRemainingSeconds = 3725.0;
    report.itsMessage = "a\nb";
    EXPECT_EQ(XTerminalProgressStrategy::MakeLine(report, 80, 0), bar + "a b  (1:02:05 left)");
    report.itsFraction = -1.0;
    report.itsRemainingSeconds = -1.0;
    report.itsMessage = "Loading";
    EXPECT_EQ(XTerminalProgressStrategy::MakeLine(report, 80, 1), "[/]  Loading");
    // Long messages are cut to the width, never inside a UTF-8 character.
    report.itsMessage = std::string(30, 'x') + "\xC3\xA9\xC3\xA9\xC3\xA9";
    EXPECT_EQ(XTerminalProgressStrategy::MakeLine(report, 38, 0), "[|]  " + std::string(30, 'x') + "\xC3\xA9");
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
    for (ssize_t count = 0; (count = ::read(pipeEnds[0], buffer, sizeof(buffer))) > 0;)
        output.append(buffer, std::size_t(count));
    ::close(pipeEnds[0]);
    ASSERT_FALSE(output.empty());
    EXPECT_EQ(output.front(), '\r');
    EXPECT_NE(output.find(" 25%"), std::string::npos);   // the first draw, at begin
    EXPECT_NE(output.find("100%\n"), std::string::npos); // the last, ended by a line break
    EXPECT_EQ(output.back(), '\n');
}
