#include "XCommandLine.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "XCommandError.h"

XCommandLine::XCommandLine(const std::vector<std::string> & anArguments, const std::vector<XOptionSpec> & aSpecs)
{
    bool optionsEnded = false;
    for (std::size_t i = 0; i < anArguments.size(); ++i)
    {
        const std::string & argument = anArguments[i];
        if (optionsEnded || argument.size() < 2 || argument[0] != '-')
        {
            itsPositionals.push_back(argument);
            continue;
        }
        if (argument == "--")
        {
            optionsEnded = true;
            continue;
        }
        if (argument.compare(0, 2, "--") != 0)
            throw XCommandError("unknown option '" + argument + "'", XCommandError::kUsage);

        const std::size_t equals = argument.find('=');
        const std::string name = argument.substr(2, equals == std::string::npos ? std::string::npos : equals - 2);
        const auto option = std::find_if(aSpecs.begin(), aSpecs.end(),
                                         [&](const XOptionSpec & aSpec) { return aSpec.itsName == name; });
        if (option == aSpecs.end())
            throw XCommandError("unknown option '--" + name + "'", XCommandError::kUsage);
        if (!option->itsTakesValue)
        {
            if (equals != std::string::npos)
                throw XCommandError("option '--" + name + "' takes no value", XCommandError::kUsage);
            itsOptions[name] = "";
            continue;
        }
        if (equals != std::string::npos)
            itsOptions[name] = argument.substr(equals + 1);
        else if (i + 1 < anArguments.size())
            itsOptions[name] = anArguments[++i];
        else
            throw XCommandError("option '--" + name + "' needs a value", XCommandError::kUsage);
    }
}

std::optional<std::string> XCommandLine::GetValue(const std::string & aName) const
{
    const auto found = itsOptions.find(aName);
    if (found == itsOptions.end())
        return std::nullopt;
    return found->second;
}

std::optional<SInt64> XCommandLine::GetInteger(const std::string & aName, SInt64 aLow, SInt64 aHigh) const
{
    const std::optional<std::string> text = GetValue(aName);
    if (!text)
        return std::nullopt;
    const std::string range = std::to_string(aLow) + ".." + std::to_string(aHigh);
    char * end = nullptr;
    errno = 0;
    const SInt64 value = std::strtoll(text->c_str(), &end, 10);
    if (text->empty() || *end != '\0' || errno != 0 || value < aLow || value > aHigh)
        throw XCommandError("option '--" + aName + "' needs a whole number in " + range + ", not '" + *text + "'",
                            XCommandError::kUsage);
    return value;
}
