#include "platform/terminal/TerminalDialog.h"

#include "com/TextConversion.h"
#include "platform/terminal/DialogAnswer.h"
#include "platform/terminal/DialogDrawing.h"
#include "platform/terminal/TerminalDevice.h"
#include "platform/terminal/TerminalText.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>

namespace
{
using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds TimerInterval(200);
constexpr std::string_view Prompt = "   > ";

// The dialog on the terminal: the last drawing, and the line that the user is typing.
class Display
{
public:
    explicit Display(TerminalDevice &device) : m_device(device) {}

    // Draws over the previous drawing if the cursor can return to its top, otherwise below it.
    void Draw(const DialogPage &page)
    {
        const auto lines = DrawDialog(page, {m_device.Columns(), m_device.IsUnicode(), m_device.HasColour()});
        std::string picture;
        const bool isOver =
            m_device.MovesCursor() && m_lines > 0 && m_lines < m_device.Rows() && m_columns == m_device.Columns();
        if (isOver)
        {
            picture = "\r\x1B[" + std::to_string(m_lines) + "A\x1B[J";
        }
        else
        {
            picture = "\n";
        }
        for (const std::string &line : lines)
        {
            picture += line + "\n";
        }
        m_lines = lines.size();
        m_columns = m_device.Columns();
        if (!m_remark.empty())
        {
            picture += "   " + m_remark + "\n";
            ++m_lines;
        }
        m_remark.clear();
        m_device.Write(picture + std::string(Prompt) + m_typed);
    }

    // The remark appears with the next drawing.
    void Remark(std::string text) { m_remark = std::move(text); }

    void Type(const std::string &character)
    {
        const size_t room = m_device.Columns() - std::min(m_device.Columns(), Prompt.size() + 2);
        if (TerminalWidth(m_typed) + TerminalWidth(character) <= room && TerminalWidth(character) > 0)
        {
            m_typed += character;
            m_device.Write(character);
        }
    }

    void EraseLast()
    {
        size_t start = m_typed.size();
        while (start > 0 && (static_cast<unsigned char>(m_typed[--start]) & 0xC0) == 0x80)
        {
        }
        Erase(start);
    }

    void EraseAll() { Erase(0); }

    std::u16string TakeTyped()
    {
        const std::u16string typed = FromUtf8(m_typed);
        Erase(0);
        return typed;
    }

    // Leaves the chosen button's name on the screen.
    void Close(const std::u16string &chosen)
    {
        EraseAll();
        m_device.Write(TerminalLine(chosen, m_device.IsUnicode()) + "\n");
    }

private:
    void Erase(size_t from)
    {
        for (size_t columns = TerminalWidth(std::string_view(m_typed).substr(from)); columns > 0; --columns)
        {
            m_device.Write("\b \b");
        }
        m_typed.resize(from);
    }

    TerminalDevice &m_device;
    std::string m_typed;
    std::string m_remark;
    size_t m_lines = 0;
    size_t m_columns = 0;
};
} // namespace

// One run of the dialog, from its first drawing to the button that closes it.
class TerminalDialog::Session
{
public:
    Session(TerminalDialog &dialog, DialogListener &listener, bool timer, TerminalDevice *device)
        : m_dialog(dialog), m_listener(listener), m_timer(timer), m_device(device)
    {
        if (device != nullptr)
        {
            m_display.emplace(*device);
        }
    }

    int Run()
    {
        DoPostedClicks();
        if (!m_outcome && m_device == nullptr)
        {
            std::fputs(DescribeDialog(m_dialog.Page(), UserWritesUtf8()).c_str(), stderr);
            GiveUp();
        }
        m_timerDue = Clock::now() + TimerInterval;
        while (!m_outcome)
        {
            Refresh();
            const Key key = m_device->ReadKey(UntilTimer(), m_dialog.m_wake);
            m_dialog.ForgetWakings();
            TellTimer();
            Press(key);
            DoPostedClicks();
        }
        if (m_display)
        {
            m_display->Close(NameOf(*m_outcome));
        }
        return *m_outcome;
    }

private:
    // Milliseconds; -1 without a timer.
    int UntilTimer() const
    {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(m_timerDue - Clock::now()).count();
        return m_timer ? static_cast<int>(std::max<long>(left, 0)) : -1;
    }

    void TellTimer()
    {
        if (m_timer && Clock::now() >= m_timerDue)
        {
            m_listener.TimerPassed();
            m_timerDue = Clock::now() + TimerInterval;
        }
    }

    // Where the cursor can't move up, redraws only after the user has typed something.
    void Refresh()
    {
        DialogPage page;
        {
            const std::lock_guard guard(m_dialog.m_lock);
            if (!m_stale && (m_drawnChanges == m_dialog.m_changes || !m_device->MovesCursor()))
            {
                return;
            }
            m_drawnChanges = m_dialog.m_changes;
            page = m_dialog.m_page;
        }
        m_stale = false;
        m_display->Draw(page);
    }

    void Remark(std::string text)
    {
        if (m_display)
        {
            m_display->Remark(std::move(text));
            m_stale = true;
        }
    }

    void Press(const Key &key)
    {
        switch (key.kind)
        {
        case KeyKind::Text:
            m_display->Type(key.text);
            break;
        case KeyKind::Backspace:
            m_display->EraseLast();
            break;
        case KeyKind::EraseLine:
            m_display->EraseAll();
            break;
        case KeyKind::Enter:
            Answer(m_display->TakeTyped());
            break;
        case KeyKind::Escape:
            Cancel();
            break;
        case KeyKind::Interrupt:
            m_dialog.Page().cancelButton != 0 ? Cancel() : GiveUp();
            break;
        case KeyKind::End:
            GiveUp();
            break;
        case KeyKind::None:
            break;
        }
    }

