// ICU's headers come first: the Windows headers make them take the system for Windows.
#include <unicode/ucnv.h>

#include "host/TextEncodings.h"

#include <memory>

namespace
{
struct CloseConverter
{
    void operator()(UConverter *converter) const noexcept { ucnv_close(converter); }
};

// In the order of Charset.
constexpr const char *Names[] = {"windows-1252", "ISO-2022-JP", "Shift_JIS", "EUC-JP"};
} // namespace

std::optional<WideText> TextFromCharset(Charset charset, std::string_view bytes, Faults faults)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<UConverter, CloseConverter> converter(ucnv_open(Names[static_cast<size_t>(charset)], &status));
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
