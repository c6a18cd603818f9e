#include "tests/platform/msxml/DocumentUse.h"

#include <gmock/gmock.h>

namespace
{
TEST(Document, AnswersExpressionsWithTextsNothingOrFailure)
{
    const auto document = NewDocument();
    ASSERT_EQ("taken",
              LoadText(*document.Get(),
                       TEXT("<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<rsp stat=\"ok\">\n "
                            "<err code=\" 5 \" msg=\"Größe &lt; 😀\"/>\n <name>  two\n words <b> in</b>side "
                            "</name><e/><c><![CDATA[ <raw> ]]></c><i>1</i><i>2</i></rsp>")));
    const std::pair<const WCHAR *, const WCHAR *> cases[] = {
        {TEXT("/rsp/@stat"), TEXT("ok")},
        {TEXT("/rsp/err/@code"), TEXT(" 5 ")},
        {TEXT("/rsp/err/@msg"), TEXT("Größe < 😀")},
        {TEXT("/rsp/name"), TEXT("two\n words  inside")},
        {TEXT("/rsp/e"), TEXT("")},
        {TEXT("/rsp/c"), TEXT(" <raw> ")},
        {TEXT("//i"), TEXT("1")},
        {TEXT("/rsp/none"), TEXT("(none)")},
        {TEXT("/rsp["), TEXT("(failed)")},
    };
    for (const auto &[expression, expected] : cases)
    {
        const WideText text = ReadText(*document.Get(), expression);
        EXPECT_TRUE(text == expected) << testing::PrintToString(WideText(expression)) << " gives "
                                      << testing::PrintToString(text);
    }
    ComPtr<IXMLDOMNode> node;
    // An attribute's value is that of the node, an element has none.
    VARIANT value;
    ASSERT_EQ(S_OK, document->selectSingleNode(BstrOwner(WideView(TEXT("//@code"))).Get(), node.Put()));
    EXPECT_EQ(S_OK, node->get_nodeValue(&value));
    EXPECT_TRUE(BstrOwner::Adopt(V_BSTR(&value)).View() == TEXT(" 5 "));
    ASSERT_EQ(S_OK, document->selectSingleNode(BstrOwner(WideView(TEXT("//err"))).Get(), node.Put()));
    EXPECT_EQ(S_FALSE, node->get_nodeValue(&value));
    EXPECT_EQ(VT_NULL, V_VT(&value));
}

TEST(Document, ListsNodesInTheirOrderAndRelativeToANodeThatOutlivesIt)
{
    auto document = NewDocument();
    ASSERT_EQ("taken", LoadText(*document.Get(), TEXT("<a><g n='1'><i/><i/></g><g n='2'><i/></g></a>")));
    ComPtr<IXMLDOMNodeList> groups;
    ASSERT_EQ(S_OK, document->selectNodes(BstrOwner(WideView(TEXT("//g"))).Get(), groups.Put()));
    ASSERT_EQ("refused", LoadText(*document.Get(), TEXT("<broken>")));
    EXPECT_TRUE(ReadText(*document.Get(), TEXT("/a")) == TEXT("(none)"));
    document.Reset();
    LONG count = 0;
    EXPECT_EQ(S_OK, groups->get_length(&count));
    EXPECT_EQ(2, count);
    for (LONG i = 0; i < count; ++i)
    {
        ComPtr<IXMLDOMNode> group;
        ComPtr<IXMLDOMNodeList> items;
        LONG length = 0;
        ASSERT_EQ(S_OK, groups->get_item(i, group.Put()));
        ASSERT_EQ(S_OK, group->selectNodes(BstrOwner(WideView(TEXT("i"))).Get(), items.Put()));
        items->get_length(&length);
        EXPECT_EQ(2 - i, length);
        EXPECT_TRUE(ReadText(*group.Get(), TEXT("@n")) == (i == 0 ? TEXT("1") : TEXT("2")));
    }
}

TEST(Document, TakesBytesInTheirDeclaredEncodingAndRefusesWhatIsNoDocument)
{
    const auto document = NewDocument();
    for (const char *bytes : {"<a b='7'>Gr\xC3\xB6\xC3\x9F"
                              "e\r\n</a>",
                              "<?xml version='1.0' encoding='ISO-8859-1'?><a b='7'>Gr\xF6\xDF"
                              "e</a>"})
    {
        EXPECT_EQ("taken", LoadBytes(*document.Get(), bytes));
        EXPECT_TRUE(ReadText(*document.Get(), TEXT("/a")) == TEXT("Größe")) << bytes;
        EXPECT_TRUE(ReadText(*document.Get(), TEXT("/a/@b")) == TEXT("7")) << bytes;
    }
    std::string deep;
    for (int i = 0; i < 80'000; ++i)
    {
        deep += "<a>";
    }
    for (const std::string &bytes :
         {std::string(), std::string("plain text"), std::string("<a></b>"), std::string("<a>&undeclared;</a>"),
          std::string("<a/><b/>"), std::string("<a>\xFF</a>"), deep})
    {
        EXPECT_EQ("refused", LoadBytes(*document.Get(), bytes)) << bytes.substr(0, 40);
        EXPECT_TRUE(ReadText(*document.Get(), TEXT("/a")) == TEXT("(none)"));
    }
}
} // namespace
