#include "XUserFolders.h"

#include <cerrno>
#include <cstdlib>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

const char * XUserFolders::GetEnvironment(const char * aName)
{
    const char * value = std::getenv(aName);
    return value != nullptr && *value != '\0' ? value : nullptr;
}

bool XUserFolders::IsTestMode()
{
    const char * mode = GetEnvironment("BRINDLE_TEST_MODE");
    return mode != nullptr && std::string(mode) != "0";
}

std::string XUserFolders::GetHomeFolder()
{
    if (const char * home = GetEnvironment("HOME"))
        return home;
    struct passwd entry;
    struct passwd * found = nullptr;
    char buffer[4096];
    if (::getpwuid_r(::getuid(), &entry, buffer, sizeof(buffer), &found) == 0 && found != nullptr &&
        found->pw_dir != nullptr)
        return found->pw_dir;
    return std::string();
}

std::string XUserFolders::FindUserFile(const char * anOverride, const char * aXdgVariable,
                                       const char * aHomeFallback, const char * aFileName)
{
    if (const char * path = GetEnvironment(anOverride))
        return path;
    if (IsTestMode())
    {
        const char * temporary = GetEnvironment("TMPDIR");
        return std::string(temporary != nullptr ? temporary : "/tmp") + "/brindle-test-" +
               std::to_string(::getuid()) + "/" + aFileName;
    }
    const char * base = GetEnvironment(aXdgVariable);
    if (base != nullptr && base[0] == '/')
        return std::string(base) + "/brindle/" + aFileName;
    std::string home = GetHomeFolder();
    if (home.empty())
        return std::string();
    return home + "/" + aHomeFallback + "/brindle/" + aFileName;
}

bool XUserFolders::MakeFolders(const std::string & aFolder)
{
    if (aFolder.empty())
        return true;
    std::size_t position = 0;
    while (position != std::string::npos)
    {
        position = aFolder.find('/', position + 1);
        std::string part = aFolder.substr(0, position);
        if (::mkdir(part.c_str(), 0700) != 0 && errno != EEXIST)
            return false;
    }
    struct stat info;
    return ::stat(aFolder.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}
