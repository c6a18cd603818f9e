#include "terminal/TerminalDevice.h"

#include "terminal/KeyDecoding.h"

#include <fcntl.h>
#include <langinfo.h>
#include <locale.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
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

// The one rule for signals while the state of a terminal is changed: between these calls, a signal that ends the process
// gives the terminal back as it was before, and then does what it did before the first call. They may be nested; the
// outermost pair counts.
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

// What the terminal must also be sent to be as it was. The text must stay where it is.
void SetFarewell(const char *text)
{
    farewell = text;
}

// Bytes that follow an Escape within this time belong to a key that sends several bytes.
constexpr int SequenceMilliseconds = 50;

// The alternate screen; clicks and the wheel, with coordinates of any size.
constexpr const char *ScreenTaken = "\x1B[?1049h\x1B[?1000h\x1B[?1006h";
constexpr const char *ScreenReturned = "\x1B[?1006l\x1B[?1000l\x1B[0m\x1B[?25h\x1B[?1049l";
constexpr const char *ScreenLent = "\x1B[?1006l\x1B[?1000l\x1B[0m\x1B[H\x1B[2J\x1B[?25h";

std::string Variable(const char *name)
{
    const char *const value = std::getenv(name);
    return value != nullptr ? value : "";
}

bool IsKnownTerminal(const std::string &name)
{
    const std::string own = Variable("TERMINFO");
    const std::string home = Variable("HOME") + "/.terminfo";
    for (const char *folder : {own.c_str(), home.c_str(), "/etc/terminfo", "/lib/terminfo", "/usr/share/terminfo"})
    {
        std::error_code ignored;
        if (*folder != '\0' &&
            std::filesystem::exists(std::filesystem::path(folder) / name.substr(0, 1) / name, ignored))
        {
            return true;
        }
    }
    return false;
}

bool UserWritesUtf8()
{
    const locale_t user = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (user == nullptr)
    {
        return false;
    }
    const bool utf8 = std::string_view(nl_langinfo_l(CODESET, user)) == "UTF-8";
    freelocale(user);
    return utf8;
}
} // namespace

TerminalAbilities AbilitiesOf(int descriptor)
{
    const std::string name = Variable("TERM");
    TerminalAbilities abilities;
    abilities.MovesCursor = isatty(descriptor) && !name.empty() && name != "dumb" && IsKnownTerminal(name);
    abilities.HasColour = abilities.MovesCursor && Variable("NO_COLOR").empty();
    abilities.IsUnicode = UserWritesUtf8();
    return abilities;
}

TerminalSize SizeOfTerminal(int descriptor)
{
    winsize size{};
    ioctl(descriptor, TIOCGWINSZ, &size);
    return {size.ws_col > 0 ? size.ws_col : 80u, size.ws_row > 0 ? size.ws_row : 24u};
}

int OpenTerminal()
{
    const int own = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    return own >= 0 || !isatty(STDIN_FILENO) ? own : fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
}

int WriteAll(int descriptor, std::string_view text)
{
    while (!text.empty())
    {
        const ssize_t written = write(descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR)
        {
            return errno;
        }
        text.remove_prefix(written > 0 ? static_cast<size_t>(written) : 0);
    }
    return 0;
}

std::unique_ptr<TerminalDevice> TerminalDevice::Open()
{
    const int descriptor = OpenTerminal();
    termios before{};
    if (descriptor < 0 || tcgetattr(descriptor, &before) != 0)
    {
        close(descriptor);
        return nullptr;
    }
    return std::unique_ptr<TerminalDevice>(new TerminalDevice(descriptor, before));
}

TerminalDevice::TerminalDevice(int descriptor, const termios &before)
    : m_descriptor(descriptor), m_before(before), m_keys(before), m_abilities(AbilitiesOf(descriptor))
{
    m_keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG | IEXTEN);
    m_keys.c_iflag &= ~static_cast<tcflag_t>(IXON);
    m_keys.c_iflag |= ICRNL;
    m_keys.c_oflag |= OPOST | ONLCR;
    m_keys.c_cc[VMIN] = 1;
    m_keys.c_cc[VTIME] = 0;
    WatchSignals(m_descriptor, m_before);
    tcsetattr(m_descriptor, TCSANOW, &m_keys);
    DiscardInput();
}

TerminalDevice::~TerminalDevice()
{
    tcsetattr(m_descriptor, TCSANOW, &m_before);
    LeaveSignals();
    close(m_descriptor);
}

Input TerminalDevice::Read(int milliseconds)
{
    pollfd watched{m_descriptor, POLLIN, 0};
    if (poll(&watched, 1, milliseconds) <= 0)
    {
        return {};
    }
    char byte = 0;
    const ssize_t count = read(m_descriptor, &byte, 1);
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
    {
        return {};
    }
    return count <= 0 ? Input{Key::Lost} : DecodeKey(byte, [&]() -> std::optional<char> {
        char next = 0;
        const bool follows = poll(&watched, 1, SequenceMilliseconds) > 0 && read(m_descriptor, &next, 1) == 1;
        return follows ? std::optional(next) : std::nullopt;
    });
}

void TerminalDevice::DiscardInput()
{
    tcflush(m_descriptor, TCIFLUSH);
}

void TerminalDevice::TakeScreen()
{
    SetFarewell(ScreenReturned);
    Write(ScreenTaken);
}

void TerminalDevice::ReturnScreen()
{
    Write(ScreenReturned);
    SetFarewell("");
}

void TerminalDevice::Lend(const std::function<void()> &borrower)
{
    Write(ScreenLent);
    tcsetattr(m_descriptor, TCSANOW, &m_before);
    borrower();
    tcsetattr(m_descriptor, TCSANOW, &m_keys);
    Write(ScreenTaken);
}
