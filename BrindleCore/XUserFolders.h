#pragma once
// Where the library keeps per-user files (the session log, the preferences), found from the
// environment: an explicit override variable first, then a private folder under $TMPDIR when
// BRINDLE_TEST_MODE is set (tests never touch the user's own files), then the XDG folder, then
// the one under $HOME. An empty path means there is nowhere to keep the file.

#include <string>

class XUserFolders
{
public:
    // The value of an environment variable, or null when it is unset or empty.
    static const char * GetEnvironment(const char * aName);

    // The path of a per-user file: anOverride names the variable that may give the path
    // directly, aXdgVariable the XDG base folder (used when it is absolute), aHomeFallback the
    // folder under $HOME used otherwise, and aFileName the file inside the "brindle" folder.
    static std::string FindUserFile(const char * anOverride, const char * aXdgVariable,
                                    const char * aHomeFallback, const char * aFileName);

    // Makes every missing folder of aFolder (mode 0700); false when one cannot be made or the
    // path is not a folder.
    static bool MakeFolders(const std::string & aFolder);

private:
    static bool IsTestMode();
    static std::string GetHomeFolder();
};
