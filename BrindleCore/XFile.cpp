#include "XFile.h"

#include <cerrno>
#include <cstring>
#include <algorithm>
#include <cstdint>
#include <fcntl.h>
#include <sys/mman.h>
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

// Reads smaller than this go straight through pread, and mappings are made in windows of
// kMappingWindow bytes so that the address space a read takes stays bounded.
constexpr UInt64 kMappedReadMinimum = 8ull << 20;
constexpr UInt64 kMappingWindow = 64ull << 20;

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

UInt64 XFile::ReadThroughMapping(SInt64 anOffset, UInt8 * aBuffer, UInt64 aByteCount) const
{
    auto skew = (reinterpret_cast<std::uintptr_t>(aBuffer) - std::uintptr_t(anOffset)) & 63;
    if (aByteCount < kMappedReadMinimum || skew == 0 || anOffset < 0)
        return 0;
    // Only bytes that the file holds now are mapped: touching a mapping past the end of a file
    // is a fault, not a short read.
    struct stat info;
    if (::fstat(itsDescriptor, &info) != 0 || !S_ISREG(info.st_mode) ||
        UInt64(info.st_size) < UInt64(anOffset) + aByteCount)
        return 0;
    static const UInt64 sPageSize = UInt64(::sysconf(_SC_PAGESIZE));
    UInt64 done = 0;
    while (done < aByteCount)
    {
        UInt64 position = UInt64(anOffset) + done;
        UInt64 start = position - position % sPageSize;
        UInt64 piece = std::min(aByteCount - done, kMappingWindow);
        UInt64 length = position - start + piece;
        void * map = ::mmap(nullptr, length, PROT_READ, MAP_SHARED | MAP_POPULATE, itsDescriptor,
                            off_t(start));
        if (map == MAP_FAILED)
            break;
        std::memcpy(aBuffer + done, static_cast<const UInt8 *>(map) + (position - start), piece);
        ::munmap(map, length);
        done += piece;
    }
    return done;
}

UInt64 XFile::ReadAt(SInt64 anOffset, void * aBuffer, UInt64 aByteCount) const
{
    auto * dest = static_cast<UInt8 *>(aBuffer);
    UInt64 done = ReadThroughMapping(anOffset, dest, aByteCount);
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
