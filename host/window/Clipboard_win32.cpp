#include "host/window/Clipboard.h"

#include "core/HandleOwner.h"

#include <algorithm>

namespace
{
class OpenClipboardOf
{
public:
    explicit OpenClipboardOf(HWND owner) : m_isOpen(OpenClipboard(owner) != FALSE) {}
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
    const bool m_isOpen;
};
} // namespace

void CopyToClipboard(HWND owner, const std::wstring &text)
{
    GlobalMemoryOwner memory(GlobalAlloc(GMEM_MOVEABLE, (text.size() + 1) * sizeof(wchar_t)));
    auto *const place = memory ? static_cast<wchar_t *>(GlobalLock(memory.Get())) : nullptr;
    if (text.empty() || place == nullptr)
    {
        return;
    }
    std::copy_n(text.c_str(), text.size() + 1, place);
    GlobalUnlock(memory.Get());
    const OpenClipboardOf clipboard(owner);
    if (clipboard && EmptyClipboard() && SetClipboardData(CF_UNICODETEXT, memory.Get()) != nullptr)
    {
        static_cast<void>(memory.Detach()); // the system's from now on
    }
}
