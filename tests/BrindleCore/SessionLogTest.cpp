// The session log: where it is, the form of its lines, threads, failures that must stay silent,
// the turn-over of a full file, and the internal-error path that writes to it.

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "XAssert.h"
#include "XFileSpec.h"
#include "XSessionLogManager.h"
#include "XTestSupport.h"

namespace
{
// A log file in a folder of its own (which does not exist yet), both removed at the end.
class XTemporaryLog
{
public:
    XTemporaryLog()
        : itsFolder(XFileSpec::MakeTemporary("session-log-test").GetPath().GetStdString()),
          itsPath(itsFolder + "/logs/session.log"), itsEnvironment("BRINDLE_SESSION_LOG", itsPath.c_str())
    {
    }
    ~XTemporaryLog()
    {
        ::unlink(itsPath.c_str());
        ::unlink((itsPath + ".1").c_str());
        ::rmdir((itsFolder + "/logs").c_str());
        ::rmdir(itsFolder.c_str());
    }
    std::vector<std::string> Lines() const
    {
        std::ifstream file(itsPath);
        std::vector<std::string> lines;
        std::string line;
        while (std::getline(file, line))
            lines.push_back(line);
        return lines;
    }

    std::string itsFolder;
    std::string itsPath;
    XScopedEnvironment itsEnvironment;
};

// The text part of a line, after the time and the process id; empty if the line is malformed.
// The form: "YYYY-MM-DDTHH:MM:SS.mmmZ [pid] text".
std::string TextOf(const std::string & aLine)
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
} // namespace

TEST(SessionLogTest, AppendsOneLinePerEntry)
{
    XTemporaryLog log;
    EXPECT_EQ(XSessionLogManager::GetLogFileSpec().GetPath(), log.itsPath);
    XSessionLogManager::AddEntry("first entry");
    XSessionLogManager::AddEntry("two\nlines\r\n");
    std::vector<std::string> lines = log.Lines();
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(TextOf(lines[0]), "first entry");
    EXPECT_EQ(TextOf(lines[1]), "two\\nlines\\r\\n");
}

TEST(SessionLogTest, PlaceFollowsTheEnvironment)
{
    XScopedEnvironment noOverride("BRINDLE_SESSION_LOG", nullptr);
    XScopedEnvironment noTestMode("BRINDLE_TEST_MODE", nullptr);
    XScopedEnvironment state("XDG_STATE_HOME", "/somewhere/state");
    EXPECT_EQ(XSessionLogManager::GetLogFileSpec().GetPath(), "/somewhere/state/brindle/session.log");
    XScopedEnvironment relative("XDG_STATE_HOME", "relative/state");
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
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 4; ++writer)
        writers.emplace_back([writer] {
            for (int i = 0; i < 100; ++i)
                XSessionLogManager::AddEntry("writer " + std::to_string(writer) + " entry " + std::to_string(i));
        });
    for (std::thread & writer : writers)
        writer.join();
    std::vector<std::string> lines = log.Lines();
    ASSERT_EQ(lines.size(), 400u);
    int counts[4] = {0, 0, 0, 0};
    for (const std::string & line : lines)
    {
        std::string text = TextOf(line);
        ASSERT_EQ(text.rfind("writer ", 0), 0u) << line;
        ++counts[text[7] - '0'];
    }
    for (int count : counts)
        EXPECT_EQ(count, 100);
}

TEST(SessionLogTest, UnwritableLogIsSkippedSilently)
{
    XTemporaryLog log;
    ::mkdir(log.itsFolder.c_str(), 0700);
    std::ofstream(log.itsFolder + "/logs") << "a file where the folder should be";
    EXPECT_NO_THROW(XSessionLogManager::AddEntry("lost"));
    ::unlink((log.itsFolder + "/logs").c_str());
    XScopedEnvironment onFolder("BRINDLE_SESSION_LOG", log.itsFolder.c_str());
    EXPECT_NO_THROW(XSessionLogManager::AddEntry("lost too"));
}

TEST(SessionLogTest, FullLogIsTurnedOver)
{
    XTemporaryLog log;
    XSessionLogManager::AddEntry("old entry");
    ASSERT_EQ(::truncate(log.itsPath.c_str(), off_t(XSessionLogManager::kMaxLogSize + 1)), 0);
    XSessionLogManager::AddEntry("new entry");
    std::vector<std::string> lines = log.Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(TextOf(lines[0]), "new entry");
    struct stat info;
    ASSERT_EQ(::stat((log.itsPath + ".1").c_str(), &info), 0);
    EXPECT_EQ(UInt64(info.st_size), XSessionLogManager::kMaxLogSize + 1);
}

TEST(SessionLogTest, InternalErrorsAreLogged)
{
    XTemporaryLog log;
    int two = 2;
    EXPECT_THROW(XAssert(two == 3), XInternalError);
    std::vector<std::string> lines = log.Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_NE(TextOf(lines[0]).find("two == 3"), std::string::npos);
}
