// The session log: where it is, the form of its lines, threads, failures that must stay silent,
// the turn-over of a full file, and the internal-error path that writes to it.

#include <gtest/gtest.h>

#include "XAssert.h"
#include "XFoundationTestSupport.h"
#include "XSessionLogManager.h"

namespace
{
// A log file in a folder that does not exist yet, named by the environment.
class XTemporaryLog : public XTemporaryFolder
{
public:
    XTemporaryLog() : itsPath(Path("logs/session.log")), itsEnvironment("BRINDLE_SESSION_LOG", itsPath.c_str()) {}

    // The text part of each line, after the time and the process id; empty if the line is
    // malformed. The form: "YYYY-MM-DDTHH:MM:SS.mmmZ [pid] text".
    std::vector<std::string> Texts() const
    {
        std::vector<std::string> texts;
        std::istringstream lines(ReadText(itsPath));
        for (std::string line; std::getline(lines, line);)
            texts.push_back(TextOf(line));
        return texts;
    }

    std::string itsPath;
    XScopedEnvironment itsEnvironment;

private:
    static std::string TextOf(const std::string & aLine)
    {
        const std::string form = "dddd-dd-ddTdd:dd:dd.dddZ [";
        if (aLine.size() < form.size())
            return std::string();
        for (std::size_t i = 0; i < form.size(); ++i)
        {
            bool digit = aLine[i] >= '0' && aLine[i] <= '9';
            if (form[i] == 'd' ? !digit : aLine[i] != form[i])
                return std::string();
        }
        std::string pid = "[" + std::to_string(::getpid()) + "] ";
        if (aLine.compare(form.size() - 1, pid.size(), pid) != 0)
            return std::string();
        return aLine.substr(form.size() - 1 + pid.size());
    }
};
} // namespace

TEST(SessionLogTest, AppendsOneLinePerEntryAndEachInternalError)
{
    XTemporaryLog log;
    EXPECT_EQ(XSessionLogManager::GetLogFileSpec().GetPath(), log.itsPath);
    XSessionLogManager::AddEntry("first entry");
    XSessionLogManager::AddEntry("two\nlines\r\n");
    int two = 2;
    EXPECT_THROW(XAssert(two == 3), XInternalError);
    std::vector<std::string> texts = log.Texts();
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(texts[0], "first entry");
    EXPECT_EQ(texts[1], "two\\nlines\\r\\n");
    EXPECT_NE(texts[2].find("two == 3"), std::string::npos);
}

TEST(SessionLogTest, PlaceFollowsTheEnvironment)
{
    XScopedEnvironment noOverride("BRINDLE_SESSION_LOG", nullptr);
    XScopedEnvironment noTestMode("BRINDLE_TEST_MODE", nullptr);
    XScopedEnvironment state("XDG_STATE_HOME", "/somewhere/state");
    EXPECT_EQ(XSessionLogManager::GetLogFileSpec().GetPath(), "/somewhere/state/brindle/session.log");
    XScopedEnvironment relative("XDG_STATE_HOME", "relative/state"); // not absolute: ignored
    XScopedEnvironment home("HOME", "/home/someone");
    EXPECT_EQ(XSessionLogManager::GetLogFileSpec().GetPath(), "/home/someone/.local/state/brindle/session.log");
    XScopedEnvironment testMode("BRINDLE_TEST_MODE", "1");
    std::string inTests = XSessionLogManager::GetLogFileSpec().GetPath().GetStdString();
    EXPECT_NE(inTests.find("/brindle-test-"), std::string::npos);
    EXPECT_EQ(inTests.substr(inTests.size() - 12), "/session.log");
}

TEST(SessionLogTest, ThreadsWriteWholeLines)
{
    XTemporaryLog log;
    RunOnThreads(4, [](int aWriter) {
        for (int i = 0; i < 100; ++i)
            XSessionLogManager::AddEntry("writer " + std::to_string(aWriter) + " entry " + std::to_string(i));
    });
    std::vector<std::string> texts = log.Texts();
    ASSERT_EQ(texts.size(), 400u);
    int counts[4] = {0, 0, 0, 0};
    for (const std::string & text : texts)
    {
        ASSERT_EQ(text.rfind("writer ", 0), 0u) << text;
        ++counts[text[7] - '0'];
    }
    EXPECT_EQ(std::vector<int>(counts, counts + 4), std::vector<int>(4, 100));
}

TEST(SessionLogTest, FullLogTurnsOverAndAnUnwritableOneIsSkippedSilently)
{
    {
        XTemporaryLog log;
        XSessionLogManager::AddEntry("old entry");
        ASSERT_EQ(::truncate(log.itsPath.c_str(), off_t(XSessionLogManager::kMaxLogSize + 1)), 0);
        XSessionLogManager::AddEntry("new entry");
        EXPECT_EQ(log.Texts(), std::vector<std::string>{"new entry"});
        struct stat info;
        ASSERT_EQ(::stat((log.itsPath + ".1").c_str(), &info), 0);
        EXPECT_EQ(UInt64(info.st_size), XSessionLogManager::kMaxLogSize + 1);
    }
    XTemporaryLog log;
    WriteText(log.Path("logs"), "a file where the folder should be");
    EXPECT_NO_THROW(XSessionLogManager::AddEntry("lost"));
    XScopedEnvironment onFolder("BRINDLE_SESSION_LOG", log.Path("").c_str());
    EXPECT_NO_THROW(XSessionLogManager::AddEntry("lost too"));
}
