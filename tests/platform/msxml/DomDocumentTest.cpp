#include "com/BstrOwner.h"
#include "com/ComPtr.h"

#include "XmlInterfaces.h"

#include <gmock/gmock.h>

#include <cstring>

namespace
{
const CLSID DocumentClass = {0x88d96a05, 0xf192, 0x11d4, {0xa6, 0x5f, 0x00, 0x40, 0x96, 0x32, 0x51, 0xe5}};
const IID ElementInterface = {0x2933bf86, 0x7b36, 0x11d2, {0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60}};

class DomDocument : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(S_OK, CoCreateInstance(DocumentClass, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IXMLDOMDocument2),
                                         m_document.PutVoid()));
        m_document->put_async(VARIANT_FALSE);
    }

    HRESULT Load(const WideText &text)
    {
        VARIANT_BOOL success = 77;
        const HRESULT result = m_document->loadXML(BstrOwner(text).Get(), &success);
        EXPECT_EQ(result == S_OK ? VARIANT_TRUE : VARIANT_FALSE, success);
        return result;
    }

    // The text of what the expression finds; "(none)" for nothing, "(failed)" for a failing code.
    WideText Read(const WCHAR *expression)
    {
        ComPtr<IXMLDOMNode> node;
        const HRESULT result = m_document->selectSingleNode(BstrOwner(WideView(expression)).Get(), node.Put());
        if (result != S_OK)
        {
            EXPECT_FALSE(node);
            return FAILED(result) ? TEXT("(failed)") : TEXT("(none)");
        }
        BstrOwner text;
        EXPECT_EQ(S_OK, node->get_text(text.Put()));
        return WideText(text.View());
    }

    ComPtr<IXMLDOMDocument2> m_document;
};

TEST_F(DomDocument, AnswersExpressionsWithTextsNothingOrFailure)
{
    ASSERT_EQ(S_OK, Load(TEXT("<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n<rsp stat=\"ok\">\n <err code=\" 5 \" "
                              "msg=\"Größe &lt; 😀\"/>\n <name>  two\n words <b> in</b>side </name><e/>"
                              "<c><![CDATA[ <raw> ]]></c><i>1</i><i>2</i></rsp>")));
    const struct
    {
        const WCHAR *expression;
        const WCHAR *expected;
    } cases[] = {
        {TEXT("/rsp/@stat"), TEXT("ok")},
        {TEXT("/rsp/err/@code"), TEXT(" 5 ")},
        {TEXT("/rsp/err/@msg"), TEXT("Größe < 😀")},
        {TEXT("/rsp/name"), TEXT("two\n words  inside")},
        {TEXT("/rsp/e"), TEXT("")},
        {TEXT("/rsp/c"), TEXT(" <raw> ")},
        {TEXT("/rsp/i[. = 2]"), TEXT("2")},
        {TEXT("//i"), TEXT("1")},
        {TEXT("/rsp/none"), TEXT("(none)")},
        {TEXT("/RSP"), TEXT("(none)")},
        {TEXT("/rsp["), TEXT("(failed)")},
        {TEXT("nosuch()"), TEXT("(failed)")},
    };
    for (const auto &c : cases)
    {
        const WideText text = Read(c.expression);
        EXPECT_TRUE(text == c.expected)
            << testing::PrintToString(WideText(c.expression)) << " gives " << testing::PrintToString(text);
    }
    ComPtr<IXMLDOMNode> node;
    EXPECT_EQ(E_INVALIDARG, m_document->selectSingleNode(BstrOwner(WideView(TEXT("/rsp"))).Get(), nullptr));
    EXPECT_TRUE(FAILED(m_document->selectSingleNode(nullptr, node.Put())));
}

TEST_F(DomDocument, ListsNodesInDocumentOrderAndRelativeToANode)
{
    ASSERT_EQ(S_OK, Load(TEXT("<a><g n='1'><i/><i/></g><g n='2'><i/></g></a>")));
    ComPtr<IXMLDOMNodeList> groups;
    ASSERT_EQ(S_OK, m_document->selectNodes(BstrOwner(WideView(TEXT("//g"))).Get(), groups.Put()));
    LONG count = 0;
    EXPECT_EQ(S_OK, groups->get_length(&count));
    EXPECT_EQ(2, count);
    std::vector<LONG> lengths;
    ComPtr<IXMLDOMNode> group;
    while (groups->nextNode(group.Put()) == S_OK)
    {
        ComPtr<IXMLDOMNodeList> items;
        ASSERT_EQ(S_OK, group->selectNodes(BstrOwner(WideView(TEXT("i"))).Get(), items.Put()));
        items->get_length(&count);
        lengths.push_back(count);
    }
    EXPECT_THAT(lengths, testing::ElementsAre(2, 1));
    ComPtr<IXMLDOMNode> beyond;
    EXPECT_EQ(S_FALSE, groups->get_item(2, beyond.Put()));
    EXPECT_FALSE(beyond);
}

