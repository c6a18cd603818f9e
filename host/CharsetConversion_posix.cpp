// ICU's headers come first: the Windows headers make them take the system for Windows.
#include <unicode/ucnv.h>
#include <unicode/ustring.h>

#include "host/CharsetConversion.h"

#include "host/TextEncodings.h"

#include <memory>

namespace
{
constexpr UChar32 Replacement = 0xFFFD;

struct CloseConverter
{
    void operator()(UConverter *converter) const noexcept { ucnv_close(converter); }
};

const char *NameOf(Charset charset)
{
    switch (charset)
    {
    case Charset::Windows1252:
        return "windows-1252";
    case Charset::Iso2022Jp:
        return "ISO-2022-JP";
    case Charset::ShiftJis:
        return "Shift_JIS";
    case Charset::EucJp:
        return "EUC-JP";
    default:
        return "UTF-8";
    }
}

std::optional<WideText> FromUtf8(std::string_view bytes, Faults faults)
{
    WideText text(bytes.size(), 0);
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(text.data(), static_cast<int32_t>(text.size()), &length, bytes.data(),
                         static_cast<int32_t>(bytes.size()), faults == Faults::Replace ? Replacement : U_SENTINEL,
                         nullptr, &status);
    if (U_FAILURE(status))
    {
        return std::nullopt;
    }
    text.resize(static_cast<size_t>(length));
    return text;
}
} // namespace

std::optional<WideText> TextFromCharset(Charset charset, std::string_view bytes, Faults faults)
{
    // Directly, without the cost of a converter.
    if (charset == Charset::Utf8)
    {
        return FromUtf8(bytes, faults);
    }
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UConverter, CloseConverter> converter(ucnv_open(NameOf(charset), &status));
    if (U_FAILURE(status))
    {
        return std::nullopt;
    }
    if (faults == Faults::Refuse)
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

std::string Utf8FromText(WideView text)
{
    std::string bytes(text.size() * 3, '\0');
    int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strToUTF8WithSub(bytes.data(), static_cast<int32_t>(bytes.size()), &length, text.data(),
                       static_cast<int32_t>(text.size()), Replacement, nullptr, &status);
    bytes.resize(U_SUCCESS(status) ? static_cast<size_t>(length) : 0);
    return bytes;
}
