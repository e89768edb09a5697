#pragma once
// Volumes in and out of files, by the file's extension:
//   .bvol         the library's own stream file: the stream header (XStream::WriteStreamInfo),
//                 then one volume object (XStream::WriteObject);
//   .tif, .tiff   a multi-page TIFF stack (XTiffStackReader, XTiffStackWriter);
//   .png          one plane, written only (XPngPlaneWriter).
// Every output goes through XOutputFile: a failure leaves no file behind.
//
// The 32-bit grey volume has no word in the class registry; its stream file holds its class
// word 111 like any other, and the reader here, which knows it, reads it with its own stream
// constructor.
//
// A volume's stream form holds no renderer: a volume read from a .bvol file has its class's
// default display range, except that a float volume gets its data's range (black at its
// smallest value, white at its largest), since the default 0..1 rarely fits float data.

#include <memory>
#include <string>

#include "XTypes.h"

class XVolume;

class XVolumeFiles
{
public:
    enum XFileKind
    {
        kStreamFile,
        kTiffFile,
        kPngFile
    };

    // The kind of file that aPath names; XCommandError of usage for any other extension.
    static XFileKind KindOf(const std::string & aPath);

    // A volume from a .bvol or TIFF file; XCommandError when it is missing, damaged or holds
    // anything else.
    static std::unique_ptr<XVolume> Read(const std::string & aPath);
    static std::unique_ptr<XVolume> ReadStream(const std::string & aPath);

    // Writes aVolume to a file of the kind that aPath names; aPlane and aBits are used for PNG
    // only (see XPngPlaneWriter), aBigTiff for TIFF only (see XTiffStackWriter).
    static void Write(const XVolume & aVolume, const std::string & aPath, SInt32 aPlane = 0, UInt32 aBits = 0,
                      bool aBigTiff = false);
    static void WriteStream(const XVolume & aVolume, const std::string & aPath, XByteOrder anOrder = kLittleEndian);
};
