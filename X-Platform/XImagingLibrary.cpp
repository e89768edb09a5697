#include "XImagingLibrary.h"

XString XImagingLibrary::GetVersionString()
{
    return XString(BRINDLE_VERSION_STRING);
}

XString XImagingLibrary::GetBuildDate()
{
    return XString(__DATE__);
}
