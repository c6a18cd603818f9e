// Opens a document, which natively is always a web page: the desktop's xdg-open passes its address to the
// user's browser. Over ssh, or without a desktop, no browser starts, or only one that nobody sees, so the address
// is shown in the terminal too: any browser on any computer does.
//
// The address is an argument of xdg-open and of the browser, and every user of the machine can read the
// arguments of a process, so an address that is opened must not hold a secret. That of the page on which
// a user grants an authorization doesn't: its request token is useless without the token's secret.
#include <windows.h>
#include <shellapi.h>

#include "com/AsciiText.h"
#include "com/Hresult.h"
#include "com/WideText.h"
#include "com/TextConversion.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace
{
class FileActions
{
public:
    FileActions()
    {
        posix_spawn_file_actions_init(&m_actions);
        for (const int file : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        {
            posix_spawn_file_actions_addopen(&m_actions, file, "/dev/null", O_RDWR, 0);
        }
        posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);
    }
    ~FileActions() { posix_spawn_file_actions_destroy(&m_actions); }
    FileActions(const FileActions &) = delete;
    FileActions &operator=(const FileActions &) = delete;

    const posix_spawn_file_actions_t *Get() const { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

// The program gets a session of its own, so that neither it nor its children can use our terminal.
class Attributes
{
public:
    Attributes()
    {
        sigset_t none, all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_init(&m_attributes);
        posix_spawnattr_setsigmask(&m_attributes, &none);
        posix_spawnattr_setsigdefault(&m_attributes, &all);
        posix_spawnattr_setflags(&m_attributes,
                                 POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    }
    ~Attributes() { posix_spawnattr_destroy(&m_attributes); }
    Attributes(const Attributes &) = delete;
    Attributes &operator=(const Attributes &) = delete;

    const posix_spawnattr_t *Get() const { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes;
};

void CollectLater(pid_t program)
{
    std::thread([program] {
        while (waitpid(program, nullptr, 0) < 0 && errno == EINTR)
        {
        }
    }).detach();
}

// Looks for an executable file of that name in the folders of PATH; empty if there is none. Relative
// entries of PATH are skipped.
std::string FindProgram(const std::string &name)
{
    const char *path = std::getenv("PATH");
    for (std::string_view rest = path ? path : ""; !rest.empty();)
    {
        const size_t end = std::min(rest.find(':'), rest.size());
        std::string file = std::string(rest.substr(0, end)) + '/' + name;
        struct stat about
        {
        };
        if (file[0] == '/' && end > 0 && stat(file.c_str(), &about) == 0 && S_ISREG(about.st_mode) &&
            access(file.c_str(), X_OK) == 0)
        {
            return file;
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return std::string();
}

// Starts the program with exactly these arguments, without a shell. It runs in a session of its own, with
// /dev/null as its standard files, no other open file of this process and default signal handling.
// Doesn't wait for it, but reaps it when it ends, so that no zombie is left. Returns 0 or an errno value.
int StartDetached(const std::string &file, const std::vector<std::string> &arguments)
{
    std::vector<char *> words{const_cast<char *>(file.c_str())};
    for (const std::string &argument : arguments)
    {
        words.push_back(const_cast<char *>(argument.c_str()));
    }
    words.push_back(nullptr);
    pid_t program = 0;
    const int result =
        posix_spawn(&program, file.c_str(), FileActions().Get(), Attributes().Get(), words.data(), environ);
    if (result == 0)
    {
        CollectLater(program);
    }
    return result;
}

// Writes to the user's terminal, if there is one. While it passes on each key as it is typed, this program shows a
// sheet there, in which lines of others would stand where they don't belong.
void ShowInTerminal(const std::string &address)
{
    const int terminal = open("/dev/tty", O_WRONLY | O_NOCTTY | O_CLOEXEC);
    termios state{};
    if (terminal >= 0 && tcgetattr(terminal, &state) == 0 && (state.c_lflag & ICANON) != 0)
    {
        const std::string text = "\nIf no browser opens, open this page on any computer:\n" + address + "\n\n";
        [[maybe_unused]] const ssize_t written = write(terminal, text.data(), text.size());
    }
    if (terminal >= 0)
    {
        close(terminal);
    }
}

bool IsWebAddress(WideView text)
{
    for (const WideView scheme : {WideView(TEXT("https://")), WideView(TEXT("http://"))})
    {
        if (text.size() > scheme.size() && EqualsIgnoringCase(text.substr(0, scheme.size()), scheme))
        {
            return true;
        }
    }
    return false;
}

bool HasControlCharacter(WideView text)
{
    return text.find_first_of(TEXT("\r\n\t\x1b\x7f")) != WideView::npos;
}

struct Outcome
{
    INT_PTR code; // SE_ERR_* or another result of ShellExecute
    DWORD lastError;
};

Outcome Open(WideView verb, WideView address)
{
    if (!verb.empty() && !EqualsIgnoringCase(verb, TEXT("open")))
    {
        return {SE_ERR_NOASSOC, ERROR_NO_ASSOCIATION};
    }
    if (address.empty())
    {
        return {SE_ERR_FNF, ERROR_FILE_NOT_FOUND};
    }
    if (!IsWebAddress(address))
    {
        return {SE_ERR_NOASSOC, ERROR_NO_ASSOCIATION};
    }
    if (HasControlCharacter(address))
    {
        return {SE_ERR_ACCESSDENIED, ERROR_ACCESS_DENIED};
    }
    ShowInTerminal(ToUtf8(address));
    const std::string opener = FindProgram("xdg-open");
    if (opener.empty())
    {
        return {SE_ERR_FNF, ERROR_FILE_NOT_FOUND};
    }
    switch (StartDetached(opener, {ToUtf8(address)}))
    {
    case 0:
        return {33, ERROR_SUCCESS}; // any number above 32 means success
    case ENOENT:
        return {SE_ERR_FNF, ERROR_FILE_NOT_FOUND};
    case ENOMEM:
    case EAGAIN:
        return {SE_ERR_OOM, ERROR_NOT_ENOUGH_MEMORY};
    default:
        return {SE_ERR_ACCESSDENIED, ERROR_ACCESS_DENIED};
    }
}
} // namespace

// Parameters, folder and show command are ignored: a page has no use for them.
HINSTANCE WINAPI ShellExecuteW(HWND, LPCWSTR verb, LPCWSTR file, LPCWSTR, LPCWSTR, INT)
{
    Outcome outcome{SE_ERR_OOM, ERROR_NOT_ENOUGH_MEMORY};
    AtBoundary([&] {
        outcome = Open(verb ? WideView(verb) : WideView(), file ? WideView(file) : WideView());
        return S_OK;
    });
    SetLastError(outcome.lastError);
    return reinterpret_cast<HINSTANCE>(outcome.code);
}
