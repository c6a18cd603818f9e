#include "settings/SheetScreen_terminal.h"

#include "settings/CellText_terminal.h"

#define NCURSES_NOMACROS
#define NCURSES_WIDECHAR 1
#include <curses.h>
#include <term.h>

#include <langinfo.h>
#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

namespace
{
// poll() may miss a resize or signal that arrives just before it; it is noticed after this time at most.
constexpr int PollMilliseconds = 200;

// Bytes that follow an Escape within this time belong to one key, such as an arrow.
constexpr int EscapeMilliseconds = 50;

constexpr int KeyPreviousPage = KEY_MAX + 1;
constexpr int KeyNextPage = KEY_MAX + 2;
constexpr short LinkPair = 1;

volatile std::sig_atomic_t endingSignal = 0;

void NoteSignal(int number)
{
    endingSignal = number;
}

// Notes signals that would end the process while it exists; then restores their handlers and raises the signal.
class SignalNotes
{
public:
    SignalNotes()
    {
        endingSignal = 0;
        struct sigaction note = {};
        note.sa_handler = NoteSignal;
        for (size_t i = 0; i < Count; ++i)
        {
            sigaction(Numbers[i], &note, &m_before[i]);
        }
    }

    ~SignalNotes()
    {
        for (size_t i = 0; i < Count; ++i)
        {
            sigaction(Numbers[i], &m_before[i], nullptr);
        }
        if (endingSignal != 0 && endingSignal != SIGINT)
        {
            raise(endingSignal);
        }
    }

    SignalNotes(const SignalNotes &) = delete;
    SignalNotes &operator=(const SignalNotes &) = delete;

private:
    static constexpr int Numbers[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};
    static constexpr size_t Count = std::size(Numbers);
    struct sigaction m_before[Count] = {};
};

struct KeyMeaning
{
    wint_t Code;
    SheetKey Key;
};
constexpr KeyMeaning FunctionKeys[] = {{KEY_RESIZE, SheetKey::Redraw},
                                       {KEY_BTAB, SheetKey::BackTab},
                                       {KEY_UP, SheetKey::Up},
                                       {KEY_DOWN, SheetKey::Down},
                                       {KEY_LEFT, SheetKey::Left},
                                       {KEY_RIGHT, SheetKey::Right},
                                       {KEY_HOME, SheetKey::Home},
                                       {KEY_END, SheetKey::End},
                                       {KEY_PPAGE, SheetKey::PageUp},
                                       {KEY_NPAGE, SheetKey::PageDown},
                                       {KEY_F(4), SheetKey::OpenList},
                                       {KEY_ENTER, SheetKey::Enter},
                                       {KEY_BACKSPACE, SheetKey::Backspace},
                                       {KEY_DC, SheetKey::Delete},
                                       {KeyPreviousPage, SheetKey::PreviousPage},
                                       {KeyNextPage, SheetKey::NextPage}};
constexpr KeyMeaning ControlCharacters[] = {{L'\t', SheetKey::Tab},       {L'\r', SheetKey::Enter},
                                            {L'\n', SheetKey::Enter},     {0x1B, SheetKey::Escape},
                                            {0x03, SheetKey::Escape},     {0x7F, SheetKey::Backspace},
                                            {L'\b', SheetKey::Backspace}, {0x15, SheetKey::EraseLine}};

template <size_t Count>
SheetKey MeaningOf(wint_t code, const KeyMeaning (&meanings)[Count])
{
    for (const KeyMeaning &meaning : meanings)
    {
        if (meaning.Code == code)
        {
            return meaning.Key;
        }
    }
    return SheetKey::None;
}

ScreenInput ReadMouse()
{
    MEVENT event;
    if (getmouse(&event) != OK)
    {
        return {};
    }
    const SheetKey key = event.bstate & BUTTON4_PRESSED   ? SheetKey::WheelUp
                         : event.bstate & BUTTON5_PRESSED ? SheetKey::WheelDown
                         : event.bstate & BUTTON1_PRESSED ? SheetKey::Click
                                                          : SheetKey::None;
    return {key, 0, event.x, event.y};
}

bool HasColour()
{
    const char *const noColour = std::getenv("NO_COLOR");
    return has_colors() && (noColour == nullptr || *noColour == '\0');
}

class CursesScreen final : public ISheetScreen
{
public:
    // IsOpen is false if the terminal can't be opened.
    CursesScreen()
    {
        m_screen = newterm(nullptr, stdout, stdin);
        if (m_screen == nullptr)
        {
            return;
        }
        raw();
        noecho();
        nonl();
        keypad(stdscr, TRUE);
        nodelay(stdscr, TRUE);
        set_escdelay(EscapeMilliseconds);
        define_key("\033[5;5~", KeyPreviousPage);
        define_key("\033[6;5~", KeyNextPage);
        mousemask(BUTTON1_PRESSED | BUTTON4_PRESSED | BUTTON5_PRESSED, nullptr);
        mouseinterval(0);
        if (HasColour())
        {
            start_color();
            use_default_colors();
            m_isColoured = init_pair(LinkPair, COLOR_CYAN, -1) == OK;
        }
    }

