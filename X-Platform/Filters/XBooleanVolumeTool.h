#pragma once
// Applies a mask to a volume. The mask is an 8-bit volume (a mask or Grey8) whose byte counts
// as set at 128 or more.
//
// AndVolumes: the volume is cut down to the part that the mask covers, and there every voxel
// whose mask byte is clear becomes zero (opaque black for ARGB32). Mask, Grey8, Grey16, float,
// ARGB32 and RGB48 volumes take it.
// XorVolumes: on 8-bit volumes (mask and Grey8) only, inside the part that both cover, a set
// voxel under a set mask byte becomes 0 and a clear voxel under a set mask byte takes the mask
// byte; elsewhere the voxel stays.
// Other types, and masks that are no 8-bit volume, raise XException 2500.

class XVolume;

class XBooleanVolumeTool
{
public:
    XBooleanVolumeTool() = default;
    XBooleanVolumeTool(const XBooleanVolumeTool &) = default;
    XBooleanVolumeTool & operator=(const XBooleanVolumeTool &) = default;
    virtual ~XBooleanVolumeTool();

    // aDest becomes aSource (copied in when they are two volumes) and the mask.
    virtual void AndVolumes(const XVolume & aSource, const XVolume & aMask, XVolume & aDest);
    virtual void XorVolumes(const XVolume & aSource, const XVolume & aMask, XVolume & aDest);

protected:
    virtual void AndVolumesSelf(const XVolume & aMask, XVolume & aVolume);
    virtual void XorVolumesSelf(const XVolume & aMask, XVolume & aVolume);
};