    void Answer(const std::u16string &typed)
    {
        const DialogPage page = m_dialog.Page();
        const DialogAnswer answer = ReadAnswer(page, typed);
        m_stale = true;
        switch (answer.kind)
        {
        case AnswerKind::Button:
            ClickButton(page.buttons[answer.index]);
            break;
        case AnswerKind::RadioButton:
            ClickRadioButton(page.radioButtons[answer.index]);
            break;
        case AnswerKind::CheckBox:
            SetCheckBox(!page.checked);
            break;
        case AnswerKind::Expando:
            m_dialog.Change([](DialogPage &changed) { changed.expanded = !changed.expanded; });
            m_listener.ExpandoClicked(!page.expanded);
            break;
        case AnswerKind::Link:
            m_listener.LinkClicked(page.links[answer.index]);
            break;
        case AnswerKind::Unknown:
            Remark("That is none of the choices.");
            break;
        }
    }

    void Cancel()
    {
        if (const int id = m_dialog.Page().cancelButton)
        {
            Close(id);
        }
        else
        {
            Remark("This can't be cancelled: please choose.");
        }
    }

    // The terminal is gone: ends the dialog, even if the listener wants it kept open.
    void GiveUp()
    {
        const int id = m_dialog.Page().lostButton;
        m_listener.ButtonClicked(id);
        m_outcome = id;
    }

    void Close(int id)
    {
        if (m_listener.ButtonClicked(id))
        {
            m_outcome = id;
        }
    }

    void ClickButton(const DialogButton &button)
    {
        if (button.enabled)
        {
            Close(button.id);
        }
        else
        {
            Remark("That is not available now.");
        }
    }

    void ClickRadioButton(const DialogRadioButton &button)
    {
        if (!button.enabled)
        {
            Remark("That is not available now.");
            return;
        }
        m_dialog.Change([&](DialogPage &page) { page.selectedRadioButton = button.id; });
        m_listener.RadioButtonClicked(button.id);
    }

    void SetCheckBox(bool checked)
    {
        m_dialog.Change([&](DialogPage &page) { page.checked = checked; });
        m_listener.CheckBoxClicked(checked);
    }

    void DoPostedClicks()
    {
        while (!m_outcome)
        {
            Click click;
            {
                const std::lock_guard guard(m_dialog.m_lock);
                if (m_dialog.m_clicks.empty())
                {
                    return;
                }
                click = m_dialog.m_clicks.front();
                m_dialog.m_clicks.pop_front();
            }
            DoPosted(click);
        }
    }

    void DoPosted(Click click)
    {
        const DialogPage page = m_dialog.Page();
        const auto hasId = [&](const auto &item) { return item.id == click.id; };
        if (click.kind == Click::Kind::Button)
        {
            const auto button = std::find_if(page.buttons.begin(), page.buttons.end(), hasId);
            button != page.buttons.end() ? ClickButton(*button) : Close(click.id);
        }
        else if (click.kind == Click::Kind::RadioButton)
        {
            const auto button = std::find_if(page.radioButtons.begin(), page.radioButtons.end(), hasId);
            if (button != page.radioButtons.end())
            {
                ClickRadioButton(*button);
            }
        }
        else
        {
            SetCheckBox(click.id != 0);
        }
    }

    std::u16string NameOf(int id) const
    {
        const DialogPage page = m_dialog.Page();
        const auto button = std::find_if(page.buttons.begin(), page.buttons.end(),
                                         [id](const auto &known) { return known.id == id; });
        return button != page.buttons.end() ? button->text : u"Cancel";
    }

    TerminalDialog &m_dialog;
    DialogListener &m_listener;
    bool m_timer;
    TerminalDevice *m_device;
    std::optional<Display> m_display;
    std::optional<int> m_outcome;
    bool m_stale = true;
    Clock::time_point m_timerDue;
    unsigned m_drawnChanges = 0;
};

TerminalDialog::TerminalDialog() : m_wake(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

TerminalDialog::~TerminalDialog()
{
    close(m_wake);
}

void TerminalDialog::Change(const std::function<void(DialogPage &)> &change)
{
    {
        const std::lock_guard guard(m_lock);
        change(m_page);
        ++m_changes;
    }
    Wake();
}

DialogPage TerminalDialog::Page() const
{
    const std::lock_guard guard(m_lock);
    return m_page;
}

void TerminalDialog::ClickButton(int id)
{
    Post({Click::Kind::Button, id});
}

void TerminalDialog::ClickRadioButton(int id)
{
    Post({Click::Kind::RadioButton, id});
}

void TerminalDialog::SetCheckBox(bool checked)
{
    Post({Click::Kind::CheckBox, checked});
}

int TerminalDialog::Run(DialogListener &listener, bool timer)
{
    const std::unique_ptr<TerminalDevice> device = TerminalDevice::Open();
    return Session(*this, listener, timer, device.get()).Run();
}

void TerminalDialog::Post(Click click)
{
    {
        const std::lock_guard guard(m_lock);
        m_clicks.push_back(click);
    }
    Wake();
}

void TerminalDialog::Wake()
{
    eventfd_write(m_wake, 1);
}

void TerminalDialog::ForgetWakings()
{
    eventfd_t ignored;
    eventfd_read(m_wake, &ignored);
}
