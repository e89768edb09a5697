#pragma once
// A progress strategy that draws one line on a terminal:
//     [##############----------------]  47%  Median filter  (0:12 left)
// or, for indeterminate tasks, a turning bar and the message. The line is redrawn at most every
// kRedrawIntervalMs and cut to the terminal's width; when the task ends it is erased (on a
// terminal) or ended with a line break (elsewhere). With several tasks at once (several
// threads), the line shows the task that reported last.
//
// By default it draws on standard error and only when that is a terminal, so a program whose
// error output goes to a file or a pipe stays clean. It never asks to cancel.

#include <chrono>
#include <mutex>
#include <string>

#include "XProgressStrategy.h"

class XTerminalProgressStrategy : public XProgressStrategy
{
public:
    static constexpr UInt32 kRedrawIntervalMs = 100;

    // aFileDescriptor: where to draw. anOnlyWhenTerminal: draw nothing unless it is a terminal.
    explicit XTerminalProgressStrategy(int aFileDescriptor = 2, bool anOnlyWhenTerminal = true);
    ~XTerminalProgressStrategy() override;

    bool IsDrawing() const { return itsEnabled; }

    void ProgressBegin(const XReport & aReport) override;
    void ProgressChanged(const XReport & aReport) override;
    void ProgressEnd(const XReport & aReport) override;

    // The line for aReport in aWidth columns (without the carriage return).
    static std::string MakeLine(const XReport & aReport, UInt32 aWidth, UInt32 aTurn);

private:
    void Draw(const XReport & aReport);
    UInt32 GetWidth() const;
    void Write(const std::string & aText) const;

    using XClock = std::chrono::steady_clock;

    int itsFile;
    bool itsEnabled;
    bool itsIsTerminal;
    std::mutex itsMutex;
    UInt64 itsShownTask = 0; // 0: nothing on the line
    UInt32 itsTurn = 0;
    XClock::time_point itsLastDraw{};
};
