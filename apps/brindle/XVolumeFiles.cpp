#include "XVolumeFiles.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "XCommandError.h"
#include "XException.h"
#include "XFileStream.h"
#include "XFileSpec.h"
#include "XGrey32Volume.h"
#include "XOutputFile.h"
#include "XPngPlaneWriter.h"
#include "XTiffStackReader.h"
#include "XTiffStackWriter.h"
#include "XVolumeKinds.h"

namespace
{
std::string LowerExtension(const std::string & aPath)
{
    std::string extension = std::filesystem::path(aPath).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char aChar) { return char(std::tolower(aChar)); });
    return extension;
}

void CheckReadable(const std::string & aPath)
{
    std::error_code error;
    if (!std::filesystem::exists(aPath, error))
        throw XCommandError("cannot read '" + aPath + "': no such file");
    if (std::filesystem::is_directory(aPath, error))
        throw XCommandError("cannot read '" + aPath + "': it is a folder");
}
} // namespace

XVolumeFiles::XFileKind XVolumeFiles::KindOf(const std::string & aPath)
{
    const std::string extension = LowerExtension(aPath);
    if (extension == ".bvol")
        return kStreamFile;
    if (extension == ".tif" || extension == ".tiff")
        return kTiffFile;
    if (extension == ".png")
        return kPngFile;
    throw XCommandError("'" + aPath + "': unknown kind of file (use .bvol, .tif, .tiff or .png)",
                        XCommandError::kUsage);
}

std::unique_ptr<XVolume> XVolumeFiles::Read(const std::string & aPath)
{
    switch (KindOf(aPath))
    {
    case kStreamFile:
        return ReadStream(aPath);
    case kTiffFile:
        return XTiffStackReader(aPath).Read();
    case kPngFile:
        break;
    }
    throw XCommandError("cannot read '" + aPath + "': PNG files are written only (read .bvol or TIFF stacks)",
                        XCommandError::kUsage);
}

std::unique_ptr<XVolume> XVolumeFiles::ReadStream(const std::string & aPath)
{
    CheckReadable(aPath);
    try
    {
        XFileStream stream(XFileSpec(aPath), kReadOnly);
        stream.ReadStreamInfo();
        const SInt64 start = stream.GetPosition();
        const XVersion word = stream.ReadVersion();
        if (word.GetClass() == XGrey32Volume::kClassID)
            return std::make_unique<XGrey32Volume>(stream);
        stream.SeekTo(start);
        std::unique_ptr<XVolume> volume(stream.ReadObjectAs<XVolume>());
        if (!volume)
            throw XCommandError("cannot read '" + aPath + "': it holds no volume");
        if (XVolumeKinds::Of(*volume).itsID == kFloatKind)
            XVolumeKinds::FitFloatRange(*volume);
        return volume;
    }
    catch (const XException & anError)
    {
        if (anError.GetErrorNumber() == kErrFileIO)
            throw XCommandError("cannot read '" + aPath + "': " + anError.GetDetail());
        throw XCommandError("cannot read '" + aPath + "' as a volume stream file: " +
                            anError.GetErrorMessage().GetStdString());
    }
}

void XVolumeFiles::Write(const XVolume & aVolume, const std::string & aPath, SInt32 aPlane, UInt32 aBits,
                         bool aBigTiff)
{
    const XFileKind kind = KindOf(aPath);
    if (kind == kStreamFile)
    {
        WriteStream(aVolume, aPath);
        return;
    }
    XOutputFile output(aPath);
    if (kind == kTiffFile)
        XTiffStackWriter::Write(aVolume, output.GetWritePath(), aBigTiff);
    else
        XPngPlaneWriter::Write(aVolume, aPlane, aBits, output.GetWritePath());
    output.Commit();
}

void XVolumeFiles::WriteStream(const XVolume & aVolume, const std::string & aPath, XByteOrder anOrder)
{
    XOutputFile output(aPath);
    try
    {
        XFileStream stream(XFileSpec(output.GetWritePath()), kCreate, XFileStream::kDefaultBufferSize, anOrder);
        stream.WriteStreamInfo();
        stream.WriteObject(aVolume);
        stream.Flush();
    }
    catch (const XException & anError)
    {
        throw XCommandError("cannot write '" + aPath + "': " + anError.GetErrorMessage().GetStdString());
    }
    output.Commit();
}
