// A frame's metadata by the imaging component's queries: read, and removed.
#include "host/ImageMetadata.h"

#include "host/CopiedBlocks.h"

#include "com/ComObject.h"
#include "com/ComPtr.h"
#include "com/Hresult.h"
#include "com/WideText.h"
#include "platform/windowscodecs/UncalledMethods.h"

#include <gmock/gmock.h>

#include <objbase.h>

#include <cstring>
#include <map>
#include <variant>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
class Block;

struct LargeNumber
{
    UINT64 value;
};
using Bytes = std::vector<BYTE>;
using Value =
    std::variant<WideText, std::string, std::vector<std::string>, UINT16, LargeNumber, Bytes, ComPtr<Block>>;

template <class T>
T *TaskCopy(const T *data, size_t count)
{
    auto *const copy = static_cast<T *>(CoTaskMemAlloc(count * sizeof(T)));
    std::memcpy(copy, data, count * sizeof(T));
    return copy;
}

// A block of metadata that answers as Windows documents it: alternatives and lists of XMP by a block of
// their own, narrow text of EXIF and IPTC as bytes. Of blocks to remove it has a number by name; other names mean
// nothing to it.
class Block final
    : public UncalledOfMetadataQueries<ComObject<Block, Answers<IWICMetadataQueryWriter, IWICMetadataQueryReader>>>
{
public:
    explicit Block(std::map<WideText, Value> values, std::map<WideText, int> blocks = {})
        : Left(std::move(blocks)), m_values(std::move(values))
    {
    }

    std::map<WideText, int> Left;

    STDMETHODIMP RemoveMetadataByName(LPCWSTR name) noexcept override
    {
        const auto found = Left.find(name);
        if (found == Left.end())
        {
            return WINCODEC_ERR_INVALIDQUERYREQUEST;
        }
        return found->second-- > 0 ? S_OK : WINCODEC_ERR_PROPERTYNOTFOUND;
    }
    STDMETHODIMP SetMetadataByName(LPCWSTR, const PROPVARIANT *) noexcept override { return S_OK; }

    STDMETHODIMP GetMetadataByName(LPCWSTR name, PROPVARIANT *value) noexcept override
    {
        *value = {};
        const auto found = m_values.find(name);
        if (found == m_values.end())
        {
            return WINCODEC_ERR_PROPERTYNOTFOUND;
        }
        std::visit([&](const auto &each) { Put(each, *value); }, found->second);
        return S_OK;
    }

private:
    static void Put(const WideText &text, PROPVARIANT &value)
    {
        value.vt = VT_LPWSTR;
        value.pwszVal = TaskCopy(text.c_str(), text.size() + 1);
    }
    static void Put(const std::string &text, PROPVARIANT &value)
    {
        value.vt = VT_LPSTR;
        value.pszVal = TaskCopy(text.c_str(), text.size() + 1);
    }
    static void Put(const std::vector<std::string> &texts, PROPVARIANT &value)
    {
        std::vector<LPSTR> elements;
        for (const std::string &text : texts)
        {
            elements.push_back(TaskCopy(text.c_str(), text.size() + 1));
        }
        value.vt = VT_VECTOR | VT_LPSTR;
        value.calpstr.cElems = static_cast<ULONG>(elements.size());
        value.calpstr.pElems = TaskCopy(elements.data(), elements.size());
    }
    static void Put(UINT16 number, PROPVARIANT &value)
    {
        value.vt = VT_UI2;
        value.uiVal = number;
    }
    static void Put(const LargeNumber &number, PROPVARIANT &value)
    {
        value.vt = VT_UI8;
        value.uhVal.QuadPart = number.value;
    }
    static void Put(const Bytes &bytes, PROPVARIANT &value)
    {
        value.vt = VT_VECTOR | VT_UI1;
        value.caub.cElems = static_cast<ULONG>(bytes.size());
        value.caub.pElems = TaskCopy(bytes.data(), bytes.size());
    }
    static void Put(const ComPtr<Block> &block, PROPVARIANT &value)
    {
        value.vt = VT_UNKNOWN;
        value.punkVal = ComPtr<IUnknown>(block).Detach();
    }

    const std::map<WideText, Value> m_values;
};

using Values = std::map<WideText, Value>;

ImageTexts TextsOf(Values values)
{
    ImageTexts texts;
    ReadFrameMetadata(*Block::Make(std::move(values)).Get(), texts, nullptr);
    return texts;
}
} // namespace

