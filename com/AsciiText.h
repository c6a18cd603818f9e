// Keywords of formats: names that differ in the case of A to Z alone are the same, and blanks around them don't count.
// The locale plays no part.
#pragma once

#include <algorithm>
#include <string>
#include <string_view>

template <class Unit>
constexpr Unit LowerAsciiUnit(Unit unit) noexcept
{
    return unit >= 'A' && unit <= 'Z' ? static_cast<Unit>(unit + ('a' - 'A')) : unit;
}

inline std::string LowerAscii(std::string_view text)
{
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), LowerAsciiUnit<char>);
    return lower;
}

namespace AsciiDetail
{
template <class View>
bool Equal(View left, View right) noexcept
{
    return std::ranges::equal(left, right, [](auto a, auto b) { return LowerAsciiUnit(a) == LowerAsciiUnit(b); });
}

template <class View>
View Trim(View text) noexcept
{
    constexpr typename View::value_type Blanks[] = {' ', '\t', '\r', '\n', 0};
    const size_t first = text.find_first_not_of(Blanks);
    return first == text.npos ? View() : text.substr(first, text.find_last_not_of(Blanks) - first + 1);
}
} // namespace AsciiDetail

// Of bytes, and of the wide units of either build.
inline bool EqualsIgnoringCase(std::string_view left, std::string_view right) noexcept
{
    return AsciiDetail::Equal(left, right);
}
inline bool EqualsIgnoringCase(std::u16string_view left, std::u16string_view right) noexcept
{
    return AsciiDetail::Equal(left, right);
}
inline bool EqualsIgnoringCase(std::wstring_view left, std::wstring_view right) noexcept
{
    return AsciiDetail::Equal(left, right);
}

// The text without blanks, tabs and line breaks at its ends; a view into it.
inline std::string_view Trimmed(std::string_view text) noexcept
{
    return AsciiDetail::Trim(text);
}
inline std::u16string_view Trimmed(std::u16string_view text) noexcept
{
    return AsciiDetail::Trim(text);
}
inline std::wstring_view Trimmed(std::wstring_view text) noexcept
{
    return AsciiDetail::Trim(text);
}
