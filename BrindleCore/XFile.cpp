#include "XFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "XException.h"

namespace
{
[[noreturn]] void ThrowFileError(const XFileSpec & aSpec, const char * anAction)
{
    throw XException(kErrFileIO, std::string(anAction) + " " + aSpec.GetPath().GetStdString() +
                                     ": " + std::strerror(errno));
}

int OpenFlags(XFileMode aMode)
{
    switch (aMode)
    {
    case kReadOnly:
        return O_RDONLY;
    case kReadWrite:
        return O_RDWR | O_CREAT;
    case kCreate:
        return O_RDWR | O_CREAT | O_TRUNC;
    }
    throw XException(kErrBadArgument, "unknown file mode " + std::to_string(UInt32(aMode)));
}
} // namespace

XFile::XFile(const XFileSpec & aSpec, XFileMode aMode) : itsSpec(aSpec), itsMode(aMode)
{
    itsDescriptor = ::open(aSpec.GetPath().c_str(), OpenFlags(aMode) | O_CLOEXEC, 0644);
    if (itsDescriptor < 0)
        ThrowFileError(aSpec, "cannot open");
    struct stat info;
    if (::fstat(itsDescriptor, &info) == 0 && S_ISDIR(info.st_mode))
    {
        ::close(itsDescriptor);
        errno = EISDIR;
        ThrowFileError(aSpec, "cannot open");
    }
}

XFile::~XFile()
{
    if (itsDescriptor >= 0)
        ::close(itsDescriptor);
}

UInt64 XFile::ReadAt(SInt64 anOffset, void * aBuffer, UInt64 aByteCount) const
{
    auto * dest = static_cast<UInt8 *>(aBuffer);
    UInt64 done = 0;
    while (done < aByteCount)
    {
        // Large reads go in pieces of at most 1 GiB, which every kernel accepts whole.
        std::size_t piece = std::size_t(std::min<UInt64>(aByteCount - done, 1ull << 30));
        ssize_t got = ::pread(itsDescriptor, dest + done, piece, anOffset + SInt64(done));
        if (got < 0)
        {
            if (errno == EINTR)
                continue;
            ThrowFileError(itsSpec, "cannot read");
        }
        if (got == 0)
            break;
        done += UInt64(got);
    }
    return done;
}

void XFile::WriteAt(SInt64 anOffset, const void * aBuffer, UInt64 aByteCount)
{
    const auto * source = static_cast<const UInt8 *>(aBuffer);
    UInt64 done = 0;
    while (done < aByteCount)
    {
        std::size_t piece = std::size_t(std::min<UInt64>(aByteCount - done, 1ull << 30));
        ssize_t put = ::pwrite(itsDescriptor, source + done, piece, anOffset + SInt64(done));
        if (put < 0)
        {
            if (errno == EINTR)
                continue;
            ThrowFileError(itsSpec, "cannot write");
        }
        done += UInt64(put);
    }
}

UInt64 XFile::GetSize() const
{
    struct stat info;
    if (::fstat(itsDescriptor, &info) != 0)
        ThrowFileError(itsSpec, "cannot ask the size of");
    return UInt64(info.st_size);
}

void XFile::SetSize(UInt64 aSize)
{
    if (::ftruncate(itsDescriptor, off_t(aSize)) != 0)
        ThrowFileError(itsSpec, "cannot resize");
}

void XFile::Sync()
{
    if (::fsync(itsDescriptor) != 0)
        ThrowFileError(itsSpec, "cannot sync");
}
