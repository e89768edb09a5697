#include "XSessionLogManager.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "XUserFolders.h"

namespace
{
// Never destroyed: internal errors may be logged while statics are being torn down.
std::mutex & LogMutex()
{
    static std::mutex * sMutex = new std::mutex;
    return *sMutex;
}

std::string MakeLine(const std::string & aText)
{
    struct timespec now;
    ::clock_gettime(CLOCK_REALTIME, &now);
    std::time_t seconds = now.tv_sec;
    struct tm parts;
    ::gmtime_r(&seconds, &parts);
    char stamp[64];
    std::snprintf(stamp, sizeof(stamp), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ [%d] ",
                  parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday, parts.tm_hour,
                  parts.tm_min, parts.tm_sec, static_cast<int>(now.tv_nsec / 1000000),
                  static_cast<int>(::getpid()));
    std::string line(stamp);
    line.reserve(line.size() + aText.size() + 1);
    for (char c : aText)
    {
        if (c == '\n')
            line += "\\n";
        else if (c == '\r')
            line += "\\r";
        else
            line += c;
    }
    line += '\n';
    return line;
}

bool WriteAll(int aFile, const std::string & aLine)
{
    const char * data = aLine.data();
    std::size_t left = aLine.size();
    while (left > 0)
    {
        ssize_t written = ::write(aFile, data, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        data += written;
        left -= static_cast<std::size_t>(written);
    }
    return true;
}
} // namespace

XFileSpec XSessionLogManager::GetLogFileSpec()
{
    return XFileSpec(XString(
        XUserFolders::FindUserFile("BRINDLE_SESSION_LOG", "XDG_STATE_HOME", ".local/state", "session.log")));
}

void XSessionLogManager::AddEntry(const XString & aText) noexcept
{
    try
    {
        std::string path = GetLogFileSpec().GetPath().GetStdString();
        if (path.empty())
            return;
        std::string line = MakeLine(aText.GetStdString());

        std::lock_guard<std::mutex> guard(LogMutex());
        std::size_t slash = path.find_last_of('/');
        if (slash != std::string::npos && slash > 0 && !XUserFolders::MakeFolders(path.substr(0, slash)))
            return;
        struct stat info;
        if (::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
            UInt64(info.st_size) > kMaxLogSize)
            ::rename(path.c_str(), (path + ".1").c_str());
        int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
        if (file < 0)
            return;
        WriteAll(file, line);
        ::close(file);
    }
    catch (...)
    {
        // A log that cannot be written is skipped: logging must never add a failure.
    }
}
