// Texts: the string table, formatting, splitting, and the messages for bare error codes.
#include "com/BstrOwner.h"
#include "com/ComPtr.h"
#include "core/ErrorText.h"
#include "core/FormatText.h"
#include "core/StringTable.h"
#include "core/TextPieces.h"
#include "resources/resource.h"
#include "tests/doubles/CallRecord.h"

#include <gmock/gmock.h>

#include <oleauto.h>

using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

TEST(StringTable, GivesATextAndTellsAnAbsentOne)
{
    BstrOwner text;
    EXPECT_TRUE(LoadStringResource(IDS_DISPLAY_NAME, text));
    EXPECT_EQ(Narrow(text.View()), "Publish to Flickr");
    EXPECT_FALSE(LoadStringResource(101, text)) << "in a block that is there";
    EXPECT_FALSE(LoadStringResource(65000, text));
    EXPECT_EQ(text.Get(), nullptr);
    EXPECT_EQ(Narrow(LoadStringOrPlaceholder(65000)), "?");
    EXPECT_EQ(Narrow(LoadStringOrPlaceholder(IDS_LIST_SEPARATOR)), ", ");
}

TEST(FormatText, HasWindowsMeaningsAtAnyLength)
{
    const BstrOwner wide(TEXT("h\u00E9"));
    EXPECT_EQ(Narrow(FormatText(TEXT("%ls|%d|%I64d|0x%08lx|%I64u"), wide.Text(), -3, INT64{-5000000000},
                                static_cast<UINT32>(E_FAIL), UINT64{18446744073709551615u})),
              "h\xC3\xA9|-3|-5000000000|0x80004005|18446744073709551615");
    EXPECT_TRUE(FormatText(TEXT("")).empty());
    for (const size_t length : {255u, 256u, 1023u, 1024u, 70000u})
    {
        const WideText text(length, TEXT('x'));
        EXPECT_EQ(FormatText(TEXT("%ls"), text.c_str()), text) << length;
    }
}

TEST(FormatText, APlaceholderFormatIgnoresItsArguments)
{
    EXPECT_EQ(Narrow(FormatText(TEXT("?"), TEXT("unused"), 1)), "?");
}

TEST(TextPieces, SplitsAndStrips)
{
    EXPECT_THAT(SplitText(TEXT(";a;; b ;c;"), TEXT(';')),
                ElementsAre(WideView(TEXT("a")), WideView(TEXT(" b ")), WideView(TEXT("c"))));
    EXPECT_TRUE(SplitText(TEXT(";;;"), TEXT(';')).empty());
    EXPECT_EQ(StripWhiteSpace(TEXT(" \t\r\n a b\u2003\n")), WideView(TEXT("a b")));
    const WideText white =
        TEXT("\t\n\v\f\r \u0085\u00A0\u1680\u2000\u2001\u2009\u200A\u2028\u2029\u202F\u205F\u3000");
    const WideText notWhite =
        TEXT("\b\u000E\u001F!\u0084\u0086\u009F\u00A1\u167F\u1681\u1FFF\u200B\u2027\u202A\u202E\u2030")
            TEXT("\u205E\u2060\u2FFF\u3001");
    EXPECT_EQ(StripWhiteSpace(white), WideView());
    for (const WCHAR unit : notWhite)
    {
        EXPECT_FALSE(IsWhiteSpace(unit)) << static_cast<int>(unit);
    }
    const std::pair<const WCHAR *, int> numbers[] = {{TEXT("3;2;0"), 3},
                                                     {TEXT("9081/"), 9081},
                                                     {TEXT("7:"), 7},
                                                     {TEXT("x9"), 0},
                                                     {TEXT(""), 0},
                                                     {TEXT("2147483646"), 2147483646},
                                                     {TEXT("99999999999999999999"), 2147483647}};
    for (const auto &[text, number] : numbers)
    {
        EXPECT_EQ(LeadingNumber(text), number);
    }
    EXPECT_TRUE(EqualsIgnoringCase(TEXT("JFIF"), TEXT("jfif")));
    EXPECT_FALSE(EqualsIgnoringCase(TEXT("jpg"), TEXT("jpgx")));
    EXPECT_FALSE(EqualsIgnoringCase(TEXT("[@"), TEXT("{`")));
}

TEST(ErrorText, PutsTheSystemsWordsBehindTheCode)
{
    EXPECT_EQ(Narrow(FormatErrorText(S_OK)), "The error code was 0x00000000.");
    EXPECT_EQ(Narrow(FormatErrorText(S_FALSE)), "The error code was 0x00000001.");
    // A code without a message.
    EXPECT_EQ(Narrow(FormatErrorText(static_cast<HRESULT>(0xA1234567))), "The error code was 0xa1234567.");

    for (const HRESULT code : {E_ACCESSDENIED, E_OUTOFMEMORY, HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)})
    {
        const std::string text = Narrow(FormatErrorText(code));
        EXPECT_THAT(text, StartsWith("The error code was 0x8"));
        EXPECT_GT(text.size(), sizeof("The error code was 0x80070005. ")) << text;
        EXPECT_THAT(text, testing::Not(EndsWith(".."))) << text;
    }
    for (const WCHAR *message : {TEXT("Not found"), TEXT(" Not found.\r\n"), TEXT("\tNot found\n")})
    {
        EXPECT_EQ(Narrow(WithMessage(TEXT("Error."), message)), "Error. Not found.");
    }
    EXPECT_EQ(Narrow(WithMessage(TEXT("Error."), TEXT(" "))), "Error.");
}

TEST(ErrorText, ReachesTheThreadsErrorObject)
{
    SetErrorInfoText(TEXT("A node was missing."));
    ComPtr<IErrorInfo> error;
    ASSERT_EQ(GetErrorInfo(0, error.Put()), S_OK);
    BstrOwner description;
    EXPECT_EQ(error->GetDescription(description.Put()), S_OK);
    EXPECT_EQ(Narrow(description.View()), "A node was missing.");
    GUID source = IID_IUnknown;
    EXPECT_EQ(error->GetGUID(&source), S_OK);
    EXPECT_TRUE(source == GUID{});
}
