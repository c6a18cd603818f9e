// The choice of an item's file, its words, and the life of its record.
#include "publish/FileChoice.h"
#include "publish/FormFields.h"
#include "publish/ItemRecord.h"
#include "tests/doubles/CallRecord.h"

#include "com/BstrOwner.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

TEST(FileChoice, TakesTheFirstFileThatTheServiceKnows)
{
    const struct
    {
        const WCHAR *extensions;
        ExtensionClass type;
        const WCHAR *extension;
    } cases[] = {
        {TEXT("jpg"), ExtensionClass::Jpeg, TEXT("jpg")},
        {TEXT("JPEG"), ExtensionClass::Jpeg, TEXT("JPEG")},
        {TEXT("jpe"), ExtensionClass::Jpeg, TEXT("jpe")},
        {TEXT("JfIf"), ExtensionClass::Jpeg, TEXT("JfIf")},
        {TEXT("exif"), ExtensionClass::Jpeg, TEXT("exif")},
        {TEXT("GIF"), ExtensionClass::Web, TEXT("GIF")},
        {TEXT("png"), ExtensionClass::Web, TEXT("png")},
        {TEXT("tif;jpg"), ExtensionClass::Jpeg, TEXT("jpg")},
        {TEXT("png;jpg"), ExtensionClass::Web, TEXT("png")},
        {TEXT(";;nef;;tif;"), ExtensionClass::Other, TEXT("nef")},
        {TEXT("jpgx"), ExtensionClass::Other, TEXT("jpgx")},
        {TEXT(" jpg"), ExtensionClass::Other, TEXT(" jpg")},
        {TEXT(""), ExtensionClass::Other, TEXT("")},
        {TEXT(";;"), ExtensionClass::Other, TEXT("")},
    };
    for (const auto &c : cases)
    {
        const FileChoice choice = ChooseFile(c.extensions);
        EXPECT_EQ(choice.Class, c.type) << Narrow(c.extensions);
        EXPECT_EQ(Narrow(choice.Extension), Narrow(c.extension)) << Narrow(c.extensions);
    }
}

TEST(TagList, QuotesEachTag)
{
    const struct
    {
        const WCHAR *tags;
        const char *list;
    } cases[] = {
        {TEXT(""), ""},
        {TEXT(";;;"), ""},
        {TEXT("a; b c ;d"), R"("a" "b c" "d")"},
        {TEXT(";;a;;b;"), R"("a" "b")"},
        {TEXT(" "), R"("")"},
        {TEXT("; ;"), R"("")"},
        {TEXT("say \"hi\""), R"("say "hi"")"},
        {TEXT("\tM\u00FCnchen\u3000;\u6771\u4EAC"), "\"M\xC3\xBCnchen\" \"\xE6\x9D\xB1\xE4\xBA\xAC\""},
    };
    for (const auto &c : cases)
    {
        EXPECT_EQ(Narrow(QuotedTagList(c.tags)), c.list);
    }
}

TEST(ItemTexts, FallBackOnTheNameAndTheComment)
{
    using Given = std::optional<WideText>;
    const struct
    {
        Given caption, description, comment;
        const char *title, *expected;
    } cases[] = {
        {{}, {}, {}, "IMG 1.jpg", ""},
        {TEXT("Caption"), TEXT("Words"), TEXT("Comment"), "Caption", "Words"},
        {TEXT(""), {}, {}, "", ""},
        {{}, TEXT(""), TEXT("Comment"), "IMG 1.jpg", "Comment"},
        {{}, {}, TEXT("C"), "IMG 1.jpg", "C"},
        {{}, TEXT("Words"), TEXT(""), "IMG 1.jpg", "Words"},
    };
    for (const auto &c : cases)
    {
        ItemRecordOwner record;
        const auto put = [](BSTR &field, const Given &text) {
            if (text)
            {
                field = BstrOwner(WideView(*text)).Detach();
            }
        };
        put(record.Get()->Iptc.Texts[17], c.caption);
        put(record.Get()->Iptc.Texts[18], c.description);
        put(record.Get()->Iptc.Texts[19], TEXT("a;b"));
        put(record.Get()->ExifComment, c.comment);
        const ItemTexts texts = ChooseItemTexts(*record, TEXT("IMG 1.jpg"));
        ReleaseItemRecord(record.Get());
        EXPECT_EQ(Narrow(texts.Title.View()), c.title);
        EXPECT_EQ(Narrow(texts.Description.View()), c.expected);
        EXPECT_EQ(Narrow(texts.Tags.View()), "a;b");
    }
}

namespace
{
constexpr size_t IptcOffset = 376;

// The whole record in the form that the host relies on, after laying out.
std::vector<BYTE> LaidOut()
{
    std::vector<BYTE> bytes(656, 0);
    std::fill_n(bytes.begin() + IptcOffset, 16, BYTE{0xFF});
    bytes[380] = bytes[381] = 0;
    bytes[399] = 0x80;
    return bytes;
}

std::vector<BYTE> BytesOf(const ItemRecord &record)
{
    const auto *first = reinterpret_cast<const BYTE *>(&record);
    return std::vector<BYTE>(first, first + sizeof record);
}
} // namespace

TEST(ItemRecord, IsLaidOutBlank)
{
    ItemRecord record;
    std::memset(&record, 0xCC, sizeof record);
    LayOutItemRecord(&record);
    EXPECT_EQ(BytesOf(record), LaidOut());
}

TEST(ItemRecord, FreesEveryTextOnce)
{
    ItemRecord record;
    LayOutItemRecord(&record);
    std::vector<size_t> offsets{0x018, 0x020, 0x028, 0x170};
    for (size_t offset = 0x0B0; offset <= 0x0F8; offset += 8)
    {
        offsets.push_back(offset);
    }
    for (size_t number = 0; number < 32; ++number)
    {
        offsets.push_back(IptcOffset + 0x18 + 8 * number);
    }
    for (const size_t offset : offsets)
    {
        const BSTR text = BstrOwner(TEXT("text")).Detach();
        std::memcpy(reinterpret_cast<BYTE *>(&record) + offset, &text, sizeof text);
    }
    record.Iptc.Head[0] = 1;
    record.Iptc.Word10 = 5;
    record.Iptc.Word14 = 6;
    ReleaseItemRecord(&record);
    EXPECT_EQ(BytesOf(record), LaidOut());
    ReleaseItemRecord(&record);
    EXPECT_EQ(BytesOf(record), LaidOut());
    ReleaseItemRecord(nullptr);
}
