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
#include "platform/shell32/DetachedProgram.h"

#include <cerrno>
#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace
{
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
