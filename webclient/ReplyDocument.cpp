#include "webclient/ReplyDocument.h"

#include "com/BstrOwner.h"
#include "com/Hresult.h"
#include "webclient/ErrorBody.h"
#include "webclient/Utf8.h"

#include <objbase.h>

#include <string>

namespace
{
// ERROR_HTTP_INVALID_SERVER_RESPONSE
constexpr HRESULT InvalidServerResponse = static_cast<HRESULT>(0x80072F78);

bool IsSuccess(int status)
{
    return status >= 200 && status <= 299;
}

// Text as the content of an element or a quoted attribute; what XML can't hold becomes a blank.
WideText Escaped(std::string_view text)
{
    WideText result;
    for (const WCHAR c : WideFromUtf8(text))
    {
        switch (c)
        {
        case '&':
            result += TEXT("&amp;");
            break;
        case '<':
            result += TEXT("&lt;");
            break;
        case '>':
            result += TEXT("&gt;");
            break;
        case '"':
            result += TEXT("&quot;");
            break;
        case 0xFFFE:
        case 0xFFFF:
            result += ' ';
            break;
        default:
            result += c < ' ' ? static_cast<WCHAR>(' ') : c;
        }
    }
    return result;
}

bool Load(IXMLDOMDocument2 *document, const WideText &text)
{
    VARIANT_BOOL isLoaded = VARIANT_FALSE;
    const BstrOwner xml(text);
    return ThrowIfFailed(document->loadXML(xml.Get(), &isLoaded)) == S_OK && isLoaded != VARIANT_FALSE;
}

// Servers put a mark or blank lines ahead of the document. The declaration goes too: it names the
// encoding of the bytes, and what is loaded is text already.
std::string_view DocumentText(std::string_view body)
{
    if (body.starts_with("\xEF\xBB\xBF"))
    {
        body.remove_prefix(3);
    }
    body.remove_prefix(std::min(body.find_first_not_of(" \t\r\n"), body.size()));
    if (body.starts_with("<?xml"))
    {
        const size_t end = body.find("?>");
        body.remove_prefix(end == std::string_view::npos ? body.size() : end + 2);
    }
    return body;
}

std::string_view RootName(std::string_view text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n"), text.size()));
    if (!text.starts_with('<'))
    {
        return {};
    }
    return text.substr(1, text.find_first_of(" \t\r\n/>", 1) - 1);
}

// A document type makes a body a page, or an attack; the service's replies have none.
bool LoadServiceDocument(IXMLDOMDocument2 *document, std::string_view body)
{
    const std::string_view text = DocumentText(body);
    return RootName(text) == "rsp" && text.find("<!DOCTYPE") == std::string_view::npos &&
           Load(document, WideFromUtf8(text));
}

std::string ServiceMessage(IXMLDOMDocument2 *document)
{
    ComPtr<IXMLDOMNode> node;
    BstrOwner text;
    const BstrOwner path(TEXT("/rsp/err/@msg"));
    if (document->selectSingleNode(path.Get(), node.Put()) != S_OK || !node || FAILED(node->get_text(text.Put())))
    {
        return {};
    }
    return Utf8FromWide(text.View());
}

std::string Hide(std::string text, const std::vector<std::string_view> &hidden)
{
    for (const std::string_view secret : hidden)
    {
        for (size_t at; !secret.empty() && (at = text.find(secret)) != std::string::npos;)
        {
            text.replace(at, secret.size(), " ");
        }
    }
    return text;
}
} // namespace

ComPtr<IXMLDOMDocument2> CreateReplyDocument()
{
    ComPtr<IXMLDOMDocument2> document;
    ThrowIfFailed(CoCreateInstance(CLSID_DOMDocument60, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IXMLDOMDocument2),
                                   document.PutVoid()));
    document->put_async(VARIANT_FALSE);
    return document;
}

HRESULT ResultOfStatus(int status) noexcept
{
    return static_cast<HRESULT>(0x80190000u | static_cast<unsigned>(status & 0xFFFF));
}

HRESULT LoadReply(IXMLDOMDocument2 *document, const HttpReply &reply, const std::vector<std::string_view> &hidden)
{
    const bool isServiceReply = LoadServiceDocument(document, reply.body);
    if (isServiceReply && IsSuccess(reply.status))
    {
        return S_OK;
    }
    std::string description = isServiceReply ? ServiceMessage(document) : DescribeErrorBody(reply.body);
    if (IsSuccess(reply.status))
    {
        description = "The answer is not in the service's form" + (description.empty() ? "" : ": " + description);
    }
    else if (reply.status >= 300 && reply.status <= 399)
    {
        description = "Redirections are not followed" + (description.empty() ? "" : ": " + description);
    }
    const std::string_view words =
        reply.statusWords.empty() ? StandardStatusWords(reply.status) : std::string_view(reply.statusWords);
    LoadHttpError(document, reply.status, words, Hide(description, hidden));
    return IsSuccess(reply.status) ? InvalidServerResponse : ResultOfStatus(reply.status);
}

void LoadHttpError(IXMLDOMDocument2 *document, int status, std::string_view words, std::string_view description)
{
    WideText xml = TEXT("<HttpError HttpStatus=\"") + WideFromUtf8(std::to_string(status)) + TEXT("\">");
    if (!words.empty())
    {
        xml += TEXT("<Status>") + Escaped(words) + TEXT("</Status>");
    }
    if (!description.empty())
    {
        xml += TEXT("<Description>") + Escaped(description) + TEXT("</Description>");
    }
    if (!Load(document, xml + TEXT("</HttpError>")))
    {
        ThrowHresult(E_UNEXPECTED);
    }
}
