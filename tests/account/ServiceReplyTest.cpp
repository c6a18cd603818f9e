#include "account/ServiceReply.h"

#include "com/ComObject.h"
#include "tests/doubles/MemoryStream.h"
#include "tests/doubles/ReplyDocuments.h"

#include <oleauto.h>

#include <gtest/gtest.h>

namespace
{
WideText ErrorDescription()
{
    ComPtr<IErrorInfo> error;
    BstrOwner description;
    if (GetErrorInfo(0, error.Put()) == S_OK)
    {
        error->GetDescription(description.Put());
    }
    return WideText(description.View());
}
} // namespace

TEST(ServiceReply, ReadsOneTextByItsPath)
{
    const auto document = MakeDocument(
        TEXT("<rsp stat='ok'><user ispro='1' note=''><name>J\x00fcrgen \xd83d\xde00</name></user></rsp>"));
    const struct
    {
        const WCHAR *path;
        WideText text;
    } cases[] = {{TEXT("/rsp/@stat"), TEXT("ok")},
                 {TEXT("/rsp/user/@ispro"), TEXT("1")},
                 {TEXT("/rsp/user/@note"), TEXT("")},
                 {TEXT("/rsp/user/name"), TEXT("J\x00fcrgen \xd83d\xde00")}};
    for (const auto &[path, text] : cases)
    {
        BstrOwner value(TEXT("before"));
        EXPECT_EQ(ReadNodeText(document.Get(), path, value), S_OK);
        EXPECT_EQ(value.View(), text);
    }
}

TEST(ServiceReply, AFailedReadLeavesNoTextAndTellsWhatItMissed)
{
    const auto document = MakeDocument(TEXT("<rsp/>"));
    for (const WCHAR *path : {TEXT("/rsp/@stat"), TEXT("/other"), TEXT("/rsp/[")})
    {
        SetErrorInfo(0, nullptr);
        BstrOwner value(TEXT("before"));
        EXPECT_EQ(ReadNodeText(document.Get(), path, value), E_FAIL);
        EXPECT_EQ(value.Get(), nullptr);
        EXPECT_EQ(ErrorDescription(), TEXT("Unexpected data format. The node \"") + WideText(path) +
                                          TEXT("\" was not found in XML document."));
    }

    BstrOwner value(TEXT("before"));
    EXPECT_EQ(ReadNodeText(nullptr, TEXT("/rsp"), value), E_POINTER);
    EXPECT_EQ(value.Get(), nullptr);

    value = BstrOwner(TEXT("before"));
    EXPECT_EQ(ReadNodeText(document.Get(), TEXT(""), value), E_INVALIDARG);
    EXPECT_EQ(ReadNodeText(document.Get(), nullptr, value), E_INVALIDARG);
    EXPECT_EQ(value.View(), TEXT("before"));
}

TEST(ServiceReply, TheMessageOfAMissIsCutToItsBuffer)
{
    const auto document = MakeDocument(TEXT("<rsp/>"));
    const WideText path = TEXT("/rsp/") + WideText(600, 'x');
    BstrOwner value;
    EXPECT_EQ(ReadNodeText(document.Get(), path.c_str(), value), E_FAIL);
    const WideText message = ErrorDescription();
    EXPECT_EQ(message.size(), 511u);
    EXPECT_TRUE(message.ends_with(TEXT("xxx")));
}

TEST(ServiceReply, OnlyOkIsSuccessInWhateverCase)
{
    EXPECT_EQ(ReadOutcome(MakeDocument(TEXT("<rsp stat='ok'/>")).Get()), S_OK);
    EXPECT_EQ(ReadOutcome(MakeDocument(TEXT("<rsp stat='OK'/>")).Get()), S_OK);
    for (const WCHAR *xml : {TEXT("<rsp stat='fail'/>"), TEXT("<rsp stat=''/>"), TEXT("<rsp stat='ok '/>"),
                             TEXT("<rsp stat='okay'/>"), TEXT("<rsp/>"), TEXT("<html/>")})
    {
        EXPECT_EQ(ReadOutcome(MakeDocument(xml).Get()), E_FAIL) << testing::PrintToString(WideText(xml));
    }
    EXPECT_EQ(ReadOutcome(nullptr), E_POINTER);
}

TEST(ServiceReply, AFailureIsToldInOneLine)
{
    const struct
    {
        const WCHAR *xml;
        WideText line;
        bool isServiceError;
    } cases[] = {
        {TEXT("<rsp stat='fail'><err code='5' msg='filetype was not recognised'/></rsp>"),
         TEXT("Flickr Status = 5: Filetype was not recognised"), true},
        {TEXT("<rsp stat='fail'><err code='9'/></rsp>"), TEXT("Flickr Status = 9"), true},
        {TEXT("<rsp stat='fail'><err code='9' msg=''/></rsp>"), TEXT("Flickr Status = 9"), true},
        {TEXT("<rsp stat='fail'><err code='x9' msg='\x00e9"
              "chec'/></rsp>"),
         TEXT("Flickr Status = x9: \x00c9"
              "chec"),
         true},
        {TEXT("<rsp stat='fail'><err code='8' msg='100 MB&#10;at most'/></rsp>"),
         TEXT("Flickr Status = 8: 100 MB at most"), true},
        {TEXT("<rsp stat='fail'><err msg='no code'/></rsp>"), TEXT(""), false},
        {TEXT("<rsp stat='fail'/>"), TEXT(""), false},
        {TEXT("<HttpError HttpStatus='504'><Status>Gateway Timeout</Status><Description>Try "
              "later</Description></HttpError>"),
         TEXT("HTTP Status = 504: Gateway Timeout, Try later"), false},
        {TEXT("<HttpError HttpStatus='504'><Status>Gateway Timeout</Status></HttpError>"),
         TEXT("HTTP Status = 504: Gateway Timeout"), false},
        {TEXT("<HttpError HttpStatus='504'><Status/><Description>Try later</Description></HttpError>"),
         TEXT("HTTP Status = 504: Try later"), false},
        {TEXT("<HttpError HttpStatus='504'/>"), TEXT("HTTP Status = 504"), false},
        {TEXT("<HttpError HttpStatus='99999999999999999999'/>"), TEXT("HTTP Status = 2147483647"), false},
    };
    for (const auto &[xml, line, isServiceError] : cases)
    {
        bool flag = !isServiceError;
        EXPECT_EQ(ComposeReplyError(MakeDocument(xml).Get(), flag), line);
        EXPECT_EQ(flag, isServiceError);
    }
}

TEST(ServiceReply, WhatIsNoDocumentIsToldAsSuch)
{
    bool flag = true;
    EXPECT_EQ(ComposeReplyError(nullptr, flag), TEXT("(internal: invalid argument)"));
    EXPECT_FALSE(flag);
    flag = true;
    EXPECT_EQ(ComposeReplyError(MemoryStream::Make().Get(), flag), TEXT("(internal: invalid argument)"));
    EXPECT_FALSE(flag);
}
