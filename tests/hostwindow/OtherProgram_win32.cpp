#include "tests/hostwindow/OtherProgram_win32.h"

#include <commctrl.h>

#include <algorithm>

namespace
{
constexpr UINT Patience = 5000; // milliseconds

HANDLE ProcessOf(HWND window)
{
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, process);
}

BOOL CALLBACK AddIfSeen(HWND window, LPARAM all)
{
    if (IsWindowVisible(window))
    {
        reinterpret_cast<std::vector<HWND> *>(all)->push_back(window);
    }
    return TRUE;
}
} // namespace

OtherMemory::OtherMemory(HWND window, size_t size)
    : m_process(ProcessOf(window)),
      m_place(VirtualAllocEx(m_process.Get(), nullptr, size, MEM_COMMIT, PAGE_READWRITE))
{
}

OtherMemory::~OtherMemory()
{
    VirtualFreeEx(m_process.Get(), m_place, 0, MEM_RELEASE);
}

void OtherMemory::Write(const void *from, size_t size)
{
    WriteProcessMemory(m_process.Get(), m_place, from, size, nullptr);
}

void OtherMemory::Read(void *to, size_t size, size_t offset) const
{
    ReadProcessMemory(m_process.Get(), At(offset), to, size, nullptr);
}

std::wstring TextOf(HWND window)
{
    DWORD_PTR length = 0;
    SendMessageTimeoutW(window, WM_GETTEXTLENGTH, 0, 0, SMTO_ABORTIFHUNG, Patience, &length);
    std::wstring text(length + 1, L'\0');
    DWORD_PTR copied = 0;
    SendMessageTimeoutW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()), SMTO_ABORTIFHUNG,
                        Patience, &copied);
    text.resize(copied);
    return text;
}

std::vector<HWND> TopWindows()
{
    std::vector<HWND> windows;
    EnumWindows(AddIfSeen, reinterpret_cast<LPARAM>(&windows));
    return windows;
}

std::vector<HWND> PartsOf(HWND window)
{
    std::vector<HWND> parts;
    EnumChildWindows(window, AddIfSeen, reinterpret_cast<LPARAM>(&parts));
    return parts;
}

HWND FindPart(HWND window, int id)
{
    const auto parts = PartsOf(window);
    const auto found = std::ranges::find(parts, id, GetDlgCtrlID);
    return found != parts.end() ? *found : nullptr;
}

bool FollowLink(HWND control, const std::wstring &name)
{
    RECT area{};
    GetClientRect(control, &area);
    OtherMemory memory(control, sizeof(LHITTESTINFO));
    for (LONG y = 2; y < area.bottom; y += 4)
    {
        for (LONG x = 1; x < area.right; x += 3)
        {
            LHITTESTINFO hit{};
            hit.pt = {x, y};
            memory.Write(&hit, sizeof(hit));
            const bool isLink = SendMessageW(control, LM_HITTEST, 0, memory.Pointer()) != 0;
            memory.Read(&hit, sizeof(hit));
            if (isLink && (name == hit.item.szID || name == hit.item.szUrl))
            {
                PostMessageW(control, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
                PostMessageW(control, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
                return true;
            }
        }
    }
    return false;
}

namespace
{
std::wstring Cell(HWND list, int row, int column)
{
    wchar_t text[1024]{};
    OtherMemory memory(list, sizeof(LVITEMW) + sizeof(text));
    LVITEMW item{};
    item.iSubItem = column;
    item.cchTextMax = ARRAYSIZE(text);
    item.pszText = static_cast<LPWSTR>(memory.At(sizeof(item)));
    memory.Write(&item, sizeof(item));
    SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), memory.Pointer());
    memory.Read(text, sizeof(text), sizeof(item));
    return text;
}
} // namespace

std::vector<std::wstring> RowsOf(HWND list)
{
    const HWND header = reinterpret_cast<HWND>(SendMessageW(list, LVM_GETHEADER, 0, 0));
    const int columns =
        header == nullptr ? 1 : std::max<int>(1, static_cast<int>(SendMessageW(header, HDM_GETITEMCOUNT, 0, 0)));
    std::vector<std::wstring> rows(static_cast<size_t>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0)));
    for (size_t row = 0; row < rows.size(); ++row)
    {
        for (int column = 0; column < columns; ++column)
        {
            rows[row] += (column == 0 ? L"" : L"|") + Cell(list, static_cast<int>(row), column);
        }
    }
    return rows;
}
