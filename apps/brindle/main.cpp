// brindle: the command-line tool of BrindleImaging. See XBrindleTool for its commands.

#include <iostream>
#include <string>
#include <vector>

#include "XBrindleTool.h"
#include "XRegisterImagingClasses.h"

int main(int argc, char ** argv)
{
    XRegisterImagingClasses();
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    XBrindleTool tool(std::cout, std::cerr);
    return tool.Run(arguments);
}
