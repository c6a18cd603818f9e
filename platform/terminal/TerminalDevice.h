// The user's terminal: its size, its keys one by one, and output. While an object exists, keys are not
// echoed and none of them sends a signal. If a signal ends the process meanwhile, the terminal's settings
// are restored first.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include <termios.h>

enum class KeyKind
{
    None, // the time limit is over, another thread has woken us, or the key has no meaning here
    Text,
    Enter,
    Backspace,
    EraseLine,
    Escape,
    Interrupt,
    End // Ctrl+D, or the terminal is gone
};

struct Key
{
    KeyKind kind = KeyKind::None;
    std::string text; // of Text: one character in UTF-8
};

class TerminalDevice
{
public:
    // Opens the controlling terminal, otherwise the one at standard input; null if there is none. Discards
    // what was typed before, since it was meant for something else.
    static std::unique_ptr<TerminalDevice> Open();

    ~TerminalDevice();
    TerminalDevice(const TerminalDevice &) = delete;
    TerminalDevice &operator=(const TerminalDevice &) = delete;

    // 80 and 24 if the terminal doesn't report its size.
    size_t Columns() const;
    size_t Rows() const;

    bool MovesCursor() const { return m_movesCursor; }
    bool HasColour() const { return m_hasColour; }
    bool IsUnicode() const { return m_isUnicode; }

    void Write(std::string_view text);

    // Waits for a key, for the time limit (-1: none) or until the descriptor `wake` is readable.
    Key ReadKey(int milliseconds, int wake);

private:
    TerminalDevice(int descriptor, const termios &before);
    bool ReadByte(char &byte, int milliseconds);
    Key ReadEscape();
    Key ReadText(char first);

    int m_descriptor;
    termios m_before;
    bool m_movesCursor;
    bool m_hasColour;
    bool m_isUnicode;
};

// Whether the locale of the environment uses UTF-8, whatever locale the program has set.
bool UserWritesUtf8();
