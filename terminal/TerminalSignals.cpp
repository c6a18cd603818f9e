#include "terminal/TerminalSignals.h"

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstring>
#include <iterator>
#include <mutex>

namespace
{
constexpr int EndingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGABRT, SIGSEGV};

// State that the signal handler needs to restore the terminal. Written only while our handler is not
// installed.
struct Lent
{
    int descriptor;
    termios before;
    struct sigaction handling[std::size(EndingSignals)];
} lent;

std::atomic<const char *> farewell = "";

// Signal handler: restores the terminal, then passes the signal to the previous handling.
void GiveTerminalBack(int number)
{
    const char *const text = farewell;
    [[maybe_unused]] const ssize_t written = write(lent.descriptor, text, std::strlen(text));
    tcsetattr(lent.descriptor, TCSANOW, &lent.before);
    for (size_t i = 0; i < std::size(EndingSignals); ++i)
    {
        sigaction(EndingSignals[i], &lent.handling[i], nullptr);
    }
    raise(number);
}

// Nested devices: only the outermost saves and restores the settings.
std::mutex watchLock;
int watchers = 0;
} // namespace

void WatchSignals(int descriptor, const termios &before)
{
    const std::lock_guard guard(watchLock);
    if (++watchers > 1)
    {
        return;
    }
    lent.descriptor = fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    lent.before = before;
    for (size_t i = 0; i < std::size(EndingSignals); ++i)
    {
        sigaction(EndingSignals[i], nullptr, &lent.handling[i]);
        if (lent.handling[i].sa_handler != SIG_IGN)
        {
            struct sigaction watch = {};
            watch.sa_handler = GiveTerminalBack;
            sigaction(EndingSignals[i], &watch, nullptr);
        }
    }
}

void LeaveSignals()
{
    const std::lock_guard guard(watchLock);
    if (--watchers > 0)
    {
        return;
    }
    for (size_t i = 0; i < std::size(EndingSignals); ++i)
    {
        sigaction(EndingSignals[i], &lent.handling[i], nullptr);
    }
    close(lent.descriptor);
}

void SetFarewell(const char *text)
{
    farewell = text;
}
