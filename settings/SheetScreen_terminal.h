// The screen and keyboard that the settings sheet needs of a terminal. Names no type of Windows, whose
// declarations don't agree with those of terminal libraries. Native builds only.
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
    Lost // nobody is there any more: the terminal is gone, or the process is to end
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

    // A picture is made of Clear, any number of Write, PlaceCursor if there is a cursor to be seen, and Show.
    // What is written beyond the edges isn't seen.
    virtual void Clear() = 0;
    virtual void Write(int column, int row, std::u16string_view text, Look look) = 0;
    virtual void PlaceCursor(int column, int row) = 0;
    virtual void Show() = 0;

    // Blocks until there is something.
    virtual ScreenInput Read() = 0;

    // Forgets what was typed and not read.
    virtual void DiscardInput() = 0;
    virtual void Beep() = 0;

    // Leaves the terminal, empty and in its usual state, to somebody else for the length of the call.
    virtual void Lend(const std::function<void()> &borrower) = 0;
};

// The terminal behind standard input and output; null if there is none or it can't place its cursor. Its
// former state comes back when the screen is destroyed. While it lives, signals that end a process are read
// as Lost; those but Ctrl+C's do afterwards what they would have done.
std::unique_ptr<ISheetScreen> OpenTerminalScreen();
