#include "XMappedFileMemoryHandle.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <new>
#include <string>

#include "XException.h"

XMappedFileMemoryHandle::XMappedFileMemoryHandle(const XFileSpec & aFileSpec, SInt64 anOffset,
                                                 UInt64 aSize, XFileMode aMode, UInt32 aFlags)
    : itsFileSpec(aFileSpec), itsFileOffset(anOffset)
{
    if (anOffset < 0)
        throw XException(kErrBadArgument, "mapping at a negative file offset");
    if (aMode != kReadOnly && aMode != kReadWrite)
        throw XException(kErrBadArgument, "a mapped file is opened read-only or read-write");
    if ((aFlags & ~(kMapPopulate | kMapSequential | kMapRandom)) != 0)
        throw XException(kErrBadArgument, "unknown mapping flags " + std::to_string(aFlags));
    XFile file(aFileSpec, aMode);
    UInt64 fileSize = file.GetSize();
    if (UInt64(anOffset) > fileSize || aSize > fileSize - UInt64(anOffset))
        throw XException(kErrFileIO, "mapping " + std::to_string(aSize) + " bytes at " +
                                         std::to_string(anOffset) + " of \"" +
                                         std::string(aFileSpec.GetPath().c_str()) + "\" (" +
                                         std::to_string(fileSize) + " bytes)");
    if (aSize == 0)
        return;

    UInt64 page = UInt64(::sysconf(_SC_PAGESIZE));
    UInt64 start = UInt64(anOffset) / page * page;
    UInt64 lead = UInt64(anOffset) - start;
    UInt64 length = (lead + aSize + page - 1) / page * page;
    int flags = MAP_PRIVATE | ((aFlags & kMapPopulate) ? MAP_POPULATE : 0);
    void * mapped = ::mmap(nullptr, length, PROT_READ, flags, file.GetDescriptor(), off_t(start));
    if (mapped == MAP_FAILED)
        throw XException(kErrFileIO, "cannot map \"" + std::string(aFileSpec.GetPath().c_str()) +
                                         "\": " + std::strerror(errno));
    if (aFlags & kMapSequential)
        ::madvise(mapped, length, MADV_SEQUENTIAL);
    if (aFlags & kMapRandom)
        ::madvise(mapped, length, MADV_RANDOM);

    auto * block = new (std::nothrow) XBlock;
    if (block == nullptr)
    {
        ::munmap(mapped, length);
        throw XException(kErrOutOfMemory, "memory handle block record");
    }
    block->itsKind = XBlock::kFileMap;
    block->itsMapBase = mapped;
    block->itsMapLength = length;
    block->itsData = static_cast<UInt8 *>(mapped) + lead;
    block->itsCapacity = length - lead;
    ReplaceBlock(block, aSize);
    // The mapping keeps the file's pages; the descriptor closes with `file`.
}

XMappedFileMemoryHandle::XMappedFileMemoryHandle(const XMappedFileMemoryHandle & anOther) = default;

XMappedFileMemoryHandle &
XMappedFileMemoryHandle::operator=(const XMappedFileMemoryHandle & anOther) = default;

XMappedFileMemoryHandle::~XMappedFileMemoryHandle() = default;

bool XMappedFileMemoryHandle::IsMapped() const
{
    XBlock * block = Block();
    return block != nullptr && block->itsKind == XBlock::kFileMap;
}

XMappedFileMemoryHandle * XMappedFileMemoryHandle::Clone() const
{
    return new XMappedFileMemoryHandle(*this);
}
