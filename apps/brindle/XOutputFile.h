#pragma once
// A file that a command writes: the writing goes to a temporary file beside it, which Commit
// renames onto the final path. Until then the final path is left alone, so a failed command
// leaves no half-written file and a command may write over its own input. The temporary file
// is removed when the object dies uncommitted.

#include <string>

class XOutputFile
{
public:
    // Fails with XCommandError when the folder of aPath does not exist.
    explicit XOutputFile(const std::string & aPath);
    XOutputFile(const XOutputFile &) = delete;
    XOutputFile & operator=(const XOutputFile &) = delete;
    ~XOutputFile();

    // The path to write to now.
    const std::string & GetWritePath() const { return itsTemporaryPath; }
    const std::string & GetPath() const { return itsPath; }
    // Moves the written file onto the final path; XCommandError if the system refuses.
    void Commit();

private:
    std::string itsPath;
    std::string itsTemporaryPath;
    bool itsCommitted = false;
};
