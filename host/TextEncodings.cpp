// ICU's headers come first: the Windows headers make them take the system for Windows.
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include "host/TextEncodings.h"

#include <algorithm>
#include <memory>

namespace
{
constexpr UChar32 REPLACEMENT = 0xFFFD;

struct CloseConverter
{
    void operator()(UConverter *converter) const noexcept { ucnv_close(converter); }
};

// What can't be converted stops the conversion if strict, and becomes U+FFFD otherwise.
std::optional<WideText> Convert(const char *charset, std::string_view bytes, bool strict)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UConverter, CloseConverter> converter(ucnv_open(charset, &status));
    if (U_FAILURE(status))
    {
        return std::nullopt;
    }
    if (strict)
    {
        ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    }
    WideText text(bytes.size() * 2 + 16, 0);
    const int32_t length = ucnv_toUChars(converter.get(), text.data(), static_cast<int32_t>(text.size()),
                                         bytes.data(), static_cast<int32_t>(bytes.size()), &status);
    if (U_FAILURE(status))
    {
        return std::nullopt;
    }
    text.resize(static_cast<size_t>(length));
    return text;
}

WideText ReadUnits(std::string_view bytes, ByteOrder16 order)
{
    WideText text;
    text.reserve(bytes.size() / 2);
    for (size_t i = 0; i + 1 < bytes.size(); i += 2)
    {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        text.push_back(static_cast<WCHAR>(order == ByteOrder16::LittleEndian ? first | second << 8
                                                                             : first << 8 | second));
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
    WideText text(bytes.size(), 0);
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8(text.data(), static_cast<int32_t>(text.size()), &length, bytes.data(),
                  static_cast<int32_t>(bytes.size()), &status);
    if (U_FAILURE(status))
    {
        return std::nullopt;
    }
    text.resize(static_cast<size_t>(length));
    return text;
}

WideText TextFromUtf8OrLatin(std::string_view bytes)
{
    if (auto text = TextFromUtf8(bytes))
    {
        return *std::move(text);
    }
    return Convert("windows-1252", bytes, false).value_or(WideText());
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
        if (auto text = Convert("ISO-2022-JP", framed, true))
        {
            return *std::move(text);
        }
    }
    if (auto text = Convert("Shift_JIS", bytes, true))
    {
        return *std::move(text);
    }
    return Convert("EUC-JP", bytes, false).value_or(WideText());
}

std::string Utf8FromText(WideView text)
{
    std::string bytes(text.size() * 3, '\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(bytes.data(), static_cast<int32_t>(bytes.size()), &length, text.data(),
                       static_cast<int32_t>(text.size()), REPLACEMENT, nullptr, &status);
    bytes.resize(U_SUCCESS(status) ? static_cast<size_t>(length) : 0);
    return bytes;
}

WideText WithoutPadding(WideText text)
{
    text.resize(std::min(text.find(WCHAR(0)), text.size()));
    const auto last = text.find_last_not_of(TEXT(" \t\r\n"));
    text.resize(last == text.npos ? 0 : last + 1);
    return text;
}
