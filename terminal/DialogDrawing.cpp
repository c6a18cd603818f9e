#include "terminal/DialogDrawing.h"

#include "terminal/TerminalText.h"

#include <algorithm>
#include <array>

namespace
{
constexpr size_t Widest = 78;
constexpr size_t Margin = 2; // blanks between the frame and what is in it

constexpr const char *Plain = "";
constexpr const char *Strong = "\x1B[1m";
constexpr const char *KeyLook = "\x1B[1;36m";
constexpr const char *Faint = "\x1B[2m";
constexpr const char *Alarm = "\x1B[1;31m";

struct FrameParts
{
    const char *TopLeft, *TopRight, *BottomLeft, *BottomRight, *Across, *Down;
};
constexpr FrameParts UnicodeFrame = {"╭", "╮", "╰", "╯", "─", "│"};
constexpr FrameParts AsciiFrame = {"+", "+", "+", "+", "-", "|"};

const char16_t *WordOf(DialogIcon icon)
{
    static constexpr std::array Words = {u"", u"Information", u"Warning", u"Error", u"Security"};
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
    explicit Line(bool hasColour) : m_hasColour(hasColour) {}

    Line &Add(std::string_view text, std::string_view look = Plain)
    {
        const bool isColoured = m_hasColour && !look.empty() && !text.empty();
        m_text.append(isColoured ? look : "").append(text).append(isColoured ? "\x1B[0m" : "");
        m_width += TerminalWidth(text);
        return *this;
    }

    size_t Width() const { return m_width; }
    const std::string &Text() const { return m_text; }

private:
    bool m_hasColour;
    std::string m_text;
    size_t m_width = 0;
};

class Drawing
{
public:
    Drawing(const DialogPage &page, const DrawingOptions &options)
        : m_page(page),
          m_options(options),
          m_frame(options.IsUnicode ? UnicodeFrame : AsciiFrame),
          m_width(std::clamp<size_t>(options.Columns - 1, 24, Widest)),
          m_inside(m_width - 2 - 2 * Margin)
    {
    }

    std::vector<std::string> Draw()
    {
        DrawTop();
        AddPart(m_page.Instruction, Strong);
        AddPart(m_page.Content);
        AddExpando();
        AddButtons();
        m_lines.pop_back(); // the last empty line: the frame separates
        m_lines.push_back(m_frame.BottomLeft + Repeated(m_frame.Across, m_width - 2) + m_frame.BottomRight);
        AddHint();
        return std::move(m_lines);
    }

private:
    Line NewLine() const { return Line(m_options.HasColour); }
    std::string Shown(std::u16string_view text) const { return TerminalLine(text, m_options.IsUnicode); }

    // The icon's word stands in the frame if the title leaves space for it, otherwise below.
    void DrawTop()
    {
        const bool isAlarm = m_page.Icon == DialogIcon::Warning || m_page.Icon == DialogIcon::Error;
        const std::string word = Shown(WordOf(m_page.Icon));
        const std::string title = Shown(CutToWidth(m_page.Title, m_width - 6, false));
        const size_t wordWidth = word.empty() ? 0 : TerminalWidth(word) + 3;
        const bool isWordInFrame = !word.empty() && TerminalWidth(title) + wordWidth <= m_width - 6;
        Line line = NewLine();
        line.Add(m_frame.TopLeft).Add(m_frame.Across);
        if (!title.empty())
        {
            line.Add(" ").Add(title, Strong).Add(" ");
        }
        line.Add(Repeated(m_frame.Across, m_width - 1 - (isWordInFrame ? wordWidth : 0) - line.Width()));
        if (isWordInFrame)
        {
            line.Add(" ").Add(word, isAlarm ? Alarm : Strong).Add(" ").Add(m_frame.Across);
        }
        m_lines.push_back(line.Add(m_frame.TopRight).Text());
        if (!word.empty() && !isWordInFrame)
        {
            AddLine(NewLine().Add(word, isAlarm ? Alarm : Strong));
        }
    }

