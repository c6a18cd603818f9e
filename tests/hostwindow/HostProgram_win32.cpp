#include "tests/hostwindow/HostProgram_win32.h"

#include "host/window/resource.h"
#include "tests/hostwindow/OtherProgram_win32.h"
#include "tests/ui/DialogDriver_win32.h"

#include <commctrl.h>

#include <algorithm>

namespace
{
constexpr DWORD Patience = 20000; // milliseconds

// LM_GETIDEALSIZE, which the headers of this compiler lack.
constexpr UINT GetIdealSize = WM_USER + 0x301;

// A visible window at the top: a message box, or one that is none.
HWND FindTop(DWORD process, bool isQuestion)
{
    for (const HWND window : TopWindows())
    {
        DWORD owner = 0;
        wchar_t name[32];
        GetWindowThreadProcessId(window, &owner);
        GetClassNameW(window, name, ARRAYSIZE(name));
        if (owner == process && (std::wstring(name) == L"#32770") == isQuestion)
        {
            return window;
        }
    }
    return nullptr;
}

std::wstring CommandLineOf(const std::filesystem::path &profile,
                           const std::vector<std::filesystem::path> &pictures)
{
    const std::filesystem::path program(HALVORA_PROGRAM);
    std::wstring line = L"\"" + std::filesystem::absolute(program).make_preferred().wstring() +
                        L"\" --profile \"" + profile.wstring() + L"\"";
    for (const auto &picture : pictures)
    {
        line += L" \"" + picture.wstring() + L"\"";
    }
    return line;
}
} // namespace

HostProgram::HostProgram(const std::filesystem::path &profile, const std::vector<std::filesystem::path> &pictures)
{
    std::wstring line = CommandLineOf(profile, pictures);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(nullptr, line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process))
    {
        ADD_FAILURE() << "The program doesn't start: " << GetLastError();
        return;
    }
    const FileOwner thread(process.hThread);
    m_process = FileOwner(process.hProcess);
    m_number = process.dwProcessId;
    EXPECT_TRUE(WaitFor([&] { return (m_window = FindTop(m_number, false)) != nullptr; }, Patience));
    IsAlive();
}

HostProgram::~HostProgram()
{
    if (m_process)
    {
        PostMessageW(m_window, WM_CLOSE, 0, 0);
        if (WaitForSingleObject(m_process.Get(), 3000) == WAIT_TIMEOUT)
        {
            TerminateProcess(m_process.Get(), 1);
        }
    }
}

std::vector<HWND> HostProgram::Parts() const
{
    auto parts = PartsOf(m_window);
    std::erase_if(parts, [](HWND part) { return GetDlgCtrlID(part) == 0; });
    return parts;
}

HWND HostProgram::Part(int id) const
{
    return FindPart(m_window, id);
}

std::wstring HostProgram::Text(int id) const
{
    return TextOf(Part(id));
}

std::vector<std::wstring> HostProgram::Rows(int id) const
{
    return RowsOf(Part(id));
}

std::wstring HostProgram::Log() const
{
    std::wstring log;
    for (const std::wstring &row : Rows(IDC_LOG))
    {
        log += row + L"\n";
    }
    return log;
}

bool HostProgram::AwaitText(int id, const std::wstring &text) const
{
    return WaitFor([&] { return Text(id).find(text) != std::wstring::npos; }, Patience);
}

bool HostProgram::AwaitLog(const std::wstring &text) const
{
    return WaitFor([&] { return Log().find(text) != std::wstring::npos; }, Patience);
}

bool HostProgram::AwaitEnabled(int id, bool isEnabled) const
{
    return WaitFor([&] { return IsEnabled(id) == isEnabled; }, Patience);
}

void HostProgram::Follow(int id, const std::wstring &link) const
{
    EXPECT_TRUE(FollowLink(Part(id), link));
}

void HostProgram::SelectLog() const
{
    LVITEMW state{};
    state.state = state.stateMask = LVIS_SELECTED;
    OtherMemory memory(m_window, sizeof(state));
    memory.Write(&state, sizeof(state));
    SendMessageW(Part(IDC_LOG), LVM_SETITEMSTATE, static_cast<WPARAM>(-1), memory.Pointer());
}

bool HostProgram::IsAlive() const
{
    DWORD_PTR ignored = 0;
    return SendMessageTimeoutW(m_window, WM_NULL, 0, 0, SMTO_ABORTIFHUNG, 2000, &ignored) != 0;
}

HWND HostProgram::AwaitQuestion() const
{
    HWND question = nullptr;
    WaitFor([&] { return (question = FindTop(m_number, true)) != nullptr; }, Patience);
    SendMessageW(question, WM_NULL, 0, 0);
    return question;
}

std::optional<DWORD> HostProgram::AwaitEnd() const
{
    DWORD code = 0;
    if (WaitForSingleObject(m_process.Get(), Patience) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(m_process.Get(), &code))
    {
        return std::nullopt;
    }
    return code;
}

SIZE HostProgram::IdealSizeOf(HWND button) const
{
    SIZE size{};
    OtherMemory memory(m_window, sizeof(size));
    memory.Write(&size, sizeof(size));
    SendMessageW(button, BCM_GETIDEALSIZE, 0, memory.Pointer());
    memory.Read(&size, sizeof(size));
    return size;
}

int HostProgram::IdealHeightOf(HWND links, int width) const
{
    OtherMemory memory(m_window, sizeof(SIZE));
    return static_cast<int>(SendMessageW(links, GetIdealSize, static_cast<WPARAM>(width), memory.Pointer()));
}
