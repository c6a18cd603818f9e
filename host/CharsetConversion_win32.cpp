#include "host/CharsetConversion.h"

#include "host/TextEncodings.h"

namespace
{
UINT CodePageOf(Charset charset)
{
    switch (charset)
    {
    case Charset::Windows1252:
        return 1252;
    case Charset::Iso2022Jp:
        return 50220;
    case Charset::ShiftJis:
        return 932;
    case Charset::EucJp:
        return 20932;
    default:
        return CP_UTF8;
    }
}
} // namespace

std::optional<WideText> TextFromCharset(Charset charset, std::string_view bytes, Faults faults)
{
    if (bytes.empty())
    {
        return WideText();
    }
    // The system knows no check for this character set, and takes no flags with it.
    const bool checks = faults == Faults::Refuse && charset != Charset::Iso2022Jp;
    const UINT page = CodePageOf(charset);
    const DWORD flags = checks ? MB_ERR_INVALID_CHARS : 0;
    const int size = static_cast<int>(bytes.size());
    const int length = MultiByteToWideChar(page, flags, bytes.data(), size, nullptr, 0);
    if (length <= 0)
    {
        return std::nullopt;
    }
    WideText text(static_cast<size_t>(length), 0);
    MultiByteToWideChar(page, flags, bytes.data(), size, text.data(), length);
    return text;
}

std::string Utf8FromText(WideView text)
{
    // Without flags a surrogate alone becomes U+FFFD.
    const int size = static_cast<int>(text.size());
    const int length = size == 0 ? 0 : WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<size_t>(length), '\0');
    if (length > 0)
    {
        WideCharToMultiByte(CP_UTF8, 0, text.data(), size, bytes.data(), length, nullptr, nullptr);
    }
    return bytes;
}
