// Refusal of document types, and the line of an error. Natively only: Wine 8 accepts document types
// in the class of MSXML 6, and tells no line; Windows does as is expected here.
#include "Registration.h"

#include "core/BstrOwner.h"
#include "core/ComPtr.h"

#include "XmlInterfaces.h"

#include <gtest/gtest.h>

namespace
{
const CLSID documentClass = {0x88d96a05, 0xf192, 0x11d4, {0xa6, 0x5f, 0x00, 0x40, 0x96, 0x32, 0x51, 0xe5}};

TEST(DocumentTypes, AreRefusedWithTheirLine)
{
    RegisterDocumentClass();
    ComPtr<IXMLDOMDocument2> document;
    ASSERT_EQ(S_OK, CoCreateInstance(documentClass, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IXMLDOMDocument2),
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
} // namespace
