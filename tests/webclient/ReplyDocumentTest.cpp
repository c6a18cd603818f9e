#include "com/BstrOwner.h"
#include "com/Hresult.h"
#include "tests/webclient/ClientUse.h"
#include "webclient/ReplyDocument.h"

#include <gmock/gmock.h>

namespace
{
using testing::HasSubstr;
using testing::Not;

class ReplyDocumentTest : public testing::Test
{
protected:
    HRESULT Load(int status, std::string words, std::string body)
    {
        return LoadReply(document.Get(), {status, std::move(words), std::move(body)}, "picture",
                         {" ", "the", "the-secret"});
    }

    std::string Text(const char *path) { return DocumentText(document.Get(), path); }

    ComPtr<IXMLDOMDocument2> document = CreateReplyDocument();
};

TEST_F(ReplyDocumentTest, ServiceRepliesAreHandedOnAsTheyAre)
{
    const char *bodies[] = {
        "<rsp stat=\"ok\"><photoid>12-3\xC3\xA4</photoid></rsp>",
        "\n\r\n<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<rsp "
        "stat=\"ok\"><photoid>12-3\xC3\xA4</photoid></rsp>\n",
        "\xEF\xBB\xBF<?xml version=\"1.0\"?><rsp stat=\"ok\"><photoid>12-3\xC3\xA4</photoid></rsp>",
        "<!----><!-- <html> --> <!-- --><rsp "
        "stat=\"ok\"><photoid>12-3\xC3\xA4</photoid><![CDATA[<!DOCTYPE]]></rsp>",
    };
    for (const char *body : bodies)
    {
        EXPECT_EQ(Load(200, "OK", body), S_OK) << body;
        EXPECT_EQ(Text("/rsp/photoid"), "12-3\xC3\xA4");
        EXPECT_EQ(Text("/rsp/@stat"), "ok");
    }
    EXPECT_EQ(Load(200, "OK", "<rsp stat=\"fail\"><err code=\"5\" msg=\"no\"/></rsp>"), S_OK);
    EXPECT_EQ(Text("/rsp/err/@code"), "5");
    EXPECT_EQ(Text("/rsp/err/@msg"), "no");
    // But for what can't be shown as it is.
    EXPECT_EQ(Load(200, "OK", "<rsp stat='FAIL'><err code='7' msg='&quot;one&#10;two&quot; the-secret'/></rsp>"),
              S_OK);
    EXPECT_EQ(Text("/rsp/@stat"), "FAIL");
    EXPECT_EQ(Text("/rsp/err/@code"), "7");
    EXPECT_EQ(Text("/rsp/err/@msg"), "\"one two\"");
}

TEST_F(ReplyDocumentTest, OtherStatusesBecomeHttpErrors)
{
    EXPECT_EQ(Load(503, "Service Unavailable", "<html><title>Bad &amp; panda</title></html>"),
              static_cast<HRESULT>(0x801901F7));
    EXPECT_EQ(Text("/HttpError/@HttpStatus"), "503");
    EXPECT_EQ(Text("/HttpError/Status"), "Service Unavailable");
    EXPECT_EQ(Text("/HttpError/Description"), "Bad & panda");

    EXPECT_EQ(Load(401, "", "oauth_problem=token_rejected&x=the-secret"), static_cast<HRESULT>(0x80190191));
    EXPECT_EQ(Text("/HttpError/Status"), "Unauthorized");
    EXPECT_THAT(Text("/HttpError/Description"), HasSubstr("authorize again"));

    EXPECT_TRUE(FAILED(Load(500, "Oops", "<rsp stat=\"fail\"><err code=\"105\" msg=\"Service down\"/></rsp>")));
    EXPECT_EQ(Text("/HttpError/Description"), "Service down");
    EXPECT_EQ(Text("/rsp/err/@code"), "(none)");

    for (const auto &[status, isUnknown] :
         {std::pair(500, true), {501, false}, {502, true}, {503, false}, {504, true}, {505, false}})
    {
        Load(status, "", "words");
        EXPECT_EQ(Text("/HttpError/Description").find("may or may not have arrived") != std::string::npos,
                  isUnknown)
            << status;
    }

    // No part of a secret is left by a cut, and none stands in the status words.
    EXPECT_TRUE(FAILED(Load(400, "Echo the-secret\tof yours", std::string(195, 'x') + "the-secret, sir")));
    EXPECT_EQ(Text("/HttpError/Status"), "Echo of yours");
    EXPECT_EQ(Text("/HttpError/Description"), std::string(195, 'x') + " , si...");
    EXPECT_TRUE(FAILED(Load(400, "Bad", std::string(16'380, ' ') + "the-secret")));
    EXPECT_EQ(Text("/HttpError/Description"), "(none)");

    for (const int status : {300, 399})
    {
        EXPECT_TRUE(FAILED(Load(status, "Found", "<rsp stat=\"ok\"/>")));
        EXPECT_EQ(Text("/HttpError/Description"), "Redirections are not followed");
    }
}

TEST_F(ReplyDocumentTest, SuccessWithoutAServiceDocumentIsAFailure)
{
    const std::string bodies[] = {
        "",
        "ok",
        "<rsp stat=\"ok\">",
        "<html><title>Log in to this WLAN</title></html>",
        "{\"stat\":\"ok\"}",
        "<!DOCTYPE rsp [<!ENTITY a \"b\">]><rsp stat=\"ok\">&a;</rsp>",
        "<!-- --><!DOCTYPE rsp [<!ENTITY a \"b\">]><rsp stat=\"ok\">&a;</rsp>",
        "<?xml version=\"1.0\"?><!DOCTYPE rsp SYSTEM \"file:///etc/passwd\"><rsp stat=\"ok\"/>",
        std::string("\0\x01\xFF", 3)};
    for (const std::string &body : bodies)
    {
        EXPECT_EQ(Load(200, "OK", body), static_cast<HRESULT>(0x80072F78)) << body;
        EXPECT_EQ(Text("/HttpError/@HttpStatus"), "200");
        EXPECT_THAT(Text("/HttpError/Description"), HasSubstr("not in the service's form"));
    }
}

TEST_F(ReplyDocumentTest, WordsOfAnyKindFitIntoTheDocument)
{
    LoadHttpError(document.Get(), 0, "No <b>\"&",
                  "a\x01"
                  "b\xEF\xBF\xBF \xF0\x9F\x98\x80");
    EXPECT_EQ(Text("/HttpError/@HttpStatus"), "0");
    EXPECT_EQ(Text("/HttpError/Status"), "No <b>\"&");
    EXPECT_EQ(Text("/HttpError/Description"), "a b  \xF0\x9F\x98\x80");
    LoadHttpError(document.Get(), 7, "", "");
    EXPECT_EQ(Text("/HttpError/Status"), "(none)");
    EXPECT_EQ(Text("/HttpError"), "");
}
} // namespace
