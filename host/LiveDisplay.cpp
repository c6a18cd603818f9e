#include "host/LiveDisplay.h"

#include "host/SafeLine.h"

namespace
{
// 20 drawings a second are smooth to the eye and cheap over a slow line.
constexpr std::chrono::milliseconds DrawingPause(50);

struct LevelLook
{
    const char *word;
    const char *colour;
};

LevelLook LookOf(int level)
{
    static constexpr LevelLook Looks[] = {{"verbose: ", "\x1b[2m"},
                                          {"", ""},
                                          {"warning: ", "\x1b[33m"},
                                          {"error: ", "\x1b[31m"},
                                          {"fatal: ", "\x1b[1;31m"}};
    return Looks[level < 0 ? 0 : level > 4 ? 4 : level];
}
} // namespace

LiveDisplay::LiveDisplay(const DisplayOptions &options, Sink sink) : m_options(options), m_sink(std::move(sink)) {}

void LiveDisplay::Log(int level, std::string_view text)
{
    if (level < m_options.lowestLevel)
    {
        return;
    }
    const LevelLook look = LookOf(level);
    std::string line = look.word + OneSafeLine(text);
    if (m_options.colour && *look.colour != '\0')
    {
        line = look.colour + line + "\x1b[0m";
    }
    Print(line + "\n");
}

void LiveDisplay::Print(std::string_view lines)
{
    const std::lock_guard guard(m_lock);
    std::string drawing = EraseLine();
    drawing += lines;
    drawing += DrawLine();
    m_sink(drawing);
}

void LiveDisplay::ShowProgress(const ProgressView &view, Clock::time_point now)
{
    const std::lock_guard guard(m_lock);
    m_view = view;
    m_hasProgress = m_options.live;
    m_stale = m_hasProgress;
    Redraw(now);
}

void LiveDisplay::Refresh(Clock::time_point now)
{
    const std::lock_guard guard(m_lock);
    Redraw(now);
}

void LiveDisplay::Resize(size_t columns)
{
    const std::lock_guard guard(m_lock);
    m_columns = columns;
    if (m_drawn)
    {
        Draw();
    }
}

void LiveDisplay::EndProgress()
{
    const std::lock_guard guard(m_lock);
    if (m_drawn)
    {
        m_sink(EraseLine());
    }
    m_hasProgress = m_drawn = m_stale = false;
}

std::string LiveDisplay::EraseLine() const
{
    return m_drawn ? "\r\x1b[K" : "";
}

std::string LiveDisplay::DrawLine()
{
    if (!m_hasProgress)
    {
        return std::string();
    }
    m_drawn = true;
    m_stale = false;
    return RenderProgressLine(m_view, {m_columns, m_options.unicode, m_options.colour});
}

void LiveDisplay::Draw()
{
    std::string drawing = EraseLine();
    drawing += DrawLine();
    m_sink(drawing);
}

void LiveDisplay::Redraw(Clock::time_point now)
{
    if (m_stale && now - m_lastDrawing >= DrawingPause)
    {
        m_lastDrawing = now;
        Draw();
    }
}
