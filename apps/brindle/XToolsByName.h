#pragma once
// The tools of the library that the tool's commands name: flip-h, flip-v, rotate-cw,
// rotate-ccw, rotate-180 and invert.

#include <memory>
#include <string>

class X1To1VolumeTool;

class XToolsByName
{
public:
    // A new tool of that name; XCommandError of usage for any other name.
    static std::unique_ptr<X1To1VolumeTool> Make(const std::string & aName);
};
