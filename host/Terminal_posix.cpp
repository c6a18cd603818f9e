#include "host/Terminal_posix.h"

#include <langinfo.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

DisplayOptions DetectDisplay()
{
    const char *const kind = std::getenv("TERM");
    const char *const noColour = std::getenv("NO_COLOR");
    const bool capable = ::isatty(STDOUT_FILENO) && kind != nullptr && std::string_view(kind) != "dumb";
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
            return;
        }
        text.remove_prefix(written > 0 ? static_cast<size_t>(written) : 0);
    }
}
