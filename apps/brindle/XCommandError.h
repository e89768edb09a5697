#pragma once
// A failure of a brindle command, with the one line that the tool prints for it and the exit
// status. Bad input (a missing or damaged file, an unsupported type) exits with 1; a bad command
// line (an unknown option, a missing argument) exits with 2.

#include <stdexcept>
#include <string>

class XCommandError : public std::runtime_error
{
public:
    static constexpr int kFailure = 1;
    static constexpr int kUsage = 2;

    explicit XCommandError(const std::string & aMessage, int anExitStatus = kFailure)
        : std::runtime_error(aMessage), itsExitStatus(anExitStatus)
    {
    }

    int GetExitStatus() const { return itsExitStatus; }

private:
    int itsExitStatus;
};
