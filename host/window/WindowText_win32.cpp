#include "host/window/WindowText_win32.h"

#include "host/TextEncodings.h"

#include "com/HandleOwner.h"

#include <algorithm>

namespace
{
class OpenClipboardOf
{
public:
    // Another program may have the clipboard open just now, a clipboard manager for example: for half a second
    // it is asked for again.
    explicit OpenClipboardOf(HWND owner)
    {
        for (int tries = 10; !m_isOpen && tries > 0; --tries)
        {
            m_isOpen = OpenClipboard(owner) != FALSE;
            if (!m_isOpen)
            {
                Sleep(50);
            }
        }
    }
    ~OpenClipboardOf()
    {
        if (m_isOpen)
        {
            CloseClipboard();
        }
    }
    OpenClipboardOf(const OpenClipboardOf &) = delete;
    OpenClipboardOf &operator=(const OpenClipboardOf &) = delete;

    explicit operator bool() const { return m_isOpen; }

private:
    bool m_isOpen = false;
};

bool Fill(HGLOBAL memory, const std::wstring &text)
{
    auto *const place = memory != nullptr ? static_cast<wchar_t *>(GlobalLock(memory)) : nullptr;
    if (place == nullptr)
    {
        return false;
    }
    const GlobalLockOwner locked(memory);
    std::copy_n(text.c_str(), text.size() + 1, place);
    return true;
}
} // namespace

std::wstring ResourceText(unsigned id)
{
    const wchar_t *text = nullptr;
    const int length = LoadStringW(nullptr, id, reinterpret_cast<LPWSTR>(&text), 0);
    return std::wstring(text, static_cast<size_t>(length > 0 ? length : 0));
}

std::wstring ResourceText(unsigned id, std::wstring_view insert)
{
    std::wstring text = ResourceText(id);
    const size_t place = text.find(L"%1");
    return place == std::wstring::npos ? text : text.replace(place, 2, insert);
}

std::wstring WideOf(std::string_view utf8)
{
    return TextFromUtf8OrLatin(utf8);
}

void CopyToClipboard(HWND owner, const std::wstring &text)
{
    GlobalMemoryOwner memory(GlobalAlloc(GMEM_MOVEABLE, (text.size() + 1) * sizeof(wchar_t)));
    if (text.empty() || !Fill(memory.Get(), text))
    {
        return;
    }
    const OpenClipboardOf clipboard(owner);
    if (clipboard && EmptyClipboard() && SetClipboardData(CF_UNICODETEXT, memory.Get()) != nullptr)
    {
        static_cast<void>(memory.Detach()); // the system's from now on
    }
}
