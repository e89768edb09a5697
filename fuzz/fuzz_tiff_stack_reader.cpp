// libFuzzer target: outside bytes read as a TIFF stack by the brindle tool's reader, and the
// volume it makes measured. A damaged file must end in an XCommandError (or an XException of
// the library); anything else (a crash, a sanitizer report, an XInternalError, a hang, a huge
// allocation) is a finding.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <unistd.h>

#include "XCommandError.h"
#include "XException.h"
#include "XTiffStackReader.h"
#include "XVolume.h"
#include "XVolumeReport.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t * aData, size_t aSize)
{
    // libtiff reads files: the bytes go to one of this process's own.
    static const std::string path = "/tmp/fuzz-tiff-" + std::to_string(::getpid()) + ".tif";
    std::FILE * file = std::fopen(path.c_str(), "wb");
    if (file == nullptr)
        return 0;
    std::fwrite(aData, 1, aSize, file);
    std::fclose(file);
    try
    {
        XTiffStackReader reader(path);
        const std::unique_ptr<XVolume> volume = reader.Read();
        XVolumeReport::Measure(*volume);
    }
    catch (const XCommandError &)
    {
    }
    catch (const XException &)
    {
    }
    return 0;
}
