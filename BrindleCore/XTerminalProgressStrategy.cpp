#include "XTerminalProgressStrategy.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <cmath>
#include <cstdio>
#include <string>

#include <sys/ioctl.h>
#include <unistd.h>

namespace
{
// Cuts aText to at most aBytes bytes without splitting a UTF-8 character, and blanks control
// characters so that the line stays one line.
std::string FitText(const std::string & aText, std::size_t aBytes)
{
    std::string text;
    for (char c : aText)
        text += (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) ? ' ' : c;
    if (text.size() <= aBytes)
        return text;
    std::size_t end = aBytes;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return text.substr(0, end);
}

std::string FormatSeconds(double aSeconds)
{
    UInt64 seconds = UInt64(std::llround(aSeconds));
    char text[32];
    if (seconds >= 3600)
        std::snprintf(text, sizeof(text), "%" PRIu64 ":%02" PRIu64 ":%02" PRIu64, seconds / 3600,
                      seconds / 60 % 60, seconds % 60);
    else
        std::snprintf(text, sizeof(text), "%" PRIu64 ":%02" PRIu64, seconds / 60, seconds % 60);
    return text;
}
} // namespace

XTerminalProgressStrategy::XTerminalProgressStrategy(int aFileDescriptor, bool anOnlyWhenTerminal)
    : itsFile(aFileDescriptor), itsIsTerminal(::isatty(aFileDescriptor) == 1)
{
    itsEnabled = itsIsTerminal || !anOnlyWhenTerminal;
}

XTerminalProgressStrategy::~XTerminalProgressStrategy() = default;

void XTerminalProgressStrategy::ProgressBegin(const XReport & aReport)
{
    if (!itsEnabled)
        return;
    std::lock_guard<std::mutex> guard(itsMutex);
    Draw(aReport);
}

void XTerminalProgressStrategy::ProgressChanged(const XReport & aReport)
{
    if (!itsEnabled)
        return;
    std::lock_guard<std::mutex> guard(itsMutex);
    if (XClock::now() - itsLastDraw < std::chrono::milliseconds(kRedrawIntervalMs))
        return;
    Draw(aReport);
}

void XTerminalProgressStrategy::ProgressEnd(const XReport & aReport)
{
    if (!itsEnabled)
        return;
    std::lock_guard<std::mutex> guard(itsMutex);
    if (itsShownTask != aReport.itsTaskID)
        return;
    if (itsIsTerminal)
    {
        Write("\r\x1b[K");
    }
    else
    {
        Draw(aReport);
        Write("\n");
    }
    itsShownTask = 0;
}

void XTerminalProgressStrategy::Draw(const XReport & aReport)
{
    itsLastDraw = XClock::now();
    itsShownTask = aReport.itsTaskID;
    // Appended rather than "\r" + MakeLine(...): g++ 12 at -O3 warns falsely (-Wrestrict) of the
    // prepending that operator+ inlines.
    std::string line = "\r";
    line += MakeLine(aReport, GetWidth(), itsTurn++);
    if (itsIsTerminal)
        line += "\x1b[K";
    Write(line);
}

std::string XTerminalProgressStrategy::MakeLine(const XReport & aReport, UInt32 aWidth, UInt32 aTurn)
{
    const UInt32 width = std::max<UInt32>(aWidth, 20) - 1; // the last column makes some terminals wrap
    std::string line;
    if (aReport.itsFraction >= 0.0)
    {
        const UInt32 barWidth = std::min<UInt32>(30, width / 3);
        double fraction = std::min(aReport.itsFraction, 1.0);
        UInt32 filled = UInt32(fraction * barWidth);
        line = "["; // appended, as in Draw
        line.append(filled, '#').append(barWidth - filled, '-') += ']';
        char percent[16];
        std::snprintf(percent, sizeof(percent), " %3d%%", static_cast<int>(fraction * 100.0));
        line += percent;
    }
    else
    {
        static const char kTurns[4] = {'|', '/', '-', '\\'};
        line = std::string("[") + kTurns[aTurn % 4] + "]";
    }
    std::string tail;
    if (aReport.itsRemainingSeconds >= 0.0 && !aReport.itsFinished)
        tail = "  (" + FormatSeconds(aReport.itsRemainingSeconds) + " left)";
    if (line.size() + tail.size() + 2 < width && !aReport.itsMessage.IsEmpty())
        line += "  " + FitText(aReport.itsMessage.GetStdString(), width - line.size() - tail.size() - 2);
    if (line.size() + tail.size() <= width)
        line += tail;
    return FitText(line, width);
}

UInt32 XTerminalProgressStrategy::GetWidth() const
{
    struct winsize size;
    if (itsIsTerminal && ::ioctl(itsFile, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    return 80;
}

void XTerminalProgressStrategy::Write(const std::string & aText) const
{
    const char * data = aText.data();
    std::size_t left = aText.size();
    while (left > 0)
    {
        ssize_t written = ::write(itsFile, data, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return; // a display that cannot be written to is left alone
        data += written;
        left -= std::size_t(written);
    }
}
