#include "core/ErrorText.h"

#include "com/BstrOwner.h"
#include "com/ComPtr.h"
#include "core/FormatText.h"
#include "com/HandleOwner.h"
#include "core/StringTable.h"
#include "core/TextPieces.h"
#include "resources/resource.h"

#include <oleauto.h>

#include <utility>

namespace
{
WideText CodeSentence(HRESULT code)
{
    BstrOwner format;
    LoadStringResource(IDS_ERROR_CODE, format);
    const WCHAR *const fallback = TEXT("The error code was 0x%08lx.");
    return FormatText(format.IsEmpty() ? fallback : format.Text(), static_cast<UINT32>(code));
}

LocalTextOwner SystemMessage(HRESULT code)
{
    LocalTextOwner message;
    // Language 1024: the user's default.
    FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                   nullptr, static_cast<DWORD>(code), MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT),
                   reinterpret_cast<LPWSTR>(message.Put()), 0, nullptr);
    return message;
}
} // namespace

WideText WithMessage(WideText sentence, WideView message)
{
    sentence += TEXT(' ');
    sentence += StripWhiteSpace(message);
    WideText text(StripWhiteSpace(sentence));
    if (!text.empty() && text.back() != TEXT('.'))
    {
        text += TEXT('.');
    }
    return text;
}

WideText FormatErrorText(HRESULT code)
{
    WideText text = CodeSentence(code);
    if (code == S_OK || code == S_FALSE)
    {
        return text;
    }
    const LocalTextOwner message = SystemMessage(code);
    return message ? WithMessage(std::move(text), message.Get()) : text;
}

void SetErrorInfoText(const WCHAR *text)
{
    ComPtr<ICreateErrorInfo> creation;
    if (FAILED(CreateErrorInfo(creation.Put())) || !creation)
    {
        return;
    }
    creation->SetGUID(GUID{});
    TaskTextOwner source;
    if (SUCCEEDED(ProgIDFromCLSID(CLSID{}, source.Put())) && source)
    {
        creation->SetSource(source.Get());
    }
    BstrOwner description{WideView(text)};
    creation->SetDescription(description.Get());
    if (const auto error = creation.As<IErrorInfo>())
    {
        SetErrorInfo(0, error.Get());
    }
}
