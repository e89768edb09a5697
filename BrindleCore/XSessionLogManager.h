#pragma once
// The session log: a per-user text file to which the library adds one line per noteworthy event
// (internal errors, fallbacks chosen at run time). Each line reads
//     2024-05-01T12:34:56.789Z [12345] text
// with the time in UTC to the millisecond, the process id, and the text with its line breaks
// written as the two characters "\n" (and "\r"), so that one entry is always one line.
//
// Where the file is, first match wins:
//   BRINDLE_SESSION_LOG                     a full path (tests and special set-ups)
//   BRINDLE_TEST_MODE set (not "0")         <temporary folder>/brindle-test-<uid>/session.log,
//                                           so that test runs never touch the user's own log
//   $XDG_STATE_HOME/brindle/session.log     when XDG_STATE_HOME is an absolute path
//   ~/.local/state/brindle/session.log
// Missing folders are made. A file that has grown past kMaxLogSize is renamed to
// "<name>.1" (replacing an older one) and a new file is begun.
//
// AddEntry never throws and is safe to call from any thread, also during start-up and shut-down
// of the process: a log that cannot be written is silently skipped. Entries from several
// processes do not interleave inside a line (each line is one append).

#include "XFileSpec.h"
#include "XString.h"
#include "XTypes.h"

class XSessionLogManager
{
public:
    static constexpr UInt64 kMaxLogSize = 8u << 20;

    // Appends one line; see above.
    static void AddEntry(const XString & aText) noexcept;
    // The file that AddEntry writes to now (the environment is read on every call); an empty
    // path when no place can be found (no home folder).
    static XFileSpec GetLogFileSpec();

    XSessionLogManager() = delete;
};
