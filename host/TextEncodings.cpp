#include "host/TextEncodings.h"

#include <algorithm>

namespace
{
WideText ReadUnits(std::string_view bytes, ByteOrder16 order)
{
    WideText text;
    text.reserve(bytes.size() / 2);
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
    {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        text.push_back(
            static_cast<WCHAR>(order == ByteOrder16::LittleEndian ? first | second << 8 : first << 8 | second));
    }
    return text;
}

size_t LatinUnits(const WideText &text)
{
    size_t count = 0;
    for (const WCHAR unit : text)
    {
        count += unit != 0 && unit < 0x0180;
    }
    return count;
}
} // namespace

std::optional<WideText> TextFromUtf8(std::string_view bytes)
{
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF")
    {
        bytes.remove_prefix(3);
    }
    return IsUtf8(bytes) ? std::optional(FromUtf8(bytes)) : std::nullopt;
}

WideText TextFromUtf8OrLatin(std::string_view bytes)
{
    if (auto text = TextFromUtf8(bytes))
    {
        return *std::move(text);
    }
    return TextFromCharset(Charset::Windows1252, bytes, Faults::Replace).value_or(WideText());
}

WideText TextFromUtf16(std::string_view bytes, ByteOrder16 order)
{
    if (bytes.substr(0, 2) == "\xFF\xFE" || bytes.substr(0, 2) == "\xFE\xFF")
    {
        order = bytes[0] == '\xFF' ? ByteOrder16::LittleEndian : ByteOrder16::BigEndian;
        bytes.remove_prefix(2);
    }
    return ReadUnits(bytes, order);
}

WideText TextFromUtf16Guessing(std::string_view bytes, ByteOrder16 expected)
{
    const auto other = expected == ByteOrder16::LittleEndian ? ByteOrder16::BigEndian : ByteOrder16::LittleEndian;
    WideText asExpected = TextFromUtf16(bytes, expected);
    WideText asOther = TextFromUtf16(bytes, other);
    return LatinUnits(asOther) > LatinUnits(asExpected) ? asOther : asExpected;
}

WideText TextFromJis(std::string_view bytes)
{
    const bool sevenBit =
        std::none_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
    if (sevenBit)
    {
        const bool escaped = bytes.find('\x1B') != bytes.npos;
        const std::string framed = escaped ? std::string(bytes) : "\x1B$B" + std::string(bytes) + "\x1B(B";
        if (auto text = TextFromCharset(Charset::Iso2022Jp, framed, Faults::Refuse))
        {
            return *std::move(text);
        }
    }
    if (auto text = TextFromCharset(Charset::ShiftJis, bytes, Faults::Refuse))
    {
        return *std::move(text);
    }
    return TextFromCharset(Charset::EucJp, bytes, Faults::Replace).value_or(WideText());
}

WideText WithoutPadding(WideText text)
{
    text.resize(std::min(text.find(WCHAR(0)), text.size()));
    const auto last = text.find_last_not_of(TEXT(" \t\r\n"));
    text.resize(last == text.npos ? 0 : last + 1);
    return text;
}