    ~CursesScreen() override
    {
        if (m_screen != nullptr)
        {
            endwin();
            delscreen(m_screen);
        }
    }

    CursesScreen(const CursesScreen &) = delete;
    CursesScreen &operator=(const CursesScreen &) = delete;

    bool IsOpen() const { return m_screen != nullptr; }
    int Columns() const override { return getmaxx(stdscr); }
    int Rows() const override { return getmaxy(stdscr); }
    bool IsUnicode() const override { return std::string_view(nl_langinfo(CODESET)) == "UTF-8"; }

    void Clear() override
    {
        erase();
        m_cursorColumn = -1;
    }

    void Write(int column, int row, std::u16string_view text, Look look) override
    {
        if (row < 0 || row >= Rows() || column < 0 || column >= Columns())
        {
            return;
        }
        const std::wstring cells = CellCharacters(FitToCells(text, static_cast<size_t>(Columns() - column)));
        attrset(AttributesOf(look));
        mvaddnwstr(row, column, cells.data(), static_cast<int>(cells.size()));
        attrset(A_NORMAL);
    }

    void PlaceCursor(int column, int row) override
    {
        m_cursorColumn = column;
        m_cursorRow = row;
    }

    void Show() override
    {
        const bool isSeen = m_cursorColumn >= 0 && m_cursorColumn < Columns() && m_cursorRow < Rows();
        curs_set(isSeen ? 1 : 0);
        isSeen ? move(m_cursorRow, m_cursorColumn) : move(Rows() - 1, Columns() - 1);
        refresh();
    }

    ScreenInput Read() override
    {
        for (;;)
        {
            wint_t code = 0;
            const int kind = get_wch(&code);
            if (endingSignal != 0)
            {
                return {SheetKey::Lost};
            }
            if (kind == ERR)
            {
                pollfd watched{STDIN_FILENO, POLLIN, 0};
                const bool isAwake = poll(&watched, 1, PollMilliseconds) > 0;
                if (isAwake && (watched.revents & (POLLHUP | POLLERR | POLLNVAL)))
                {
                    return {SheetKey::Lost};
                }
                continue;
            }
            const ScreenInput input = kind == KEY_CODE_YES ? OfFunctionKey(code) : OfCharacter(code);
            if (input.Key != SheetKey::None)
            {
                return input;
            }
        }
    }

    void DiscardInput() override { flushinp(); }
    void Beep() override { beep(); }

    void Lend(const std::function<void()> &borrower) override
    {
        erase();
        move(0, 0);
        curs_set(1);
        refresh();
        mousemask(0, nullptr);
        def_prog_mode();
        reset_shell_mode();
        borrower();
        reset_prog_mode();
        mousemask(BUTTON1_PRESSED | BUTTON4_PRESSED | BUTTON5_PRESSED, nullptr);
        clearok(curscr, TRUE);
    }

private:
    static ScreenInput OfFunctionKey(wint_t code)
    {
        return code == KEY_MOUSE ? ReadMouse() : ScreenInput{MeaningOf(code, FunctionKeys)};
    }

    static ScreenInput OfCharacter(wint_t code)
    {
        const SheetKey key = MeaningOf(code, ControlCharacters);
        if (key != SheetKey::None || code < L' ')
        {
            return {key};
        }
        return {SheetKey::Character, static_cast<char32_t>(code)};
    }

    int AttributesOf(Look look) const
    {
        switch (look)
        {
        case Look::Strong:
            return A_BOLD;
        case Look::Dim:
            return A_DIM;
        case Look::Link:
            return A_UNDERLINE | (m_isColoured ? COLOR_PAIR(LinkPair) : A_NORMAL);
        case Look::Focus:
            return A_REVERSE;
        default:
            return A_NORMAL;
        }
    }

    // Declared first, so destroyed last: its destructor may raise the signal that ends the process.
    SignalNotes m_signals;
    SCREEN *m_screen = nullptr;
    bool m_isColoured = false;
    int m_cursorColumn = -1;
    int m_cursorRow = 0;
};
} // namespace

std::unique_ptr<ISheetScreen> OpenTerminalScreen()
{
    if (!isatty(STDIN_FILENO) || !isatty(STDOUT_FILENO))
    {
        return nullptr;
    }
    int error = 0;
    const bool isKnown = setupterm(nullptr, STDOUT_FILENO, &error) == OK;
    const bool placesCursor = isKnown && cursor_address != nullptr;
    if (isKnown)
    {
        del_curterm(cur_term);
    }
    if (!placesCursor)
    {
        return nullptr;
    }
    auto screen = std::make_unique<CursesScreen>();
    return screen->IsOpen() ? std::move(screen) : nullptr;
}
