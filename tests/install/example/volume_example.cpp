// volume_example IN.bvol OUT.bvol: reads a 16-bit volume file, inverts it, tells the size, range
// and mean of the result and writes it.
#include <cstdio>
#include <memory>

#include "BrindleImaging.h"

int main(int argc, char ** argv)
{
    if (argc != 3)
    {
        std::fprintf(stderr, "usage: volume_example IN.bvol OUT.bvol\n");
        return 2;
    }
    XRegisterImagingClasses(); // once, before any stream is read
    try
    {
        // A volume file holds the stream header, then one volume object.
        XFileStream input(XFileSpec(argv[1]), kReadOnly);
        input.ReadStreamInfo();
        std::unique_ptr<XGrey16Volume> volume(input.ReadObjectAs<XGrey16Volume>());

        // A tool either makes a new volume (ApplyTool) or changes the one it is given.
        XInvertVolumeTool invert;
        invert.ApplyToolInPlace(*volume);

        UInt16 low = 0;
        UInt16 high = 0;
        volume->FindMinMax(low, high);
        const double mean = volume->FindSum() / double(volume->GetVolumeVoxels());
        std::printf("%u x %u x %u voxels: min %u, max %u, mean %.3f\n", volume->GetWidth(), volume->GetHeight(),
                    volume->GetDepth(), unsigned(low), unsigned(high), mean);

        XFileStream output(XFileSpec(argv[2]), kCreate);
        output.WriteStreamInfo();
        output.WriteObject(*volume);
        output.Flush();
    }
    catch (const XException & anError)
    {
        std::fprintf(stderr, "volume_example: %s\n", anError.GetErrorMessage().c_str());
        return 1;
    }
    return 0;
}
