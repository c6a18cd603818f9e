#include "fuzz/FuzzTarget.h"

#include "com/Hresult.h"
#include "taskdialog/TaskDialogDocument.h"
#include "webclient/ReplyDocument.h"
#include "webclient/RequestUrl.h"

namespace
{
std::vector<std::string> UrlSamples()
{
    return {"https://api.flickr.com/services/rest/?method=a&x=%C3%A4+b#part", "http://[::1]:8080/a/../b?c",
            "HTTPS://Example.COM:443", "http://127.0.0.1:65535/?=&&a=b=c"};
}

void ReadUrl(std::string_view bytes)
{
    try
    {
        RequestUrl url = RequestUrl::Parse(bytes);
        const std::string text = url.Text();
        if (RequestUrl::Parse(text).Text() != text)
        {
            Broken("an address that was read means the same when it is read again");
        }
        url.BaseStringUri();
        if (EncodeForm(ParseForm(EncodeForm(ParseForm(url.query)))) != EncodeForm(ParseForm(url.query)))
        {
            Broken("names and values survive their encoding");
        }
    }
    catch (const HresultError &)
    {
    }
}

std::vector<std::string> ReplySamples()
{
    return {"<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<rsp stat=\"ok\"><photoid>12-3</photoid></rsp>",
            "<rsp stat=\"fail\"><err code=\"5\" msg=\"Filetype &amp; more\"/></rsp>",
            "<html><head><title>504 Gateway &lt;Time-out</title></head><body>x</body></html>",
            "oauth_problem=signature_invalid&debug_sbs=GET%26http",
            "<rsp stat=\"ok\"><![CDATA[x]]><!-- y --></rsp>"};
}

void ReadReply(std::string_view bytes)
{
    const auto document = CreateReplyDocument();
    for (const int status : {200, 401, 503})
    {
        LoadReply(document.Get(), {status, "Words", std::string(bytes)}, "picture", {"hidden-text"});
    }
}

std::vector<std::string> DialogSamples()
{
    return {"<?xml version=\"1.0\" encoding=\"utf-8\"?><taskdialog version=\"1\"><title>T</title>"
            "<instruction>I</instruction><content>C</content><buttons><button id=\"1\">A&amp;b</button></buttons>"
            "</taskdialog>"};
}

void ReadDialog(std::string_view bytes)
{
    TaskDialogDocument document;
    document.LoadDocument({reinterpret_cast<const BYTE *>(bytes.data()), bytes.size()});
}
} // namespace

const FuzzTarget Addresses{"address", UrlSamples, ReadUrl};
const FuzzTarget Replies{"reply", ReplySamples, ReadReply};
const FuzzTarget TaskDialogs{"taskdialog", DialogSamples, ReadDialog};
