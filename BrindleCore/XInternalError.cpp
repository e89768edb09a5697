#include "XInternalError.h"

#include <csignal>
#include <cstdio>
#include <fstream>
#include <string>

#include "XSessionLogManager.h"
#include "XString.h"

namespace
{
std::string Describe(const char * anExpression, const char * aFile, int aLine)
{
    return std::string("internal error: \"") + anExpression + "\" at " + aFile + ":" +
           std::to_string(aLine);
}

// True when a tracer (a debugger) is attached to this process.
bool IsDebuggerAttached()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line))
    {
        if (line.rfind("TracerPid:", 0) == 0)
            return std::stoi(line.substr(10)) != 0;
    }
    return false;
}
} // namespace

XInternalError::XInternalError(const char * anExpression, const char * aFile, int aLine)
    : std::logic_error(Describe(anExpression, aFile, aLine)), itsExpression(anExpression),
      itsFile(aFile), itsLine(aLine)
{
}

void BrindleInternalError(const char * anExpression, const char * aFile, int aLine)
{
    std::string text = Describe(anExpression, aFile, aLine);
    XSessionLogManager::AddEntry(XString(text));
    std::fprintf(stderr, "BrindleImaging %s\n", text.c_str());
    if (IsDebuggerAttached())
        std::raise(SIGTRAP);
    throw XInternalError(anExpression, aFile, aLine);
}
