#include "host/window/WindowText_win32.h"

#include "host/TextEncodings.h"

#include <windows.h>

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
