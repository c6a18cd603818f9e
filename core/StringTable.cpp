#include "core/StringTable.h"

#include "core/ThisModule.h"

namespace
{
// A view of the entry in the module's memory; empty if there is none.
WideView FindEntry(UINT id) noexcept
{
    // A buffer of length 0 asks for a pointer to the read-only entry, which isn't terminated.
    const WCHAR *entry = nullptr;
    const int length = LoadStringW(ThisModule(), id, reinterpret_cast<LPWSTR>(&entry), 0);
    return WideView(entry, static_cast<size_t>(length)); // an absent one has no length
}
} // namespace

bool LoadStringResource(UINT id, BstrOwner &text)
{
    text.Reset();
    const WideView entry = FindEntry(id);
    if (entry.empty())
    {
        return false;
    }
    text = BstrOwner(entry);
    return true;
}

WideText LoadStringOrPlaceholder(UINT id)
{
    const WideView entry = FindEntry(id);
    return entry.empty() ? WideText(TEXT("?")) : WideText(entry);
}
