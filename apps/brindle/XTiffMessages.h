#pragma once
// What libtiff says. libtiff reports through process-wide handlers; these keep its last error
// for the message of the failure that follows, and drop its warnings (the private tags of
// microscope software draw many), so that nothing of libtiff's reaches the terminal itself.

#include <string>

class XTiffMessages
{
public:
    // Installs the handlers (once) and forgets the last error.
    static void Begin();
    // libtiff's last error since Begin, or "" when it reported none.
    static const std::string & GetLastError();
    // aText, followed by ": " and libtiff's last error when there is one.
    static std::string With(const std::string & aText);
};
