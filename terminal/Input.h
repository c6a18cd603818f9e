// A key or a click at a terminal.
#pragma once

enum class Key
{
    None,   // the time limit is over, or the key has no meaning here
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
    Escape,
    Interrupt, // Ctrl+C
    Backspace,
    Delete,
    EraseLine, // Ctrl+U
    Click,
    WheelUp,
    WheelDown,
    EndOfInput, // Ctrl+D
    Lost        // the terminal is gone
};

struct Input
{
    Key What = Key::None;
    char32_t Character = 0;
    int Column = 0; // of a click, from 0
    int Row = 0;
};
