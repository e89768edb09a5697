#pragma once
// Helpers of the foundation's tests: a worker whose body is a function, work spread over plain
// threads, a scratch folder that goes with its contents, whole files as text, and the bytes of
// a memory handle.

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include "XFileSpec.h"
#include "XMemoryHandle.h"
#include "XTestSupport.h"
#include "XThread.h"

constexpr UInt32 kBoundMs = 10000; // long enough never to run out unless something is broken

// A worker whose body is a function, counting the calls of the protected hooks. The body may
// use the test's locals, so the destructor stops the worker and waits for it.
class XTestThread : public XThread
{
public:
    using XBody = std::function<UInt32(XTestThread &)>;

    explicit XTestThread(XBody aBody, const XString & aName = "probe",
                         XThreadPriority aPriority = kThreadPriorityNormal, UInt32 aStackSize = 0)
        : XThread(aName, aPriority, aStackSize, false), itsBody(std::move(aBody))
    {
    }
    ~XTestThread() override
    {
        if (!StopThread(kBoundMs))
        {
            ADD_FAILURE() << "a worker did not end";
            std::abort();
        }
    }

    std::atomic<int> itsStoppingCalls{0};
    std::atomic<int> itsAsyncStopCalls{0};
    std::atomic<int> itsFinishCalls{0};
    std::atomic<bool> itsFinishSawSelf{false};
    XTestGate itsSuspendings;
    XTestGate itsResumings;

protected:
    UInt32 RunSelf() override { return itsBody(*this); }
    void Stopping() override { ++itsStoppingCalls; }
    void AsyncStopThreadSelf() override { ++itsAsyncStopCalls; }
    void Suspending() override { itsSuspendings.Arrive(); }
    void Resuming() override { itsResumings.Arrive(); }
    void FinishThreadSelf() override
    {
        itsFinishSawSelf = GetCurrentThread() == this;
        ++itsFinishCalls;
    }

private:
    XBody itsBody;
};

// Runs aWork(0) to aWork(aCount - 1), each on a thread of its own, and waits for them all.
inline void RunOnThreads(int aCount, const std::function<void(int)> & aWork)
{
    std::vector<std::thread> threads;
    for (int index = 0; index < aCount; ++index)
        threads.emplace_back(aWork, index);
    for (std::thread & thread : threads)
        thread.join();
}

// A fresh folder in the temporary folder, removed with everything in it at the end.
class XTemporaryFolder
{
public:
    explicit XTemporaryFolder(const char * aPrefix = "brindle-test")
        : itsPath(XFileSpec::MakeTemporary(aPrefix).GetPath().GetStdString())
    {
        ::mkdir(itsPath.c_str(), 0700);
    }
    XTemporaryFolder(const XTemporaryFolder &) = delete;
    XTemporaryFolder & operator=(const XTemporaryFolder &) = delete;
    ~XTemporaryFolder() { Remove(itsPath); }

    std::string Path(const std::string & aName) const { return itsPath + "/" + aName; }
    XFileSpec Spec(const std::string & aName) const { return XFileSpec(XString(Path(aName))); }
    // The names in a folder below this one, without "." and "..".
    std::vector<std::string> Names(const std::string & aFolder = ".") const
    {
        std::vector<std::string> names;
        if (DIR * folder = ::opendir(Path(aFolder).c_str()))
        {
            while (dirent * entry = ::readdir(folder))
                if (std::string(entry->d_name) != "." && std::string(entry->d_name) != "..")
                    names.push_back(entry->d_name);
            ::closedir(folder);
        }
        return names;
    }

private:
    static void Remove(const std::string & aPath)
    {
        if (DIR * folder = ::opendir(aPath.c_str()))
        {
            while (dirent * entry = ::readdir(folder))
                if (std::string(entry->d_name) != "." && std::string(entry->d_name) != "..")
                    Remove(aPath + "/" + entry->d_name);
            ::closedir(folder);
            ::rmdir(aPath.c_str());
        }
        else
            ::unlink(aPath.c_str());
    }
    std::string itsPath;
};

inline std::string ReadText(const std::string & aPath)
{
    std::ifstream file(aPath, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

inline void WriteText(const std::string & aPath, const std::string & aText)
{
    std::ofstream(aPath, std::ios::binary) << aText;
}

inline std::vector<UInt8> ContentsOf(const XMemoryHandle & aHandle)
{
    std::vector<UInt8> bytes(aHandle.GetDataSize());
    aHandle.CopyDataTo(bytes.data(), 0, bytes.size());
    return bytes;
}
