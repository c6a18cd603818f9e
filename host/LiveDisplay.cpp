#include "host/LiveDisplay.h"

#include "com/SafeText.h"

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

LiveDisplay::LiveDisplay(const DisplayOptions &options, Sink out, Sink faults)
    : m_options(options), m_out(std::move(out)), m_faults(std::move(faults))
{
}

void LiveDisplay::Log(int level, std::string_view text)
{
    if (level < m_options.lowestLevel)
    {
        return;
    }
    const LevelLook look = LookOf(level);
    std::string line = look.word + OneSafeLine(text);
    const bool isFault = level >= 2;
    if ((isFault ? m_options.colourFaults : m_options.colour) && *look.colour != '\0')
    {
        line = look.colour + line + "\x1b[0m";
    }
    Print(line + "\n", isFault);
}

void LiveDisplay::Print(std::string_view lines, bool isFault)
{
    const std::lock_guard guard(m_lock);
    if (!isFault)
    {
        const std::string erased = EraseLine();
        Write(erased + std::string(lines) + DrawLine());
        return;
    }
    // Both files are usually the same terminal.
    Write(EraseLine());
    m_faults(lines);
    Write(DrawLine());
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
        Write(EraseLine());
    }
    m_hasProgress = m_drawn = m_stale = false;
}

void LiveDisplay::Write(const std::string &drawing)
{
    if (!drawing.empty())
    {
        m_out(drawing);
    }
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
    Write(drawing);
}

void LiveDisplay::Redraw(Clock::time_point now)
{
    if (m_stale && now - m_lastDrawing >= DrawingPause)
    {
        m_lastDrawing = now;
        Draw();
    }
}