TEST(FrameMetadata, AlternativesAndListsAreBlocksOfTheirOwn)
{
    const ImageTexts texts = TextsOf({
        {TEXT("/xmp/dc:title"),
         Block::Make(Values{{TEXT("/x-default"), TEXT("Titel")}, {TEXT("/en"), TEXT("title")}})},
        {TEXT("/xmp/dc:subject"),
         Block::Make(Values{
             {TEXT("/{ulong=0}"), TEXT("a")}, {TEXT("/{ulong=1}"), TEXT("")}, {TEXT("/{ulong=2}"), TEXT("b")}})},
        {TEXT("/xmp/dc:rights"), Block::Make(Values{{TEXT("/{ulong=0}"), TEXT("mine")}})},
        {TEXT("/xmp/photoshop:City"), TEXT("Ulm \0")},
    });
    EXPECT_EQ(texts.title, TEXT("Titel"));
    EXPECT_THAT(texts.keywords, ElementsAre(TEXT("a"), TEXT("b")));
    EXPECT_EQ(texts.copyright, TEXT("mine"));
    EXPECT_EQ(texts.places[1], TEXT("Ulm"));
}

TEST(FrameMetadata, TextsOfBytesAreDecodedByTheirKind)
{
    const ImageTexts texts = TextsOf({
        {TEXT("/app13/irb/8bimiptc/iptc/{str=Object Name}"), std::string("K\xC3\xB6ln")},
        {TEXT("/app13/irb/8bimiptc/iptc/{str=Keywords}"), std::vector<std::string>{"eins", "zw\xF6lf"}},
        {TEXT("/app1/ifd/{ushort=40093}"), Bytes{'M', 0, 0xE4, 0, 0, 0}},
        {TEXT("/app1/ifd/exif/{ushort=37510}"), Bytes{'U', 'N', 'I', 'C', 'O', 'D', 'E', 0, 0, 'j', 0, 'a'}},
    });
    EXPECT_EQ(texts.title, TEXT("Köln"));
    EXPECT_THAT(texts.keywords, ElementsAre(TEXT("eins"), TEXT("zwölf")));
    EXPECT_EQ(texts.artist, TEXT("Mä"));
    EXPECT_EQ(texts.comment, TEXT("ja"));
}

TEST(FrameMetadata, FieldsComeFromTheirListsAlone)
{
    ImageTexts texts;
    MetadataSnapshot groups;
    // A TIFF file's paths: make, exposure time, maker note, a place, an orientation out of range.
    const auto frame = Block::Make(Values{
        {TEXT("/ifd/{ushort=271}"), std::string("Acme")},
        {TEXT("/ifd/exif/{ushort=33434}"), LargeNumber{(UINT64{60} << 32) | 1}},
        {TEXT("/ifd/exif/{ushort=37500}"), Bytes{1, 2, 3}},
        {TEXT("/ifd/gps/{ushort=1}"), std::string("N")},
        {TEXT("/ifd/{ushort=274}"), UINT16{9}},
        {TEXT("/ifd/{ushort=18246}"), UINT16{3}},
        {TEXT("/ifd/xmp/xmp:Label"), TEXT("Red")},
        {TEXT("/ifd/xmp/photoshop:Urgency"), TEXT("2")},
    });
    ReadFrameMetadata(*frame.Get(), texts, &groups);
    ASSERT_EQ(groups.camera.size(), 2u);
    EXPECT_THAT(groups.camera[0].data, ElementsAre('A', 'c', 'm', 'e', 0));
    EXPECT_EQ(groups.camera[1].tag, 33434);
    EXPECT_EQ(groups.camera[1].type, 5);
    EXPECT_THAT(groups.camera[1].data, ElementsAre(1, 0, 0, 0, 60, 0, 0, 0));
    ASSERT_EQ(groups.gps.size(), 1u);
    EXPECT_EQ(groups.orientation, 1);
    EXPECT_EQ(groups.rating, 3);
    EXPECT_EQ(groups.label, TEXT("Red"));
    EXPECT_EQ(groups.urgency, 2);
}

TEST(CopiedBlocks, AreRemovedWhateverTheirNames)
{
    using Blocks = std::map<WideText, int>;
    const auto remove = [](Blocks &blocks) {
        const auto frame = Block::Make(Values(), blocks);
        const HRESULT result = AtBoundary([&] {
            CopiedBlocks(*frame.Get()).RemoveAll();
            return S_OK;
        });
        blocks = frame->Left;
        std::erase_if(blocks, [](const auto &block) { return block.second <= 0; });
        return result;
    };
    const Blocks known = {{TEXT("/app1"), 1}, {TEXT("/xmp"), 1}, {TEXT("/app13"), 1}, {TEXT("/com"), 2}};
    Blocks byOneName = known;
    byOneName[TEXT("/unknown")] = 3;
    Blocks byNumber = known;
    byNumber[TEXT("/app2")] = byNumber[TEXT("/[1]app1")] = byNumber[TEXT("/app15")] = 2;
    for (Blocks blocks : {byOneName, byNumber})
    {
        EXPECT_EQ(remove(blocks), S_OK);
        EXPECT_THAT(blocks, IsEmpty());
    }
    // Of the blocks that every component has, none may be passed over.
    Blocks withoutExif = {{TEXT("/xmp"), 1}, {TEXT("/app13"), 1}, {TEXT("/com"), 1}};
    EXPECT_EQ(remove(withoutExif), WINCODEC_ERR_INVALIDQUERYREQUEST);
}
