#include "account/ServiceReply.h"

#include "core/ErrorText.h"
#include "core/FormatText.h"
#include "core/StringTable.h"
#include "core/TextPieces.h"
#include "resources/resource.h"

#include <shlwapi.h>

#include <algorithm>

namespace
{
constexpr size_t LongestMessage = 511;

void ReportMissingNode(const WCHAR *expression)
{
    WideText message = FormatText(LoadStringOrPlaceholder(IDS_REPLY_NODE_MISSING).c_str(), expression);
    message.resize(std::min(message.size(), LongestMessage));
    SetErrorInfoText(message.c_str());
}

BstrOwner NodeTextOrEmpty(IXMLDOMDocument2 *document, const WCHAR *expression)
{
    BstrOwner text;
    ReadNodeText(document, expression, text);
    return text;
}

WideText ComposeTransportError(IXMLDOMDocument2 *document, WideView status)
{
    WideText text = FormatText(LoadStringOrPlaceholder(IDS_REPLY_HTTP_STATUS).c_str(), LeadingNumber(status));
    WideView separator = TEXT(": ");
    for (const WCHAR *part : {TEXT("/HttpError/Status"), TEXT("/HttpError/Description")})
    {
        const BstrOwner words = NodeTextOrEmpty(document, part);
        if (!words.IsEmpty())
        {
            text.append(separator).append(words.View());
            separator = TEXT(", ");
        }
    }
    return text;
}

WideText ComposeServiceError(IXMLDOMDocument2 *document, const WCHAR *code)
{
    WideText text = FormatText(LoadStringOrPlaceholder(IDS_REPLY_SERVICE_STATUS).c_str(), code);
    const BstrOwner message = NodeTextOrEmpty(document, TEXT("/rsp/err/@msg"));
    if (!message.IsEmpty())
    {
        WideText words(message.View());
        // The text must stay on one line: an attribute can hold "&#10;".
        std::replace_if(
            words.begin(), words.end(), [](WCHAR c) { return c < ' '; }, WCHAR{' '});
        CapitalizeFirst(words);
        text.append(TEXT(": ")).append(words);
    }
    return text;
}
} // namespace

HRESULT ReadNodeText(IXMLDOMDocument2 *document, const WCHAR *expression, BstrOwner &text) noexcept
{
    if (expression == nullptr || *expression == 0)
    {
        return E_INVALIDARG;
    }
    text.Reset();
    return AtBoundaryAs(E_POINTER, [&] {
        if (document == nullptr)
        {
            return E_POINTER;
        }
        ComPtr<IXMLDOMNode> node;
        const BstrOwner path{WideView(expression)};
        document->selectSingleNode(path.Get(), node.Put()); // a failure gives no node
        if (node && SUCCEEDED(node->get_text(text.Put())))
        {
            return S_OK;
        }
        text.Reset();
        ReportMissingNode(expression);
        return E_FAIL;
    });
}

HRESULT ReadOutcome(IXMLDOMDocument2 *document) noexcept
{
    BstrOwner outcome;
    const HRESULT read = ReadNodeText(document, TEXT("/rsp/@stat"), outcome);
    if (FAILED(read))
    {
        return read;
    }
    return StrCmpIW(outcome.Text(), TEXT("ok")) == 0 ? S_OK : E_FAIL;
}

WideText ComposeReplyError(IUnknown *reply, bool &isServiceError)
{
    isServiceError = false;
    const auto document = QueryFor<IXMLDOMDocument2>(reply);
    if (!document)
    {
        return LoadStringOrPlaceholder(IDS_REPLY_INVALID_ARGUMENT);
    }
    BstrOwner mark;
    if (SUCCEEDED(ReadNodeText(document.Get(), TEXT("/HttpError/@HttpStatus"), mark)))
    {
        return ComposeTransportError(document.Get(), mark.View());
    }
    if (FAILED(ReadNodeText(document.Get(), TEXT("/rsp/err/@code"), mark)))
    {
        return {};
    }
    isServiceError = true;
    return ComposeServiceError(document.Get(), mark.Text());
}
