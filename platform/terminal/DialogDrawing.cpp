#include "platform/terminal/DialogDrawing.h"

#include "platform/terminal/TerminalText.h"

#include <algorithm>
#include <array>

namespace
{
constexpr size_t Widest = 78;
constexpr size_t Margin = 2; // blanks between the frame and what is in it

enum class Style
{
    Plain,
    Strong,
    Key,
    Faint,
    Alarm
};

const char *CodeOf(Style style)
{
    static constexpr std::array Codes = {"", "\x1B[1m", "\x1B[1;36m", "\x1B[2m", "\x1B[1;31m"};
    return Codes[static_cast<size_t>(style)];
}

struct FrameParts
{
    const char *topLeft, *topRight, *bottomLeft, *bottomRight, *across, *down;
};

constexpr FrameParts UnicodeFrame = {"╭", "╮", "╰", "╯", "─", "│"};
constexpr FrameParts AsciiFrame = {"+", "+", "+", "+", "-", "|"};

const char16_t *WordOf(DialogIcon icon)
{
    static constexpr std::array Words = {u"", u"Information", u"Warning", u"Error", u"Security", u"Question"};
    return Words[static_cast<size_t>(icon)];
}

std::string Repeated(const char *part, size_t times)
{
    std::string text;
    while (times-- > 0)
    {
        text += part;
    }
    return text;
}

// A line under construction. Its width doesn't count the escape sequences for colours.
class Line
{
public:
    explicit Line(bool colour) : m_colour(colour) {}

    Line &Add(std::string_view text, Style style = Style::Plain)
    {
        const bool coloured = m_colour && style != Style::Plain && !text.empty();
        m_text += coloured ? CodeOf(style) : "";
        m_text += text;
        m_text += coloured ? "\x1B[0m" : "";
        m_width += TerminalWidth(text);
        return *this;
    }

    size_t Width() const { return m_width; }
    const std::string &Text() const { return m_text; }

private:
    bool m_colour;
    std::string m_text;
    size_t m_width = 0;
};

class Drawing
{
public:
    Drawing(const DialogPage &page, const DrawingOptions &options)
        : m_page(page),
          m_options(options),
          m_frame(options.unicode ? UnicodeFrame : AsciiFrame),
          m_width(std::clamp<size_t>(options.columns - 1, 24, Widest)),
          m_inside(m_width - 2 - 2 * Margin)
    {
    }

    std::vector<std::string> Draw()
    {
        DrawTop();
        m_gap = true; // the frame separates it already
        AddText(m_page.instruction, Style::Strong);
        Gap();
        AddText(m_page.content);
        Gap();
        if (!m_page.expandsBelowFooter)
        {
            AddExpando();
        }
        AddProgress();
        AddRadioButtons();
        AddButtons();
        AddCheckBox();
        AddFooter();
        if (m_page.expandsBelowFooter)
        {
            AddExpando();
        }
        DrawBottom();
        AddHint();
        return std::move(m_lines);
    }

private:
    Line NewLine() const { return Line(m_options.colour); }

    std::string Shown(std::u16string_view text) const { return TerminalLine(text, m_options.unicode); }

    void DrawTop()
    {
        const Style alarm =
            m_page.icon == DialogIcon::Warning || m_page.icon == DialogIcon::Error ? Style::Alarm : Style::Strong;
        // The icon's word stands in the frame if the title leaves space for it, otherwise below.
        const std::string word = Shown(WordOf(m_page.icon));
        const size_t room = m_width - 6;
        const size_t wordRoom = word.empty() ? 0 : TerminalWidth(word) + 3;
        std::string title = Shown(m_page.title);
        const bool wordBelow = TerminalWidth(title) + wordRoom > room;
        if (TerminalWidth(title) > room)
        {
            title = WrapForTerminal(m_page.title, room - 4, m_options.unicode).front() + " ...";
        }
        Line line = NewLine();
        line.Add(m_frame.topLeft).Add(m_frame.across);
        if (!title.empty())
        {
            line.Add(" ").Add(title, Style::Strong).Add(" ");
        }
        const bool wordInFrame = !word.empty() && !wordBelow;
        line.Add(Repeated(m_frame.across, m_width - 1 - (wordInFrame ? wordRoom : 0) - line.Width()));
        if (wordInFrame)
        {
            line.Add(" ").Add(word, alarm).Add(" ").Add(m_frame.across);
        }
        m_lines.push_back(line.Add(m_frame.topRight).Text());
        if (wordBelow && !word.empty())
        {
            AddLine(NewLine().Add(word, alarm));
        }
    }

