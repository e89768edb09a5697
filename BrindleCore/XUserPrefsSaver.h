#pragma once
// The user's own preferences: an XPrefsSaver over the per-user file, read when made.
//
// Where the file is, first match wins:
//   BRINDLE_PREFS_FILE                        a full path (tests and special set-ups)
//   BRINDLE_TEST_MODE set (not "0")           <temporary folder>/brindle-test-<uid>/preferences,
//                                             so that test runs never touch the user's own file
//   $XDG_CONFIG_HOME/brindle/preferences      when XDG_CONFIG_HOME is an absolute path
//   ~/.config/brindle/preferences
//
// Changes are kept only by Save. Each object holds its own copy of the settings: an object made
// later sees what earlier ones saved.

#include "XPrefsSaver.h"

class XUserPrefsSaver : public XPrefsSaver
{
public:
    // Reads the user's file. A file that cannot be read is noted in the session log and the
    // store starts empty: preferences never stop the program.
    XUserPrefsSaver();
    ~XUserPrefsSaver() override;

    // The file, as above (the environment is read on every call); an empty path when there is
    // no home folder.
    static XFileSpec GetUserPrefsFileSpec();
};
