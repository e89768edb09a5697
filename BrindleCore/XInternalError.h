#pragma once
// Broken preconditions: programming errors inside the library or its caller. They are reported
// through BrindleInternalError, which logs, breaks under a debugger and throws XInternalError.

#include <stdexcept>
#include <string>

class XInternalError : public std::logic_error
{
public:
    XInternalError(const char * anExpression, const char * aFile, int aLine);

    // The text of the broken condition, as the assertion quotes it.
    const std::string & GetExpression() const { return itsExpression; }
    const std::string & GetFile() const { return itsFile; }
    int GetLine() const { return itsLine; }

private:
    std::string itsExpression;
    std::string itsFile;
    int itsLine;
};

// Adds a line to the session log and to standard error, raises SIGTRAP when a debugger is
// attached, then throws XInternalError.
[[noreturn]] void BrindleInternalError(const char * anExpression, const char * aFile, int aLine);
