// Refusals of the native parser. Natively only: Wine 8 accepts document types in the class of MSXML 6, and
// tells no line (Windows does as is expected here); limits of size are the native parser's own.

#include "com/BstrOwner.h"
#include "com/ComPtr.h"

#include "XmlInterfaces.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>

namespace
{
const CLSID DocumentClass = {0x88d96a05, 0xf192, 0x11d4, {0xa6, 0x5f, 0x00, 0x40, 0x96, 0x32, 0x51, 0xe5}};

TEST(DocumentTypes, AreRefusedWithTheirLine)
{
    ComPtr<IXMLDOMDocument2> document;
    ASSERT_EQ(S_OK, CoCreateInstance(DocumentClass, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IXMLDOMDocument2),
                                     document.PutVoid()));
    const struct
    {
        const WCHAR *text;
        LONG code;
        LONG line;
    } cases[] = {
        {TEXT("<!DOCTYPE a [<!ENTITY x \"y\">]><a>&x;</a>"), static_cast<LONG>(0xC00CE584), 1},
        {TEXT("\n<!DOCTYPE a [<!ENTITY a0 \"x\"><!ENTITY a1 \"&a0;&a0;&a0;&a0;\"><!ENTITY a2 "
              "\"&a1;&a1;&a1;&a1;\">]>\n<a>&a2;</a>"),
         static_cast<LONG>(0xC00CE584), 2},
        {TEXT("<!DOCTYPE a SYSTEM \"file:///etc/passwd\"><a/>"), static_cast<LONG>(0xC00CE584), 1},
        {TEXT("<a>\n<b>\n</c></a>"), static_cast<LONG>(0xC00CE56D), 3},
    };
    for (const auto &c : cases)
    {
        VARIANT_BOOL success = VARIANT_TRUE;
        EXPECT_EQ(S_FALSE, document->loadXML(BstrOwner(WideView(c.text)).Get(), &success));
        EXPECT_EQ(VARIANT_FALSE, success);
        ComPtr<IXMLDOMParseError> error;
        ASSERT_EQ(S_OK, document->get_parseError(error.Put()));
        LONG code = 0, line = 0;
        EXPECT_EQ(S_OK, error->get_errorCode(&code));
        EXPECT_EQ(S_OK, error->get_line(&line));
        EXPECT_EQ(c.code, code);
        EXPECT_EQ(c.line, line);
    }
}

// Within half a second: a parser that takes such a document needs seconds.
TEST(LargeDocuments, AreRefusedBeforeTheyCostTime)
{
    ComPtr<IXMLDOMDocument2> document;
    ASSERT_EQ(S_OK, CoCreateInstance(DocumentClass, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IXMLDOMDocument2),
                                     document.PutVoid()));
    const auto withAttributes = [](int count) {
        std::u16string text = u"<a";
        for (int i = 0; i < count; ++i)
        {
            const std::string number = std::to_string(i);
            text += u" a" + std::u16string(number.begin(), number.end()) + u"=''";
        }
        return text + u"/>";
    };
    const struct
    {
        std::u16string text;
        bool isTaken;
    } cases[] = {{withAttributes(1000), true},
                 {withAttributes(1001), false},
                 {withAttributes(26'000), false},
                 {u"<a>" + std::u16string(255 * 1024, u'x') + u"</a>", true},
                 {u"<a>" + std::u16string(256 * 1024, u'x') + u"</a>", false}};
    for (const auto &c : cases)
    {
        VARIANT_BOOL success = VARIANT_FALSE;
        const std::clock_t start = std::clock();
        EXPECT_EQ(c.isTaken ? S_OK : S_FALSE, document->loadXML(BstrOwner(WideView(c.text)).Get(), &success));
        EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 5 * 0.5) << c.text.size();
        ComPtr<IXMLDOMParseError> error;
        BstrOwner reason;
        ASSERT_EQ(S_OK, document->get_parseError(error.Put()));
        error->get_reason(reason.Put());
        EXPECT_EQ(c.isTaken, reason.IsEmpty());
    }
}

// Bytes that aren't what their encoding allows: refused, and no word of the parser's on the terminal.
TEST(DocumentBytes, OfABrokenEncodingAreRefusedSilently)
{
    using namespace std::string_literals;
    ComPtr<IXMLDOMDocument2> document;
    ASSERT_EQ(S_OK, CoCreateInstance(DocumentClass, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IXMLDOMDocument2),
                                     document.PutVoid()));
    const std::string cases[] = {
        "<?xm\xFF version=\"1.0\" encoding=\"utf-8\"?><a/>"s,
        "\xFF\xFE<\0a\0>\0\0\xDC<\0/\0a\0>\0"s,
        "<?xml version=\"1.0\" encoding=\"us-ascii\"?><a>\x80\x80</a>"s,
        "<?xml version=\"1.0\" encoding=\"shift_jis\"?><a>\x80\0\0\0</a>"s,
        "<?xml version=\"1.0\" encoding=\"utf-7\"?><a>\xC0\x80</a>"s,
    };
    for (const std::string &bytes : cases)
    {
        SCOPED_TRACE(bytes.substr(0, 50));
        VARIANT source{};
        V_VT(&source) = VT_ARRAY | VT_UI1;
        V_ARRAY(&source) = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
        void *data = nullptr;
        ASSERT_EQ(S_OK, SafeArrayAccessData(V_ARRAY(&source), &data));
        std::copy(bytes.begin(), bytes.end(), static_cast<char *>(data));
        SafeArrayUnaccessData(V_ARRAY(&source));
        VARIANT_BOOL success = VARIANT_TRUE;
        testing::internal::CaptureStderr();
        const HRESULT result = document->load(source, &success);
        EXPECT_EQ("", testing::internal::GetCapturedStderr());
        EXPECT_EQ(S_FALSE, result);
        EXPECT_EQ(VARIANT_FALSE, success);
        VariantClear(&source);
    }
}
} // namespace
