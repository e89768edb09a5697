#pragma once
// Facts about this build of the imaging library.

#include "XString.h"

class XImagingLibrary
{
public:
    // The version as "major.minor.patch".
    static XString GetVersionString();
    // The date this library was built, as the compiler saw it.
    static XString GetBuildDate();
};