    void AddLine(const Line &inside)
    {
        const size_t room = m_width - 2 - Margin;
        m_lines.push_back(m_frame.Down + std::string(Margin, ' ') + inside.Text() +
                          std::string(room - std::min(room, inside.Width()), ' ') + m_frame.Down);
    }

    void AddText(std::u16string_view text, const char *look = Plain)
    {
        for (const std::u16string &part : WrapToWidth(text, m_inside))
        {
            AddLine(NewLine().Add(Shown(part), look));
        }
    }

    // With an empty line behind it.
    void AddPart(std::u16string_view text, const char *look = Plain)
    {
        if (!text.empty())
        {
            AddText(text, look);
            AddLine(NewLine());
        }
    }

    // Adds a key and a text; further lines of the text are indented to its start.
    void AddKeyed(const std::string &key, std::u16string_view text, const char *look)
    {
        Line line = NewLine().Add(key, KeyLook);
        for (const std::u16string &part : WrapToWidth(text, m_inside - key.size() - 1))
        {
            AddLine(line.Add(" ").Add(Shown(part), look));
            line = NewLine().Add(std::string(key.size(), ' '));
        }
    }

    void AddExpando()
    {
        if (m_page.ExpandedText.empty())
        {
            return;
        }
        AddKeyed(m_page.IsExpanded ? "-" : "+",
                 m_page.IsExpanded ? m_page.ExpandedCaption : m_page.CollapsedCaption, Plain);
        AddText(m_page.IsExpanded ? m_page.ExpandedText : u"");
        AddLine(NewLine());
    }

    // In one row if they fit, otherwise one below the other.
    void AddButtons()
    {
        const auto look = [&](const DialogButton &button) {
            return button.Id == m_page.DefaultButton ? Strong : Plain;
        };
        Line row = NewLine();
        for (size_t i = 0; i < m_page.Buttons.size(); ++i)
        {
            const DialogButton &button = m_page.Buttons[i];
            row.Add(i > 0 ? "   " : "").Add(std::to_string(i + 1), KeyLook).Add(" ");
            row.Add("[ " + Shown(button.Text) + " ]", look(button));
        }
        if (row.Width() <= m_inside)
        {
            AddLine(row);
        }
        for (size_t i = 0; row.Width() > m_inside && i < m_page.Buttons.size(); ++i)
        {
            const DialogButton &button = m_page.Buttons[i];
            AddKeyed(std::to_string(i + 1), u"[ " + button.Text + u" ]", look(button));
        }
        AddLine(NewLine());
    }

    void AddHint()
    {
        std::u16string hint = u"Type a number";
        hint += m_page.ExpandedText.empty() ? u"" : m_page.IsExpanded ? u", - to show less" : u", + to show more";
        const auto byDefault = std::ranges::find(m_page.Buttons, m_page.DefaultButton, &DialogButton::Id);
        if (byDefault != m_page.Buttons.end())
        {
            hint += u". Enter: " + byDefault->Text;
        }
        hint += m_page.CancelButton != 0 ? u". Esc: cancel" : u"";
        for (const std::u16string &part : WrapToWidth(hint, m_inside))
        {
            m_lines.push_back(std::string(1 + Margin, ' ') + NewLine().Add(Shown(part), Faint).Text());
        }
    }

    const DialogPage &m_page;
    const DrawingOptions &m_options;
    const FrameParts &m_frame;
    size_t m_width;
    size_t m_inside;
    std::vector<std::string> m_lines;
};
} // namespace

std::vector<std::string> DrawDialog(const DialogPage &page, const DrawingOptions &options)
{
    return Drawing(page, options).Draw();
}

std::string DescribeDialog(const DialogPage &page, bool isUnicode)
{
    const std::u16string word = WordOf(page.Icon);
    const std::u16string title = word.empty() ? page.Title : page.Title + u" (" + word + u")";
    std::string text;
    for (const std::u16string *part : {&title, &page.Instruction, &page.Content, &page.ExpandedText})
    {
        for (const std::u16string &line : WrapToWidth(*part, Widest))
        {
            text += TerminalLine(line, isUnicode) + "\n";
        }
    }
    return text;
}
