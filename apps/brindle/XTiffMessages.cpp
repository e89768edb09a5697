#include "XTiffMessages.h"

#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <tiffio.h>

namespace
{
std::string & LastError()
{
    static std::string text;
    return text;
}

void KeepError(const char * aModule, const char * aFormat, va_list anArguments)
{
    char buffer[512];
    std::vsnprintf(buffer, sizeof(buffer), aFormat, anArguments);
    LastError() = buffer;
    (void)aModule;
}

void DropWarning(const char *, const char *, va_list) {}
} // namespace

void XTiffMessages::Begin()
{
    static std::once_flag installed;
    std::call_once(installed, [] {
        TIFFSetErrorHandler(&KeepError);
        TIFFSetWarningHandler(&DropWarning);
    });
    LastError().clear();
}

const std::string & XTiffMessages::GetLastError()
{
    return LastError();
}

std::string XTiffMessages::With(const std::string & aText)
{
    return LastError().empty() ? aText : aText + ": " + LastError();
}
