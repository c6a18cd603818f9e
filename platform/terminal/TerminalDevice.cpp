#include "platform/terminal/TerminalDevice.h"

#include <fcntl.h>
#include <langinfo.h>
#include <locale.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <iterator>
#include <mutex>

namespace
{
// Bytes that follow an Escape within this time belong to a key that sends several bytes.
constexpr int SequenceMilliseconds = 50;

int OpenTerminal()
{
    const int own = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    return own >= 0 || !isatty(STDIN_FILENO) ? own : fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
}

bool IsSet(const char *variable)
{
    const char *const value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

winsize SizeOf(int descriptor)
{
    winsize size{};
    ioctl(descriptor, TIOCGWINSZ, &size);
    return size;
}

constexpr int EndingSignals[] = {SIGINT, SIGTERM, SIGHUP, SIGQUIT};

// State that the signal handler needs to restore the terminal. Written only while our handler is not
// installed.
struct Lent
{
    int descriptor;
    termios before;
    struct sigaction handling[std::size(EndingSignals)];
} lent;

// Signal handler: restores the terminal, then passes the signal to the previous handling.
void GiveTerminalBack(int number)
{
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
} // namespace

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

std::unique_ptr<TerminalDevice> TerminalDevice::Open()
{
    const int descriptor = OpenTerminal();
    termios before{};
    if (descriptor < 0 || tcgetattr(descriptor, &before) != 0)
    {
        if (descriptor >= 0)
        {
            close(descriptor);
        }
        return nullptr;
    }
    return std::unique_ptr<TerminalDevice>(new TerminalDevice(descriptor, before));
}

TerminalDevice::TerminalDevice(int descriptor, const termios &before)
    : m_descriptor(descriptor), m_before(before), m_isUnicode(UserWritesUtf8())
{
    const char *const kind = std::getenv("TERM");
    m_movesCursor = kind != nullptr && *kind != '\0' && std::string_view(kind) != "dumb";
    m_hasColour = m_movesCursor && !IsSet("NO_COLOR");
    termios keys = before;
    keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG | IEXTEN);
    keys.c_iflag &= ~static_cast<tcflag_t>(IXON);
    keys.c_iflag |= ICRNL;
    keys.c_oflag |= OPOST | ONLCR;
    keys.c_cc[VMIN] = 1;
    keys.c_cc[VTIME] = 0;
    WatchSignals(m_descriptor, m_before);
    tcsetattr(m_descriptor, TCSANOW, &keys);
    tcflush(m_descriptor, TCIFLUSH);
}

TerminalDevice::~TerminalDevice()
{
    tcsetattr(m_descriptor, TCSANOW, &m_before);
    LeaveSignals();
    close(m_descriptor);
}

size_t TerminalDevice::Columns() const
{
    const winsize size = SizeOf(m_descriptor);
    return size.ws_col > 0 ? size.ws_col : 80;
}

size_t TerminalDevice::Rows() const
{
    const winsize size = SizeOf(m_descriptor);
    return size.ws_row > 0 ? size.ws_row : 24;
}

void TerminalDevice::Write(std::string_view text)
{
    while (!text.empty())
    {
        const ssize_t written = write(m_descriptor, text.data(), text.size());
        if (written < 0 && errno != EINTR)
        {
            return;
        }
        text.remove_prefix(written > 0 ? static_cast<size_t>(written) : 0);
    }
}

bool TerminalDevice::ReadByte(char &byte, int milliseconds)
{
    pollfd watched{m_descriptor, POLLIN, 0};
    return poll(&watched, 1, milliseconds) > 0 && read(m_descriptor, &byte, 1) == 1;
}

Key TerminalDevice::ReadKey(int milliseconds, int wake)
{
    pollfd watched[] = {{m_descriptor, POLLIN, 0}, {wake, POLLIN, 0}};
    if (poll(watched, 2, milliseconds) <= 0 || watched[0].revents == 0)
    {
        return {};
    }
    char byte = 0;
    const ssize_t count = read(m_descriptor, &byte, 1);
    if (count < 0 && (errno == EINTR || errno == EAGAIN))
    {
        return {};
    }
    if (count <= 0)
    {
        return {KeyKind::End, {}};
    }
    switch (byte)
    {
    case '\n':
    case '\r':
        return {KeyKind::Enter, {}};
    case '\b':
    case '\x7F':
        return {KeyKind::Backspace, {}};
    case '\x15': // Ctrl+U
        return {KeyKind::EraseLine, {}};
    case '\x03': // Ctrl+C
        return {KeyKind::Interrupt, {}};
    case '\x04': // Ctrl+D
        return {KeyKind::End, {}};
    case '\x1B':
        return ReadEscape();
    default:
        return static_cast<unsigned char>(byte) < 0x20 ? Key{} : ReadText(byte);
    }
}

// Tells the Escape key from keys like the arrows, which send a sequence and have no meaning here.
Key TerminalDevice::ReadEscape()
{
    char byte = 0;
    if (!ReadByte(byte, SequenceMilliseconds))
    {
        return {KeyKind::Escape, {}};
    }
    if (byte == '[' || byte == 'O')
    {
        while (ReadByte(byte, SequenceMilliseconds) && (byte < '@' || byte > '~'))
        {
        }
    }
    return {};
}

Key TerminalDevice::ReadText(char first)
{
    const auto lead = static_cast<unsigned char>(first);
    const int following = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : lead >= 0xC0 ? 1 : 0;
    Key key{KeyKind::Text, std::string(1, first)};
    char byte = 0;
    for (int i = 0; i < following && ReadByte(byte, SequenceMilliseconds); ++i)
    {
        key.text += byte;
    }
    return key;
}
