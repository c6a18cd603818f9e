#include "host/TextEncodings.h"

#include <windows.h>

namespace
{
constexpr UINT NoCodePage = 0; // that of ISO-2022-JP checks nothing, and isn't there everywhere

// In the order of Charset.
constexpr UINT CodePages[] = {1252, NoCodePage, 932, 20932};

// The rows of JIS X 0208 behind an escape are those of EUC-JP without the eighth bit.
std::optional<std::string> EucFromIso2022(std::string_view bytes)
{
    std::string euc;
    bool inRows = false;
    while (!bytes.empty())
    {
        if (bytes.front() == '\x1B')
        {
            const std::string_view escape = bytes.substr(0, 3);
            inRows = escape == "\x1B$B" || escape == "\x1B$@";
            if (!inRows && escape != "\x1B(B" && escape != "\x1B(J")
            {
                return std::nullopt;
            }
            bytes.remove_prefix(escape.size());
            continue;
        }
        euc += static_cast<char>(inRows ? bytes.front() | 0x80 : bytes.front());
        bytes.remove_prefix(1);
    }
    return euc;
}
} // namespace

std::optional<WideText> TextFromCharset(Charset charset, std::string_view bytes, Faults faults)
{
    if (charset == Charset::Iso2022Jp)
    {
        const auto euc = EucFromIso2022(bytes);
        return euc ? TextFromCharset(Charset::EucJp, *euc, faults) : std::nullopt;
    }
    if (bytes.empty())
    {
        return WideText();
    }
    const UINT page = CodePages[static_cast<size_t>(charset)];
    const DWORD flags = faults == Faults::Refuse ? MB_ERR_INVALID_CHARS : 0;
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