    void DrawBottom()
    {
        Trim();
        m_lines.push_back(m_frame.bottomLeft + Repeated(m_frame.across, m_width - 2) + m_frame.bottomRight);
    }

    void AddLine(const Line &inside)
    {
        const size_t room = m_width - 2 - Margin;
        Line line = NewLine();
        line.Add(m_frame.down).Add(std::string(Margin, ' '));
        m_lines.push_back(line.Text() + inside.Text() + std::string(room - std::min(room, inside.Width()), ' ') +
                          m_frame.down);
        m_gap = false;
    }

    // Adds an empty line unless the last one is empty.
    void Gap()
    {
        if (!m_gap)
        {
            AddLine(NewLine());
            m_gap = true;
        }
    }

    void Trim()
    {
        if (m_gap)
        {
            m_lines.pop_back();
            m_gap = false;
        }
    }

    void AddText(std::u16string_view text, Style style = Style::Plain, size_t indent = 0)
    {
        for (const std::string &part : WrapForTerminal(text, m_inside - indent, m_options.unicode))
        {
            AddLine(NewLine().Add(std::string(indent, ' ')).Add(part, style));
        }
    }

    // Adds a key, a mark and a text; further lines of the text are indented to its start.
    void AddKeyed(const std::string &key, const std::string &mark, std::u16string_view text, Style style)
    {
        const size_t indent = TerminalWidth(key) + 1 + TerminalWidth(mark);
        bool first = true;
        auto lines = WrapForTerminal(text, m_inside - indent, m_options.unicode);
        if (lines.empty())
        {
            lines.emplace_back();
        }
        for (const std::string &part : lines)
        {
            Line line = NewLine();
            if (first)
            {
                line.Add(key, Style::Key).Add(" ").Add(mark);
            }
            else
            {
                line.Add(std::string(indent, ' '));
            }
            AddLine(line.Add(part, style));
            first = false;
        }
    }

    void AddExpando()
    {
        if (m_page.expandedText.empty())
        {
            return;
        }
        AddKeyed(m_page.expanded ? "-" : "+", "",
                 m_page.expanded ? m_page.expandedCaption : m_page.collapsedCaption, Style::Plain);
        if (m_page.expanded)
        {
            AddText(m_page.expandedText);
        }
        Gap();
    }

    void AddProgress()
    {
        const DialogProgress &progress = m_page.progress;
        if (!progress.shown)
        {
            return;
        }
        if (progress.marquee)
        {
            AddText(progress.running ? u"Working, for an unknown time ..." : u"Not started");
            Gap();
            return;
        }
        const double span = std::max(1, progress.high - progress.low);
        const double part = std::clamp((progress.position - progress.low) / span, 0.0, 1.0);
        const size_t length = m_inside - 18;
        const auto full = static_cast<size_t>(part * static_cast<double>(length));
        const char *const state = progress.state == ProgressState::Error    ? "  failed"
                                  : progress.state == ProgressState::Paused ? "  paused"
                                                                            : "";
        Line line = NewLine();
        line.Add("[").Add(Repeated(m_options.unicode ? "█" : "#", full));
        line.Add(Repeated(m_options.unicode ? "░" : ".", length - full)).Add("] ");
        AddLine(line.Add(std::to_string(static_cast<int>(part * 100)) + " %").Add(state, Style::Alarm));
        Gap();
    }

    void AddRadioButtons()
    {
        for (size_t i = 0; i < m_page.radioButtons.size(); ++i)
        {
            const DialogRadioButton &button = m_page.radioButtons[i];
            const bool selected = button.id == m_page.selectedRadioButton;
            const char *const bullet = m_options.unicode ? "(•) " : "(*) ";
            AddKeyed(std::string(1, std::max(' ', RadioButtonKey(i))), selected ? bullet : "( ) ",
                     button.enabled ? button.text : button.text + u" (not available)",
                     button.enabled ? Style::Plain : Style::Faint);
        }
        Gap();
    }

    std::u16string Caption(const DialogButton &button) const
    {
        return button.text + (button.elevated ? u" (as administrator)" : u"") +
               (button.enabled ? u"" : u" (not available)");
    }

