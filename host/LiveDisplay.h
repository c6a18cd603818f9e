// What a run shows: log lines that scroll, and below them, on a terminal, one progress line that is
// redrawn in place. Lines and progress may come from any thread.
#pragma once

#include "host/ProgressLine.h"

#include <chrono>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>

struct DisplayOptions
{
    bool live = false; // a progress line is drawn; needs a terminal
    bool unicode = false;
    bool colour = false;
    bool colourFaults = false; // on standard error
    int lowestLevel = 1;       // log lines below this level are left out
};

class LiveDisplay
{
public:
    using Clock = std::chrono::steady_clock;
    using Sink = std::function<void(std::string_view)>;

    // The sinks, for standard output and standard error, get whole drawings, each in one call, and are never called
    // by two threads at once.
    LiveDisplay(const DisplayOptions &options, Sink out, Sink faults);

    // One line, levels as in WriteLogEntry: plain from level 1, else with the level's word in front. Warnings (2) and
    // errors (3 and up) go to standard error.
    void Log(int level, std::string_view text);

    // Text that is no log entry, such as a summary: always shown, line by line.
    void Print(std::string_view lines, bool isFault = false);

    // Stores the progress, and draws it if the last drawing is long enough ago.
    void ShowProgress(const ProgressView &view, Clock::time_point now);

    // Draws progress that came too early to be drawn. To be called now and then.
    void Refresh(Clock::time_point now);

    // The terminal's width changed; draws again.
    void Resize(size_t columns);

    // Erases the progress line for good.
    void EndProgress();

private:
    void Write(const std::string &drawing);
    std::string EraseLine() const;
    std::string DrawLine();
    void Draw();
    void Redraw(Clock::time_point now);

    const DisplayOptions m_options;
    const Sink m_out;
    const Sink m_faults;
    std::mutex m_lock;
    ProgressView m_view;
    size_t m_columns = 80;
    bool m_hasProgress = false;
    bool m_drawn = false; // the line stands on the screen
    bool m_stale = false; // the screen shows less than m_view
    Clock::time_point m_lastDrawing{};
};
