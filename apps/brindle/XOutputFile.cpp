#include "XOutputFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <unistd.h>

#include "XCommandError.h"

XOutputFile::XOutputFile(const std::string & aPath) : itsPath(aPath)
{
    const std::filesystem::path path(aPath);
    std::error_code error;
    if (path.filename().empty())
        throw XCommandError("cannot write '" + aPath + "': not a file name");
    if (path.has_parent_path() && !std::filesystem::is_directory(path.parent_path(), error))
        throw XCommandError("cannot write '" + aPath + "': the folder '" + path.parent_path().string() +
                            "' does not exist");
    if (std::filesystem::is_directory(path, error))
        throw XCommandError("cannot write '" + aPath + "': it is a folder");
    itsTemporaryPath = aPath + ".part-" + std::to_string(::getpid());
}

XOutputFile::~XOutputFile()
{
    if (!itsCommitted)
        std::remove(itsTemporaryPath.c_str());
}

void XOutputFile::Commit()
{
    if (std::rename(itsTemporaryPath.c_str(), itsPath.c_str()) != 0)
        throw XCommandError("cannot write '" + itsPath + "': " + std::strerror(errno));
    itsCommitted = true;
}