    Style StyleOf(const DialogButton &button) const
    {
        return !button.enabled ? Style::Faint : button.id == m_page.defaultButton ? Style::Strong : Style::Plain;
    }

    void AddButtons()
    {
        Line row = NewLine();
        bool fits = !m_page.commandLinks;
        for (size_t i = 0; i < m_page.buttons.size(); ++i)
        {
            const DialogButton &button = m_page.buttons[i];
            row.Add(i > 0 ? "   " : "").Add(std::to_string(i + 1), Style::Key).Add(" ");
            row.Add("[ " + Shown(Caption(button)) + " ]", StyleOf(button));
            fits = fits && button.note.empty() && button.text.find(u'\n') == std::u16string::npos;
        }
        if (fits && row.Width() <= m_inside)
        {
            AddLine(row);
            Gap();
            return;
        }
        for (size_t i = 0; i < m_page.buttons.size(); ++i)
        {
            AddButtonLine(i + 1, m_page.buttons[i]);
        }
        Gap();
    }

    void AddButtonLine(size_t number, const DialogButton &button)
    {
        const char *const arrow = !m_page.commandLinkArrows ? "" : m_options.unicode ? "→ " : "> ";
        const std::string key = std::to_string(number);
        const bool bracketed = !m_page.commandLinks;
        AddKeyed(key, arrow, bracketed ? u"[ " + Caption(button) + u" ]" : Caption(button), StyleOf(button));
        AddText(button.note, Style::Faint, TerminalWidth(key) + 1 + TerminalWidth(arrow));
    }

    void AddCheckBox()
    {
        if (!m_page.checkBox.empty())
        {
            AddKeyed("x", m_page.checked ? "[x] " : "[ ] ", m_page.checkBox, Style::Plain);
            Gap();
        }
    }

    void AddFooter()
    {
        if (m_page.footer.empty())
        {
            return;
        }
        Trim();
        AddLine(NewLine().Add(Repeated(m_frame.across, m_inside), Style::Faint));
        const std::u16string word = WordOf(m_page.footerIcon);
        AddText(word.empty() ? m_page.footer : word + u": " + m_page.footer);
        Gap();
    }

    void AddHint()
    {
        const auto byDefault = std::find_if(m_page.buttons.begin(), m_page.buttons.end(),
                                            [&](const auto &button) { return button.id == m_page.defaultButton; });
        std::u16string hint = u"Type a number";
        hint += m_page.radioButtons.empty() ? u"" : u", a letter";
        hint += m_page.checkBox.empty() ? u"" : u", x to tick or untick";
        hint += m_page.expandedText.empty() ? u"" : m_page.expanded ? u", - to show less" : u", + to show more";
        hint += m_page.links.empty() ? u"" : u", L1 to open a link";
        if (byDefault != m_page.buttons.end())
        {
            hint += u". Enter: " + byDefault->text;
        }
        hint += m_page.cancelButton != 0 ? u". Esc: cancel" : u"";
        for (const std::string &part : WrapForTerminal(hint, m_inside, m_options.unicode))
        {
            m_lines.push_back(std::string(1 + Margin, ' ') + NewLine().Add(part, Style::Faint).Text());
        }
    }

    const DialogPage &m_page;
    const DrawingOptions &m_options;
    const FrameParts &m_frame;
    size_t m_width;
    size_t m_inside;
    bool m_gap = false;
    std::vector<std::string> m_lines;
};

void Say(std::string &text, std::u16string_view part, bool unicode)
{
    for (const std::string &line : WrapForTerminal(part, Widest, unicode))
    {
        text += line + "\n";
    }
}
} // namespace

std::vector<std::string> DrawDialog(const DialogPage &page, const DrawingOptions &options)
{
    return Drawing(page, options).Draw();
}

std::string DescribeDialog(const DialogPage &page, bool unicode)
{
    const std::u16string word = WordOf(page.icon);
    std::string text;
    Say(text, word.empty() ? page.title : page.title + u" (" + word + u")", unicode);
    for (const std::u16string *part : {&page.instruction, &page.content, &page.expandedText, &page.footer})
    {
        Say(text, *part, unicode);
    }
    return text;
}

char RadioButtonKey(size_t index)
{
    // Without x, which is the check box's key.
    static constexpr std::string_view Letters = "abcdefghijkmnopqrstuvwyz";
    return index < Letters.size() ? Letters[index] : '\0';
}
