#pragma once
// The arguments of one brindle command: the positional arguments and the options. An option is
// "--name value", "--name=value" or, for a flag, "--name" alone; "--" ends the options. Only the
// options that the command declares are taken; anything else is an XCommandError of usage.

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "XTypes.h"

class XCommandLine
{
public:
    // An option that a command takes: its name without the dashes and whether a value follows.
    struct XOptionSpec
    {
        std::string itsName;
        bool itsTakesValue;
    };

    // Parses anArguments (those after the command's name) against the options aSpecs.
    XCommandLine(const std::vector<std::string> & anArguments, const std::vector<XOptionSpec> & aSpecs);

    const std::vector<std::string> & GetPositionals() const { return itsPositionals; }
    bool HasFlag(const std::string & aName) const { return itsOptions.count(aName) != 0; }
    std::optional<std::string> GetValue(const std::string & aName) const;
    // The value as a whole number in aLow..aHigh; XCommandError of usage when it is not one.
    std::optional<SInt64> GetInteger(const std::string & aName, SInt64 aLow, SInt64 aHigh) const;

private:
    std::vector<std::string> itsPositionals;
    std::map<std::string, std::string> itsOptions;
};
