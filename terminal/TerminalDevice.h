// The user's terminal: what it can do, its size, its keys one by one, and output.
#pragma once

#include "terminal/Input.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include <termios.h>

struct TerminalAbilities
{
    bool MovesCursor = false; // the system's database of terminals has its name, and it isn't a dumb one
    bool HasColour = false;   // it moves the cursor, and NO_COLOR isn't set
    bool IsUnicode = false;   // the locale of the environment uses UTF-8, whatever locale the program has set
};

// Of the terminal behind a descriptor; what is no terminal moves no cursor.
TerminalAbilities AbilitiesOf(int descriptor);

struct TerminalSize
{
    size_t Columns;
    size_t Rows;
};

// 80 by 24 if the terminal doesn't report its size.
TerminalSize SizeOfTerminal(int descriptor);

// Opens the session's own terminal, otherwise the one at standard input; -1 if there is none.
int OpenTerminal();

// Writes everything, if need be in several calls. Returns 0 or an errno value.
int WriteAll(int descriptor, std::string_view text);

// While an object exists, keys are not echoed and none of them sends a signal. If a signal ends the process
// meanwhile, the terminal is restored first.
class TerminalDevice
{
public:
    // The terminal of OpenTerminal; null if there is none. Discards what was typed before, since it was meant for
    // something else.
    static std::unique_ptr<TerminalDevice> Open();

    ~TerminalDevice();
    TerminalDevice(const TerminalDevice &) = delete;
    TerminalDevice &operator=(const TerminalDevice &) = delete;

    const TerminalAbilities &Abilities() const { return m_abilities; }
    TerminalSize Size() const { return SizeOfTerminal(m_descriptor); }

    void Write(std::string_view text) { WriteAll(m_descriptor, text); }

    // Waits for a key, at most for the time limit (-1: none).
    Input Read(int milliseconds = -1);
    void DiscardInput();

    // Takes the whole screen, with mouse clicks, and gives it back with what was on it before.
    void TakeScreen();
    void ReturnScreen();

    // Calls borrower, which finds the terminal with an empty screen and its usual settings.
    void Lend(const std::function<void()> &borrower);

private:
    TerminalDevice(int descriptor, const termios &before);

    int m_descriptor;
    termios m_before;
    termios m_keys;
    TerminalAbilities m_abilities;
};
