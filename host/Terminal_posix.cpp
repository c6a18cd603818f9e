#include "host/Terminal_posix.h"

#include "com/TextConversion.h"

#include <fcntl.h>
#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <iostream>

// After the others: the library's names are macros.
#include <curses.h>
#include <term.h>

namespace
{
std::atomic<int> outputError = 0;

// By the system's database of terminals. An empty TERM, and one that nobody knows, can do nothing.
bool CanPlaceCursor(int file)
{
    int error = 0;
    if (!::isatty(file) || ::setupterm(nullptr, file, &error) != OK)
    {
        return false;
    }
    const bool places = cursor_address != nullptr;
    ::del_curterm(cur_term);
    return places;
}
// Returns 0 or an errno value.
int WriteAll(int file, std::string_view text)
{
    while (!text.empty())
    {
        const ssize_t written = ::write(file, text.data(), text.size());
        if (written < 0 && errno != EINTR)
        {
            return errno;
        }
        text.remove_prefix(written > 0 ? static_cast<size_t>(written) : 0);
    }
    return 0;
}
} // namespace

DisplayOptions DetectDisplay()
{
    const char *const noColour = std::getenv("NO_COLOR");
    const bool wantsColour = noColour == nullptr || *noColour == '\0';
    DisplayOptions options;
    options.live = CanPlaceCursor(STDOUT_FILENO);
    options.colour = options.live && wantsColour;
    options.colourFaults = wantsColour && CanPlaceCursor(STDERR_FILENO);
    options.unicode = std::string_view(::nl_langinfo(CODESET)) == "UTF-8";
    return options;
}

bool HasTerminal()
{
    const int terminal = ::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal >= 0)
    {
        ::close(terminal);
    }
    return terminal >= 0 || ::isatty(STDIN_FILENO);
}

bool IsUserAtTerminal()
{
    return ::isatty(STDIN_FILENO) && DetectDisplay().live;
}

size_t TerminalColumns()
{
    winsize size = {};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
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
