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
    const WideText longPath = TEXT("/rsp/") + WideText(600, 'x');
    for (const WideText &path : {WideText(TEXT("/rsp/@stat")), WideText(TEXT("/rsp/[")), longPath})
    {
        SetErrorInfo(0, nullptr);
        BstrOwner value(TEXT("before"));
        EXPECT_EQ(ReadNodeText(document.Get(), path.c_str(), value), E_FAIL);
        EXPECT_EQ(value.Get(), nullptr);
        // As much as goes into its buffer.
        EXPECT_EQ(ErrorDescription(),
                  (TEXT("Unexpected data format. The node \"") + path + TEXT("\" was not found in XML document."))
                      .substr(0, 511));
    }

    BstrOwner value(TEXT("before"));
    EXPECT_EQ(ReadNodeText(document.Get(), TEXT(""), value), E_INVALIDARG);
    EXPECT_EQ(ReadNodeText(document.Get(), nullptr, value), E_INVALIDARG);
    EXPECT_EQ(value.View(), TEXT("before"));
    EXPECT_EQ(ReadNodeText(nullptr, TEXT("/rsp"), value), E_POINTER);
    EXPECT_EQ(value.Get(), nullptr);
}

TEST(ServiceReply, OnlyOkIsSuccessInWhateverCase)
{
    const std::pair<const WCHAR *, HRESULT> cases[] = {
        {TEXT("<rsp stat='ok'/>"), S_OK},
        {TEXT("<rsp stat='OK'/>"), S_OK},
        {TEXT("<rsp stat='fail'/>"), E_FAIL},
        {TEXT("<rsp stat=''/>"), E_FAIL},
        {TEXT("<rsp stat='ok '/>"), E_FAIL},
        {TEXT("<rsp stat='okay'/>"), E_FAIL},
        {TEXT("<rsp/>"), E_FAIL},
        {TEXT("<html/>"), E_FAIL},
    };
    for (const auto &[xml, outcome] : cases)
    {
        EXPECT_EQ(ReadOutcome(MakeDocument(xml).Get()), outcome) << testing::PrintToString(WideText(xml));
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
    for (const auto &reply : {ComPtr<IUnknown>(), ComPtr<IUnknown>(MemoryStream::Make())})
    {
        bool flag = true;
        EXPECT_EQ(ComposeReplyError(reply.Get(), flag), TEXT("(internal: invalid argument)"));
        EXPECT_FALSE(flag);
    }
}
