// The terminal that a user sits at: its size, its keys one by one, and text onto it. While an object
// lives, keys are not echoed and none of them sends a signal. A signal that ends the process meanwhile
// leaves the terminal as it was.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include <termios.h>

enum class KeyKind
{
    None, // the time is over, another thread has woken us, or a key without a meaning here
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
    // The terminal of the process, or the one behind standard input; null if there is none. What was
    // typed before is discarded, since it was meant for something else.
    static std::unique_ptr<TerminalDevice> Open();

    ~TerminalDevice();
    TerminalDevice(const TerminalDevice &) = delete;
    TerminalDevice &operator=(const TerminalDevice &) = delete;

    // 80 and 24 where the terminal doesn't tell.
    size_t Columns() const;
    size_t Rows() const;

    bool MovesCursor() const { return m_movesCursor; }
    bool HasColour() const { return m_hasColour; }
    bool IsUnicode() const { return m_isUnicode; }

    void Write(std::string_view text);

    // Waits for a key, for so many milliseconds (-1: without end) or until wake can be read.
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

// Whether the user's locale writes UTF-8, whatever the program has set.
bool UserWritesUtf8();
