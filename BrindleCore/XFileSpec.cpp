#include "XFileSpec.h"

#include <atomic>
#include <cerrno>
#include <cstring>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "XException.h"
#include "XStream.h"

XFileSpec::XFileSpec(const XString & aPath) : itsPath(aPath) {}

XFileSpec::XFileSpec(XStream & aStream)
{
    XVersion word = ReadClassVersion(aStream, XVersion());
    CheckClassVersion(word, GetVersion());
    itsPath = aStream.ReadString();
}

XFileSpec::~XFileSpec() = default;

XString XFileSpec::GetName() const
{
    const std::string & path = itsPath.GetStdString();
    std::size_t slash = path.find_last_of('/');
    return XString(slash == std::string::npos ? path : path.substr(slash + 1));
}

XString XFileSpec::GetFolder() const
{
    const std::string & path = itsPath.GetStdString();
    std::size_t slash = path.find_last_of('/');
    if (slash == std::string::npos)
        return XString();
    return XString(slash == 0 ? std::string("/") : path.substr(0, slash));
}

bool XFileSpec::Exists() const
{
    struct stat info;
    return ::stat(itsPath.c_str(), &info) == 0;
}

UInt64 XFileSpec::GetFileSize() const
{
    struct stat info;
    if (::stat(itsPath.c_str(), &info) != 0)
        throw XException(kErrFileIO, itsPath.GetStdString() + ": " + std::strerror(errno));
    return UInt64(info.st_size);
}

bool XFileSpec::Delete() const
{
    return ::unlink(itsPath.c_str()) == 0;
}

XFileSpec XFileSpec::MakeTemporary(const XString & aPrefix)
{
    static std::atomic<UInt32> sCounter{0};
    const char * folder = std::getenv("TMPDIR");
    std::string base = folder != nullptr && *folder != '\0' ? folder : "/tmp";
    for (;;)
    {
        std::string path = base + "/" + aPrefix.GetStdString() + "-" +
                           std::to_string(::getpid()) + "-" + std::to_string(sCounter++);
        XFileSpec spec{XString(path)};
        if (!spec.Exists())
            return spec;
    }
}

void XFileSpec::ReadStream2(XStream & aStream, XOptions)
{
    ReadLevelVersion(aStream, GetVersion());
    itsPath = aStream.ReadString();
}

void XFileSpec::WriteStream2(XStream & aStream, XOptions) const
{
    aStream.WriteVersion(GetVersion());
    aStream.WriteString(itsPath);
}
