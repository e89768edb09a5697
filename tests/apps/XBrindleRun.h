#pragma once
// Runs the brindle program as a user would, with its output caught, in a folder of the test's
// own; and reads and writes the volume files that it takes and makes, through the library.

#include <gtest/gtest.h>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "XFileSpec.h"
#include "XFileStream.h"
#include "XGrey32Volume.h"
#include "XVolume.h"
#include "XVolumeTestSupport.h"

extern char ** environ;

// What one run of the program did: its exit status (128 + the signal when a signal ended it)
// and what it wrote on standard output and standard error.
struct XBrindleResult
{
    int itsStatus = -1;
    std::string itsOut;
    std::string itsError;

    // True for a failure told as one line "brindle COMMAND: ..." that contains aText.
    bool FailedWith(int aStatus, const std::string & aCommand, const std::string & aText) const
    {
        const std::string head = "brindle " + aCommand + ": ";
        const bool oneLine = !itsError.empty() && itsError.find('\n') == itsError.size() - 1;
        return itsStatus == aStatus && oneLine && itsError.compare(0, head.size(), head) == 0 &&
               itsError.find(aText) != std::string::npos;
    }
};

inline std::ostream & operator<<(std::ostream & aStream, const XBrindleResult & aResult)
{
    return aStream << "status " << aResult.itsStatus << ", stdout \"" << aResult.itsOut << "\", stderr \""
                   << aResult.itsError << "\"";
}

inline std::string XReadText(const std::filesystem::path & aPath)
{
    std::ifstream file(aPath, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

// A test whose files live in a fresh folder, removed afterwards.
class XBrindleTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        static int sCount = 0;
        itsFolder = std::filesystem::temp_directory_path() /
                    ("brindle-apps-test-" + std::to_string(::getpid()) + "-" + std::to_string(++sCount));
        std::filesystem::create_directories(itsFolder);
    }
    void TearDown() override { std::filesystem::remove_all(itsFolder); }

    std::string PathOf(const std::string & aName) const { return (itsFolder / aName).string(); }

    // Runs brindle with anArguments in the test's folder.
    XBrindleResult Run(const std::vector<std::string> & anArguments) const
    {
        const std::string out = PathOf(".stdout");
        const std::string error = PathOf(".stderr");
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        posix_spawn_file_actions_addopen(&actions, 2, error.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
        std::vector<std::string> words = {BRINDLE_TOOL_PATH};
        words.insert(words.end(), anArguments.begin(), anArguments.end());
        std::vector<char *> argv;
        for (std::string & word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        const std::filesystem::path before = std::filesystem::current_path();
        std::filesystem::current_path(itsFolder);
        pid_t child = 0;
        const int spawned = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
        std::filesystem::current_path(before);
        posix_spawn_file_actions_destroy(&actions);
        XBrindleResult result;
        if (spawned != 0)
            return result;
        int status = 0;
        ::waitpid(child, &status, 0);
        result.itsStatus = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
        result.itsOut = XReadText(out);
        result.itsError = XReadText(error);
        std::filesystem::remove(out);
        std::filesystem::remove(error);
        return result;
    }

    // The names of the files in the test's folder, sorted.
    std::vector<std::string> Files() const
    {
        std::vector<std::string> names;
        for (const auto & entry : std::filesystem::directory_iterator(itsFolder))
            names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }

    std::filesystem::path itsFolder;
};

// Writes aVolume as a .bvol file: the stream header, then the object.
inline void XWriteVolumeFile(const XVolume & aVolume, const std::string & aPath, XByteOrder anOrder = kLittleEndian)
{
    XFileStream stream(XFileSpec(aPath), kCreate, XFileStream::kDefaultBufferSize, anOrder);
    stream.WriteStreamInfo();
    stream.WriteObject(aVolume);
    stream.Flush();
}

// Reads a .bvol file as class V. The 32-bit grey volume has no registered word: its stream
// constructor reads it after its class word.
template <class V>
std::unique_ptr<V> XReadVolumeFile(const std::string & aPath)
{
    XFileStream stream(XFileSpec(aPath), kReadOnly);
    stream.ReadStreamInfo();
    if constexpr (std::is_same_v<V, XGrey32Volume>)
    {
        EXPECT_EQ(stream.Read32(), XGrey32Volume::kClassID);
        return std::make_unique<V>(stream);
    }
    else
    {
        return std::unique_ptr<V>(stream.ReadObjectAs<V>());
    }
}