TEST_F(DomDocument, NodesOutliveTheirDocument)
{
    ASSERT_EQ(S_OK, Load(TEXT("<a><b c='d'>text</b></a>")));
    ComPtr<IXMLDOMElement> root;
    ASSERT_EQ(S_OK, m_document->get_documentElement(root.Put()));
    ComPtr<IXMLDOMNode> child;
    ASSERT_EQ(S_OK, root->get_firstChild(child.Put()));
    ASSERT_EQ(S_FALSE, Load(TEXT("<broken>")));
    EXPECT_TRUE(Read(TEXT("/a")) == TEXT("(none)"));
    m_document.Reset();
    root.Reset();
    ComPtr<IXMLDOMElement> element;
    ASSERT_EQ(S_OK, child->QueryInterface(ElementInterface, element.PutVoid()));
    BstrOwner xml, name;
    EXPECT_EQ(S_OK, child->get_xml(xml.Put()));
    EXPECT_TRUE(xml.View() == TEXT("<b c=\"d\">text</b>"));
    EXPECT_EQ(S_OK, element->get_tagName(name.Put()));
    EXPECT_TRUE(name.View() == TEXT("b"));
    VARIANT value;
    EXPECT_EQ(S_OK, element->getAttribute(BstrOwner(WideView(TEXT("c"))).Get(), &value));
    EXPECT_TRUE(BstrOwner::Adopt(V_BSTR(&value)).View() == TEXT("d"));
    EXPECT_EQ(S_FALSE, element->getAttribute(BstrOwner(WideView(TEXT("none"))).Get(), &value));
    EXPECT_EQ(VT_NULL, V_VT(&value));
}

TEST_F(DomDocument, RefusesWhatIsHostileOrNoDocument)
{
    WideText deep;
    for (int i = 0; i < 100000; ++i)
    {
        deep += TEXT("<a>");
    }
    const WideText cases[] = {
        TEXT(""), TEXT("plain text"), TEXT("<a></b>"), TEXT("<a>&undeclared;</a>"), TEXT("<a/><b/>"), deep,
    };
    for (const WideText &text : cases)
    {
        EXPECT_EQ(S_FALSE, Load(text)) << testing::PrintToString(text.substr(0, 40));
        ComPtr<IXMLDOMParseError> error;
        ASSERT_EQ(S_OK, m_document->get_parseError(error.Put()));
        LONG code = 0;
        EXPECT_EQ(S_OK, error->get_errorCode(&code));
        EXPECT_NE(0, code);
        BstrOwner reason;
        EXPECT_EQ(S_OK, error->get_reason(reason.Put()));
        EXPECT_FALSE(reason.IsEmpty());
    }
}

TEST_F(DomDocument, LoadsFromAStreamInTheEncodingThatItDeclares)
{
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, stream.Put()));
    const char text[] = "<?xml version='1.0' encoding='ISO-8859-1'?><a>Gr\xF6\xDF"
                        "e</a>";
    stream->Write(text, sizeof(text) - 1, nullptr);
    stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
    VARIANT source;
    V_VT(&source) = VT_UNKNOWN;
    V_UNKNOWN(&source) = stream.Get();
    VARIANT_BOOL success = VARIANT_FALSE;
    EXPECT_EQ(S_OK, m_document->load(source, &success));
    EXPECT_EQ(VARIANT_TRUE, success);
    EXPECT_TRUE(Read(TEXT("/a")) == TEXT("Größe"));
}

// The bytes of a text as an array, for as long as it lives.
class BytesOf
{
public:
    explicit BytesOf(const char *text)
    {
        const auto length = static_cast<ULONG>(strlen(text));
        V_VT(&m_value) = VT_ARRAY | VT_UI1;
        V_ARRAY(&m_value) = SafeArrayCreateVector(VT_UI1, 0, length);
        void *data = nullptr;
        EXPECT_EQ(S_OK, SafeArrayAccessData(V_ARRAY(&m_value), &data));
        memcpy(data, text, length);
        EXPECT_EQ(S_OK, SafeArrayUnaccessData(V_ARRAY(&m_value)));
    }
    ~BytesOf() { VariantClear(&m_value); }
    BytesOf(const BytesOf &) = delete;
    BytesOf &operator=(const BytesOf &) = delete;

    const VARIANT &Get() const { return m_value; }

private:
    VARIANT m_value{};
};

TEST_F(DomDocument, LoadsFromBytes)
{
    VARIANT_BOOL success = VARIANT_FALSE;
    EXPECT_EQ(S_OK, m_document->load(BytesOf("<a b='7'>Gr\xC3\xB6\xC3\x9F"
                                             "e\r\n</a>")
                                         .Get(),
                                     &success));
    EXPECT_EQ(VARIANT_TRUE, success);
    EXPECT_TRUE(Read(TEXT("/a")) == TEXT("Größe"));
    EXPECT_TRUE(Read(TEXT("/a/@b")) == TEXT("7"));
    for (const char *const text : {"<a>", "", "<a>&undeclared;</a>", "<a>\xFF</a>"})
    {
        success = VARIANT_TRUE;
        EXPECT_EQ(S_FALSE, m_document->load(BytesOf(text).Get(), &success)) << text;
        EXPECT_EQ(VARIANT_FALSE, success) << text;
    }
}
} // namespace
