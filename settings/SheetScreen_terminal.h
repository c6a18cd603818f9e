// The screen and keyboard of a terminal, as the settings sheet needs them. Names no type of Windows, whose
// declarations conflict with those of terminal libraries. Native build only.
#pragma once

#include <functional>
#include <memory>
#include <string_view>

enum class SheetKey
{
    None,
    Redraw, // the terminal has another size
    Character,
    Tab,
    BackTab,
    Up,
    Down,
    Left,
    Right,
    Home,
    End,
    PageUp,
    PageDown,
    PreviousPage, // Ctrl+PageUp
    NextPage,     // Ctrl+PageDown
    OpenList,     // F4
    Enter,
    Escape, // or Ctrl+C
    Backspace,
    Delete,
    EraseLine, // Ctrl+U
    Click,
    WheelUp,
    WheelDown,
    Lost // the terminal is gone, or a signal asks the process to end
};

struct ScreenInput
{
    SheetKey Key = SheetKey::None;
    char32_t Character = 0;
    int Column = 0; // of a click, from 0
    int Row = 0;
};

enum class Look
{
    Plain,
    Strong,
    Dim,
    Link,
    Focus
};

class ISheetScreen
{
public:
    virtual ~ISheetScreen() = default;

    virtual int Columns() const = 0;
    virtual int Rows() const = 0;

    // Whether more than ASCII can be shown.
    virtual bool IsUnicode() const = 0;

    // A frame is drawn by Clear, any number of Write, PlaceCursor if the cursor is to be visible, and Show. Text
    // beyond the edges is cut off.
    virtual void Clear() = 0;
    virtual void Write(int column, int row, std::u16string_view text, Look look) = 0;
    virtual void PlaceCursor(int column, int row) = 0;
    virtual void Show() = 0;

    // Blocks until there is input.
    virtual ScreenInput Read() = 0;

    // Drops input that was typed but not yet read.
    virtual void DiscardInput() = 0;
    virtual void Beep() = 0;

    // Clears the terminal, restores its usual state, calls borrower, which may use it, and takes it back.
    virtual void Lend(const std::function<void()> &borrower) = 0;
};

// Opens the terminal behind standard input and output; null if there is none or it can't place its cursor. The
// destructor restores the terminal's former state. While the screen exists, signals that end a process are read
// as Lost; the destructor raises them again, except SIGINT.
std::unique_ptr<ISheetScreen> OpenTerminalScreen();
