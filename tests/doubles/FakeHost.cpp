#include "tests/doubles/FakeHost.h"

#include "com/BstrOwner.h"
#include "publish/ItemRecord.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <string>

namespace
{
// Large and not in steps of one, so that a plug-in that takes handles for indices fails.
constexpr UINT64 FirstHandle = 0x1'0000'0007;

BSTR TextFor(const std::optional<WideText> &text)
{
    return text ? BstrOwner(WideView(*text)).Detach() : nullptr;
}

constexpr WideView FillerText = TEXT("filler");

bool SameText(BSTR left, BSTR right)
{
    const auto view = [](BSTR text) { return text ? WideView(text, SysStringLen(text)) : WideView(); };
    return (left == nullptr) == (right == nullptr) && view(left) == view(right);
}

template <size_t count>
bool SameTexts(const BSTR (&left)[count], const BSTR (&right)[count])
{
    return std::equal(left, left + count, right, SameText);
}

template <size_t count>
bool AllNull(const BSTR (&texts)[count])
{
    return std::all_of(texts, texts + count, [](BSTR text) { return text == nullptr; });
}
} // namespace

void FakeImageMetadata::Fill(ItemRecord &record) const
{
    record.Iptc.Texts[IPTC_TEXT_CAPTION] = TextFor(Caption);
    record.Iptc.Texts[IPTC_TEXT_DESCRIPTION] = TextFor(Description);
    record.Iptc.Texts[IPTC_TEXT_KEYWORDS] = TextFor(Keywords);
    record.ExifComment = TextFor(ExifComment);
    if (!HasGroups)
    {
        return;
    }
    const auto put = [](BSTR &text) { text = BstrOwner(FillerText).Detach(); };
    put(record.Text028);
    put(record.Text170);
    std::for_each(std::begin(record.Texts0B0), std::end(record.Texts0B0), put);
    std::for_each(std::begin(record.Texts0F0), std::end(record.Texts0F0), put);
    std::for_each(std::begin(record.CopyrightTexts), std::end(record.CopyrightTexts), put);
    std::for_each(record.Iptc.Texts, record.Iptc.Texts + IPTC_TEXT_CAPTION, put);
    std::for_each(record.Iptc.Texts + IPTC_TEXT_KEYWORDS + 1, std::end(record.Iptc.Texts), put);
    record.Iptc.Head[0] = 3;
    record.Iptc.Word10 = 5;
    record.Iptc.Word14 = 6;
    record.ExifGroup = 0x1'0000'0001;
    std::fill(std::begin(record.XmpGroup), std::end(record.XmpGroup), BYTE{4});
    record.GpsGroup = 7;
}

HRESULT FakeImageMetadata::ReadImageMetadata(LPCWSTR path, INT32 reserved, INT32 longEdge,
                                             IWICBitmapSource **source, INT32 flags, ItemRecord *record) noexcept
{
    const bool isTextsOnly = source == nullptr && flags == READ_METADATA_ONLY && longEdge == 0 && reserved == 0;
    const bool isWithPicture = source != nullptr && flags == READ_METADATA_AND_PICTURE && reserved == 0;
    HRESULT result = m_record.Enter("read", {Narrow(path), isTextsOnly ? "" : "with the picture"});
    if (Calls && SUCCEEDED(result))
    {
        result = Calls->Enter("ReadImageMetadata", {isTextsOnly     ? "only"
                                                    : isWithPicture ? "with picture of " + std::to_string(longEdge)
                                                                    : "?"});
    }
    if (source)
    {
        *source = nullptr;
    }
    // Texts that a failing reader has filled in belong to the caller too.
    Fill(*record);
    if (SUCCEEDED(result) && source && Picture)
    {
        *source = Picture().Detach();
    }
    return result;
}

