#pragma once
// The brindle command-line tool: its commands, their help, and the one place where failures
// become a single line on standard error and an exit status.
//
//     brindle [--quiet] COMMAND [ARGUMENTS] [OPTIONS]
//
// Exit status: 0 on success, 1 for bad input (a missing or damaged file, an unsupported type),
// 2 for a bad command line, 3 for an internal error of the library or the tool. Progress bars
// go to standard error, only when it is a terminal and --quiet is not given.

#include <iosfwd>
#include <string>
#include <vector>

#include "XCommandLine.h"

class XVolume;

class XBrindleTool
{
public:
    XBrindleTool(std::ostream & anOut, std::ostream & anError);

    // Runs the command line (without the program's name) and returns the exit status.
    int Run(const std::vector<std::string> & anArguments);

private:
    struct XCommand
    {
        const char * itsName;
        const char * itsSynopsis; // the arguments, after the name
        const char * itsSummary;  // one line for the list of commands
        const char * itsHelp;     // the rest of the command's help
        UInt32 itsMinArguments;
        UInt32 itsMaxArguments;
        std::vector<XCommandLine::XOptionSpec> itsOptions;
        void (XBrindleTool::*itsRun)(const XCommand & aCommand, const XCommandLine & aLine);
    };

    static const std::vector<XCommand> & GetCommands();
    static const XCommand * FindCommand(const std::string & aName);
    int RunCommand(const XCommand & aCommand, const std::vector<std::string> & anArguments);
    void PrintUsage() const;
    void PrintHelp(const XCommand & aCommand) const;
    // Prints "brindle[ COMMAND]: aMessage" on the error stream.
    void Report(const std::string & aCommand, const std::string & aMessage) const;
    // A line of what a command did, unless --quiet.
    void Tell(const std::string & aText) const;

    void RunInfo(const XCommand & aCommand, const XCommandLine & aLine);
    void RunImport(const XCommand & aCommand, const XCommandLine & aLine);
    void RunExport(const XCommand & aCommand, const XCommandLine & aLine);
    void RunConvert(const XCommand & aCommand, const XCommandLine & aLine);
    void RunTool(const XCommand & aCommand, const XCommandLine & aLine);
    void RunResample(const XCommand & aCommand, const XCommandLine & aLine);
    void RunFilter(const XCommand & aCommand, const XCommandLine & aLine);
    void RunSample(const XCommand & aCommand, const XCommandLine & aLine);
    void RunDemo(const XCommand & aCommand, const XCommandLine & aLine);
    void RunSelfCheck(const XCommand & aCommand, const XCommandLine & aLine);
    void RunHelp(const XCommand & aCommand, const XCommandLine & aLine);

    // Writes aVolume to aPath, taking --plane and --bits for PNG files, and tells what was
    // written.
    void WriteResult(const XVolume & aVolume, const std::string & aPath, const XCommandLine & aLine);

    std::ostream & itsOut;
    std::ostream & itsError;
    bool itsQuiet = false;
};
