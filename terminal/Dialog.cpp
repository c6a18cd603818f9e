#include "terminal/Dialog.h"

#include "com/AsciiText.h"
#include "terminal/DialogDrawing.h"
#include "terminal/TerminalDevice.h"
#include "terminal/TerminalText.h"

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <optional>

#include <unistd.h>

namespace
{
constexpr std::string_view Prompt = "   > ";

// How a typed line answers the dialog. Neither: the line means nothing.
struct DialogAnswer
{
    const DialogButton *Button = nullptr;
    bool IsExpando = false;
};

// The button with the typed number, counted from 1.
const DialogButton *Numbered(const DialogPage &page, std::u16string_view typed)
{
    for (size_t i = 0; i < page.Buttons.size(); ++i)
    {
        const std::string number = std::to_string(i + 1);
        if (std::ranges::equal(number, typed))
        {
            return &page.Buttons[i];
        }
    }
    return nullptr;
}

// The button whose text is the name, otherwise the only one whose text begins with it.
const DialogButton *Named(const DialogPage &page, std::u16string_view name)
{
    const DialogButton *beginning = nullptr;
    bool isAmbiguous = false;
    for (const DialogButton &button : page.Buttons)
    {
        if (!BeginsWithIgnoringCase(button.Text, name))
        {
            continue;
        }
        if (BeginsWithIgnoringCase(name, button.Text))
        {
            return &button;
        }
        isAmbiguous = beginning != nullptr;
        beginning = &button;
    }
    return isAmbiguous ? nullptr : beginning;
}

// A button is chosen by its number or by an unambiguous beginning of its name, the expandable text by "+" or "-".
// An empty line chooses the default button. The page must outlive the answer.
DialogAnswer ReadAnswer(const DialogPage &page, std::u16string_view typed)
{
    const std::u16string_view answer = Trimmed(typed);
    if (answer.empty())
    {
        const auto found = std::ranges::find(page.Buttons, page.DefaultButton, &DialogButton::Id);
        return {found == page.Buttons.end() ? nullptr : &*found};
    }
    if (!page.ExpandedText.empty() && (answer == u"+" || answer == u"-"))
    {
        return {nullptr, true};
    }
    const DialogButton *const numbered = Numbered(page, answer);
    return {numbered != nullptr ? numbered : Named(page, answer)};
}

// One run of the dialog, from its first drawing to the button that closes it.
class DialogRun
{
public:
    DialogRun(const DialogPage &page, TerminalDevice &device) : m_page(page), m_device(device) {}

    int Run()
    {
        Draw();
        while (!m_outcome)
        {
            Press(m_device.Read());
        }
        // The chosen button's name stays on the screen.
        Erase(0);
        const auto button = std::ranges::find(m_page.Buttons, *m_outcome, &DialogButton::Id);
        const std::u16string name = button != m_page.Buttons.end() ? button->Text : u"Cancel";
        m_device.Write(Shown(name) + "\n");
        return *m_outcome;
    }

private:
    std::string Shown(std::u16string_view text) const
    {
        return TerminalLine(text, m_device.Abilities().IsUnicode);
    }

    // Draws over the previous drawing if the cursor can return to its top, otherwise below it.
    void Draw(std::string_view remark = {})
    {
        const TerminalAbilities &abilities = m_device.Abilities();
        const auto [columns, rows] = m_device.Size();
        const auto lines = DrawDialog(m_page, {columns, abilities.IsUnicode, abilities.HasColour});
        const bool isOver = abilities.MovesCursor && m_lines > 0 && m_lines < rows && m_columns == columns;
        std::string picture = isOver ? "\r\x1B[" + std::to_string(m_lines) + "A\x1B[J" : "\n";
        for (const std::string &line : lines)
        {
            picture += line + "\n";
        }
        if (!remark.empty())
        {
            picture.append("   ").append(remark).append("\n");
        }
        m_lines = lines.size() + !remark.empty();
        m_columns = columns;
        m_device.Write(picture.append(Prompt).append(Shown(m_typed)));
    }

    void Press(const Input &input)
    {
        switch (input.What)
        {
        case Key::Character:
            Type(input.Character);
            break;
        case Key::Backspace:
            Erase(CharacterBefore(m_typed, m_typed.size()));
            break;
        case Key::EraseLine:
            Erase(0);
            break;
        case Key::Enter:
            Answer();
            break;
        case Key::Escape:
            Cancel();
            break;
        case Key::Interrupt:
            m_page.CancelButton != 0 ? Cancel() : GiveUp();
            break;
        case Key::EndOfInput:
        case Key::Lost:
            GiveUp();
            break;
        default:
            break;
        }
    }

    void Type(char32_t character)
    {
        std::u16string added;
        AppendCharacter(added, character);
        const size_t width = TerminalWidth(added);
        const size_t columns = m_device.Size().Columns;
        if (width > 0 && TerminalWidth(m_typed) + width + Prompt.size() + 2 <= columns)
        {
            m_typed += added;
            m_device.Write(Shown(added));
        }
    }

    void Erase(size_t from)
    {
        for (size_t columns = TerminalWidth(Shown(m_typed.substr(from))); columns > 0; --columns)
        {
            m_device.Write("\b \b");
        }
        m_typed.resize(from);
    }

    void Answer()
    {
        const DialogAnswer answer = ReadAnswer(m_page, m_typed);
        Erase(0);
        if (answer.Button != nullptr)
        {
            m_outcome = answer.Button->Id;
            return;
        }
        m_page.IsExpanded = m_page.IsExpanded != answer.IsExpando;
        Draw(answer.IsExpando ? "" : "That is none of the choices.");
    }

    void Cancel()
    {
        if (m_page.CancelButton != 0)
        {
            m_outcome = m_page.CancelButton;
            return;
        }
        Draw("This can't be cancelled: please choose.");
    }

    void GiveUp() { m_outcome = m_page.LostButton; }

    DialogPage m_page;
    TerminalDevice &m_device;
    std::u16string m_typed;
    size_t m_lines = 0; // of the last drawing
    size_t m_columns = 0;
    std::optional<int> m_outcome;
};

struct ButtonWord
{
    int Id;
    const char16_t *Word;
};
constexpr ButtonWord ButtonWords[] = {
    {IDOK, u"OK"}, {IDCANCEL, u"Cancel"}, {IDRETRY, u"Retry"}, {IDYES, u"Yes"}, {IDNO, u"No"}, {IDCLOSE, u"Close"},
};
} // namespace

const char16_t *WordOfButton(int id)
{
    const auto found = std::ranges::find(ButtonWords, id, &ButtonWord::Id);
    return found == std::end(ButtonWords) ? u"" : found->Word;
}

int RunDialog(const DialogPage &page)
{
    if (const auto device = TerminalDevice::Open())
    {
        return DialogRun(page, *device).Run();
    }
    std::fputs(DescribeDialog(page, AbilitiesOf(STDERR_FILENO).IsUnicode).c_str(), stderr);
    return page.LostButton;
}