HRESULT FakeImageMetadata::WriteImageMetadata(IWICMetadataQueryWriter *writer, INT32 reserved, INT32 one,
                                              ItemRecord *record, INT32 copyright, INT32 exif, INT32 xmp,
                                              INT32 gps, INT32 iptc, INT32 anyGroup, INT32 processed) noexcept
{
    if (Calls == nullptr || writer == nullptr || reserved != 0 || one != 1)
    {
        return E_NOTIMPL;
    }
    std::string line;
    for (const INT32 flag : {copyright, exif, xmp, gps, iptc, anyGroup, processed})
    {
        line += std::to_string(flag);
    }
    const bool isSizeTwice = record->Widths[0] == record->Widths[1] && record->Heights[0] == record->Heights[1];
    line += " " + std::to_string(record->Widths[0]) + "x" + std::to_string(record->Heights[0]) +
            (isSizeTwice ? "" : "?") + " at " + std::to_string(std::lround(record->ResolutionX)) + "x" +
            std::to_string(std::lround(record->ResolutionY));

    ItemRecordOwner asRead;
    Fill(*asRead.Get());
    const ItemRecord &read = *asRead;
    const auto group = [&](const char *name, bool isHeld, bool isBlank) {
        line += isHeld ? std::string(" ") + name : isBlank ? "" : std::string(" ") + name + "?";
    };
    group("copyright",
          SameText(record->ExifComment, read.ExifComment) &&
              SameTexts(record->CopyrightTexts, read.CopyrightTexts),
          record->ExifComment == nullptr && AllNull(record->CopyrightTexts));
    group("exif", record->ExifGroup == read.ExifGroup, record->ExifGroup == 0);
    group("xmp", std::ranges::equal(record->XmpGroup, read.XmpGroup),
          std::ranges::all_of(record->XmpGroup, [](BYTE byte) { return byte == 0xFF; }));
    group("gps", record->GpsGroup == read.GpsGroup, record->GpsGroup == 0);
    constexpr BYTE blankHead[16] = {255, 255, 255, 255, 0, 0, 255, 255, 255, 255, 255, 255, 255, 255, 255, 255};
    group("iptc",
          SameTexts(record->Iptc.Texts, read.Iptc.Texts) &&
              std::ranges::equal(record->Iptc.Head, read.Iptc.Head) && record->Iptc.Word10 == read.Iptc.Word10 &&
              record->Iptc.Word14 == read.Iptc.Word14,
          AllNull(record->Iptc.Texts) && std::ranges::equal(record->Iptc.Head, blankHead) &&
              record->Iptc.Word10 == 1 && record->Iptc.Word14 == 0x80000000);
    return Calls->Enter("WriteImageMetadata", {line});
}

FakeHost::FakeHost(CallRecord &record) : Metadata(FakeImageMetadata::Make(record)), m_record(record) {}

HRESULT FakeHost::QueryFurther(REFIID iid, void **object) noexcept
{
    if (iid != __uuidof(IHalvoraImageMetadata))
    {
        return E_NOINTERFACE;
    }
    return OtherMetadata ? OtherMetadata->QueryInterface(iid, object) : Metadata->QueryInterface(iid, object);
}

HRESULT FakeHost::GetItemList(INT32 *count, HGLOBAL *items) noexcept
{
    if (const HRESULT result = m_record.Enter("list"); FAILED(result))
    {
        return result;
    }
    *count = static_cast<INT32>(Items.size());
    if (!ListCanBeLocked)
    {
        *items = nullptr;
        return S_OK;
    }
    m_list = GlobalMemoryOwner(GlobalAlloc(GMEM_MOVEABLE, std::max<size_t>(Items.size(), 1) * sizeof(UINT64)));
    auto *handles = static_cast<UINT64 *>(GlobalLock(m_list.Get()));
    for (size_t i = 0; i < Items.size(); ++i)
    {
        handles[i] = FirstHandle + i;
    }
    GlobalUnlock(m_list.Get());
    *items = m_list.Get();
    return S_OK;
}

HRESULT FakeHost::GetItemRecord(UINT64 item, ItemRecord *record) noexcept
{
    const size_t index = static_cast<size_t>(item - FirstHandle);
    m_record.Add("item " + std::to_string(index));
    if (OnItem)
    {
        OnItem(index);
    }
    record->Path = BstrOwner(WideView(Items.at(index).Path)).Detach();
    record->Extensions = TextFor(Items.at(index).Extensions);
    // A failure, since the plug-in must ignore the result.
    return E_FAIL;
}

HRESULT FakeHost::WriteLogEntry(INT32 level, LPCWSTR source, LPCWSTR message) noexcept
{
    static const char *const Names[] = {"verbose", "info", "warning", "error", "fatal"};
    const bool isKnown = level >= 0 && level < 5 && WideView(source) == TEXT("Flickr");
    m_record.Add("log " + std::string(isKnown ? Names[level] : "?") + " " + Narrow(message));
    return E_FAIL;
}
