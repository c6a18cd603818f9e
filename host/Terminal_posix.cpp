#include "host/Terminal_posix.h"

#include "com/SafeText.h"

#include "terminal/TerminalDevice.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <iostream>

namespace
{
std::atomic<int> outputError = 0;
} // namespace

DisplayOptions DetectDisplay()
{
    const TerminalAbilities out = AbilitiesOf(STDOUT_FILENO);
    DisplayOptions options;
    options.live = out.MovesCursor;
    options.colour = out.HasColour;
    options.colourFaults = AbilitiesOf(STDERR_FILENO).HasColour;
    options.unicode = out.IsUnicode;
    return options;
}

bool HasTerminal()
{
    const int terminal = OpenTerminal();
    if (terminal >= 0)
    {
        ::close(terminal);
    }
    return terminal >= 0;
}

bool IsUserAtTerminal()
{
    return ::isatty(STDIN_FILENO) && DetectDisplay().live;
}

size_t TerminalColumns()
{
    return SizeOfTerminal(STDOUT_FILENO).Columns;
}

void WriteOut(std::string_view text)
{
    if (const int error = WriteAll(STDOUT_FILENO, text); error != 0 && error != EPIPE)
    {
        int none = 0;
        outputError.compare_exchange_strong(none, error);
    }
}

void WriteFaults(std::string_view text)
{
    WriteAll(STDERR_FILENO, text); // there is nobody left to tell of a failure
}

int OutputError()
{
    return outputError;
}

void Complain(const std::string &words)
{
    std::cerr << "halvora: " << OneSafeLine(words) << std::endl;
}
