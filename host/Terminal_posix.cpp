#include "host/Terminal_posix.h"

#include "host/SafeLine.h"

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
bool CanPlaceCursor()
{
    int error = 0;
    if (!::isatty(STDOUT_FILENO) || ::setupterm(nullptr, STDOUT_FILENO, &error) != OK)
    {
        return false;
    }
    const bool places = cursor_address != nullptr;
    ::del_curterm(cur_term);
    return places;
}
} // namespace

DisplayOptions DetectDisplay()
{
    const char *const noColour = std::getenv("NO_COLOR");
    const bool capable = CanPlaceCursor();
    DisplayOptions options;
    options.live = capable;
    options.colour = capable && (noColour == nullptr || *noColour == '\0');
    options.unicode = std::string_view(::nl_langinfo(CODESET)) == "UTF-8";
    return options;
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
    while (!text.empty())
    {
        const ssize_t written = ::write(STDOUT_FILENO, text.data(), text.size());
        if (written < 0 && errno != EINTR)
        {
            int none = 0;
            outputError.compare_exchange_strong(none, errno == EPIPE ? 0 : errno);
            return;
        }
        text.remove_prefix(written > 0 ? static_cast<size_t>(written) : 0);
    }
}

int OutputError()
{
    return outputError;
}

void Complain(const std::string &words)
{
    std::cerr << "halvora: " << OneSafeLine(words) << std::endl;
}
