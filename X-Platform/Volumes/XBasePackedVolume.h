#pragma once
// The type-free half of a volume that holds its voxels: one contiguous block in an
// XMemoryHandle, x fastest, then y, then z. Locking the volume locks that handle, and a lazily
// read handle is fetched at the first lock. Byte-moving tools work through this class without
// knowing the voxel type.
//
// Geometry: a row holds GetRowVoxels voxels (at least the width; more only for volumes that
// came so from a stream), so walking code steps by GetRowBytes and GetPlaneBytes. The counts
// called ...Voxels include those pad voxels. The block holds 16 bytes more than the voxels, so
// that vector code may read that far past the last voxel.
//
// Stream level (class 114, version 0): the class word alone.

#include "XByteSwap.h"
#include "XMemoryHandle.h"
#include "XVolume.h"

class XBasePackedVolume : public XVolume
{
public:
    static constexpr UInt32 kClassID = 114;
    // The form of the voxels on a stream: 0, a memory handle follows. For any other value
    // nothing more is written or read at the level that holds it.
    enum XDataStreamFormat : UInt32
    {
        kHandleFollows = 0
    };
    // The bytes behind the last voxel that every volume's block holds.
    static constexpr UInt64 kTailBytes = 16;

    static XVersion GetClassVersion() { return XVersion(kClassID, 0); }
    static XVersion GetSuperClassVersion() { return XVolume::GetClassVersion(); }

    virtual UInt64 GetVolumeSize() const = 0;
    virtual UInt64 GetLayerSize() const = 0;
    // The bytes asked of the handle, and the bytes of the block that it really holds.
    virtual UInt64 GetDataSize() const { return itsStorage.GetDataSize(); }
    virtual UInt64 GetPaddedSize() const { return itsStorage.GetPaddedSize(); }
    virtual UInt64 GetRowVoxels() const = 0;
    virtual UInt64 GetRowBytes() const = 0;
    virtual UInt64 GetPadVoxels() const = 0;
    virtual UInt64 GetVoxelBytes() const = 0;
    virtual UInt64 GetPlaneVoxels() const = 0;
    virtual UInt64 GetPlaneBytes() const = 0;
    virtual UInt64 GetVolumeVoxels() const = 0;
    virtual UInt64 GetVolumeBytes() const = 0;

    // The first voxel; valid only under a lock.
    virtual void * GetBasePtr() { return itsStorage.GetData(); }
    virtual const void * GetBasePtr() const { return itsStorage.GetData(); }
    // A copy of the handle: it shares the voxels until one side writes.
    virtual XMemoryHandle GetStorage() const;
    // Takes a handle of at least GetVolumeBytes bytes as the voxels; row voxels stay.
    virtual void SetStorage(const XMemoryHandle & aHandle);
    // How the voxels turn over when a stream's byte order is not the platform's.
    virtual XByteSwapMode GetStorageByteSwapMode() const = 0;
    // New bounds with new voxels, all zero (or, for a caller that writes every voxel next, as
    // the memory held them: aZeroed false); the old voxels are dropped. Not while locked.
    virtual void Reshape(const X3DRect & aBounds, bool aZeroed = true) = 0;

    // Layer i counted from 0, and the plane at coordinate z.
    UInt8 * GetLayerPtr(SInt32 anIndex) { return Base() + GetPlaneBytes() * UInt64(SInt64(anIndex)); }
    const UInt8 * GetLayerPtr(SInt32 anIndex) const { return Base() + GetPlaneBytes() * UInt64(SInt64(anIndex)); }
    UInt8 * GetPlanePtr(SInt32 aZ) { return GetLayerPtr(aZ - GetBounds().GetFront()); }
    const UInt8 * GetPlanePtr(SInt32 aZ) const { return GetLayerPtr(aZ - GetBounds().GetFront()); }

    void FetchData() const override;

protected:
    XBasePackedVolume(UInt32 aWidth, UInt32 aHeight, UInt32 aDepth) : XVolume(aWidth, aHeight, aDepth) {}
    explicit XBasePackedVolume(const X3DRect & aBounds) : XVolume(aBounds) {}
    // Shares the other's voxels; the copy is taken under a read lock on the other volume.
    XBasePackedVolume(const XBasePackedVolume & aVolume);
    // The XVolume part, then this level's word (none in a legacy image).
    explicit XBasePackedVolume(XStream & aStream);

    // A lock on the volume is a lock on its handle. A volume whose handle holds fewer bytes than
    // its voxels need (a stream without voxel data) refuses every lock with XException 1002.
    void LockSelf(XLockMode aMode) const override;
    void UnlockSelf(XLockMode aMode) const override;

    void ReadStream2_XBasePackedVolume(XStream & aStream, XOptions anOptions);
    void WriteStream2_XBasePackedVolume(XStream & aStream, XOptions anOptions) const;

    UInt8 * Base() { return static_cast<UInt8 *>(itsStorage.GetData()); }
    const UInt8 * Base() const { return static_cast<const UInt8 *>(itsStorage.GetData()); }
    XMemoryHandle & Storage() { return itsStorage; }
    const XMemoryHandle & Storage() const { return itsStorage; }

private:
    XMemoryHandle itsStorage;
};
