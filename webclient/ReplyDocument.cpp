#include "webclient/ReplyDocument.h"

#include "com/AsciiText.h"
#include "com/BstrOwner.h"
#include "com/Hresult.h"
#include "com/TextConversion.h"
#include "webclient/ShownText.h"

#include <objbase.h>

#include <algorithm>
#include <iterator>
#include <optional>
#include <string>

namespace
{
// Text as the content of an element or a quoted attribute; characters that XML can't hold become blanks.
WideText Escaped(std::string_view text)
{
    static constexpr std::pair<WCHAR, const WCHAR *> Entities[] = {
        {'&', TEXT("&amp;")}, {'<', TEXT("&lt;")}, {'>', TEXT("&gt;")}, {'"', TEXT("&quot;")}};
    WideText result;
    for (const WCHAR c : FromUtf8(text))
    {
        const auto *const entity = std::ranges::find(Entities, c, &std::pair<WCHAR, const WCHAR *>::first);
        const WCHAR shown = c < ' ' || c >= 0xFFFE ? static_cast<WCHAR>(' ') : c;
        result += entity != std::end(Entities) ? WideText(entity->second) : WideText(1, shown);
    }
    return result;
}

WideText Element(const WideText &name, std::string_view text)
{
    return text.empty() ? WideText()
                        : TEXT("<") + name + TEXT(">") + Escaped(text) + TEXT("</") + name + TEXT(">");
}

WideText Attribute(const WCHAR *name, const std::optional<std::string> &value)
{
    return value ? TEXT(" ") + WideText(name) + TEXT("=\"") + Escaped(*value) + TEXT("\"") : WideText();
}

bool Load(IXMLDOMDocument2 *document, const WideText &text)
{
    VARIANT_BOOL isLoaded = VARIANT_FALSE;
    const BstrOwner xml(text);
    return ThrowIfFailed(document->loadXML(xml.Get(), &isLoaded)) == S_OK && isLoaded != VARIANT_FALSE;
}

// Cuts off what servers put ahead of the document, a byte order mark or blank lines, and the declaration: it
// names the encoding of the bytes, and the document is loaded from decoded text.
std::string_view DocumentText(std::string_view body)
{
    if (body.starts_with("\xEF\xBB\xBF"))
    {
        body.remove_prefix(3);
    }
    body = Trimmed(body);
    if (body.starts_with("<?xml"))
    {
        const size_t end = body.find("?>");
        body.remove_prefix(end == std::string_view::npos ? body.size() : end + 2);
    }
    return body;
}

// The first name behind comments: "!DOCTYPE" where there is a document type.
std::string_view RootName(std::string_view text)
{
    text = Trimmed(text);
    while (text.starts_with("<!--"))
    {
        const size_t end = text.find("-->", 4);
        text = Trimmed(text.substr(end == text.npos ? text.size() : end + 3));
    }
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
    return RootName(text) == "rsp" && Load(document, FromUtf8(text));
}

std::optional<std::string> NodeText(IXMLDOMDocument2 *document, const WCHAR *expression)
{
    ComPtr<IXMLDOMNode> node;
    BstrOwner text;
    const BstrOwner path{WideView(expression)};
    if (document->selectSingleNode(path.Get(), node.Put()) != S_OK || !node || FAILED(node->get_text(text.Put())))
    {
        return std::nullopt;
    }
    return ToUtf8(text.View());
}

// The service's message is shown as it stands in the document. Where it can't be, the document is replaced by
// one with the same outcome and code and a message of one line without secrets.
void MakeMessageFitToShow(IXMLDOMDocument2 *document, const SecretViews &secrets)
{
    constexpr size_t longestMessage = 1000;
    const std::string message = NodeText(document, TEXT("/rsp/err/@msg")).value_or("");
    const std::string shown = ShownLine(message, secrets, longestMessage);
    if (shown == message)
    {
        return;
    }
    const auto outcome = NodeText(document, TEXT("/rsp/@stat"));
    const auto code = NodeText(document, TEXT("/rsp/err/@code"));
    Load(document, TEXT("<rsp") + Attribute(TEXT("stat"), outcome) + TEXT("><err") +
                       Attribute(TEXT("code"), code) + Attribute(TEXT("msg"), shown) + TEXT("/></rsp>"));
}

// A gateway gives these in place of a service that may still be at work, or may have done it.
bool IsFromGateway(int status)
{
    return status == 500 || status == 502 || status == 504;
}

std::string Joined(std::string_view start, const std::string &end)
{
    return std::string(start) + (start.empty() || end.empty() ? "" : ": ") + end;
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

HRESULT LoadReply(IXMLDOMDocument2 *document, const HttpReply &reply, std::string_view what,
                  const SecretViews &secrets)
{
    const bool isServiceReply = LoadServiceDocument(document, reply.body);
    if (isServiceReply && IsSuccess(reply.status))
    {
        MakeMessageFitToShow(document, secrets);
        return S_OK;
    }
    const std::string description =
        isServiceReply ? ShownLine(NodeText(document, TEXT("/rsp/err/@msg")).value_or(""), secrets)
                       : DescribeErrorBody(reply.body, secrets);
    const std::string unknown = std::string(what) + " may or may not have arrived";
    std::string reason;
    if (IsSuccess(reply.status))
    {
        reason = "The answer is not in the service's form, and the " + unknown;
    }
    else if (reply.status >= 300 && reply.status <= 399)
    {
        reason = "Redirections are not followed";
    }
    else if (reply.status == 429 && reply.retryAfter != 0)
    {
        // The host looks for these words, and waits.
        reason = "The service asks to wait " + std::to_string(reply.retryAfter) + " seconds";
    }
    else if (IsFromGateway(reply.status) && !isServiceReply && reply.isAllSent)
    {
        reason = "The " + unknown;
    }
    const std::string words = reply.statusWords.empty() ? std::string(StandardStatusWords(reply.status))
                                                        : ShownLine(reply.statusWords, secrets);
    LoadHttpError(document, reply.status, words, Joined(reason, description));
    return IsSuccess(reply.status) ? InvalidServerResponse : ResultOfStatus(reply.status);
}

void LoadHttpError(IXMLDOMDocument2 *document, int status, std::string_view words, std::string_view description)
{
    const WideText xml = TEXT("<HttpError") + Attribute(TEXT("HttpStatus"), std::to_string(status)) + TEXT(">") +
                         Element(TEXT("Status"), words) + Element(TEXT("Description"), description) +
                         TEXT("</HttpError>");
    if (!Load(document, xml))
    {
        ThrowHresult(E_UNEXPECTED);
    }
}
