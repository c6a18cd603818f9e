#include "publish/ItemRecord.h"

#include "com/BstrOwner.h"

#include <cstddef>
#include <cstring>
#include <span>

static_assert(offsetof(ItemRecord, ExifGroup) == 0x010 && offsetof(ItemRecord, Path) == 0x018);
static_assert(offsetof(ItemRecord, ResolutionX) == 0x074 && offsetof(ItemRecord, Texts0B0) == 0x0B0);
static_assert(offsetof(ItemRecord, ExifComment) == 0x0D0 && offsetof(ItemRecord, Texts0F0) == 0x0F0);
static_assert(offsetof(ItemRecord, Widths) == 0x10C && offsetof(ItemRecord, Heights) == 0x114);
static_assert(offsetof(ItemRecord, XmpGroup) == 0x134 && offsetof(ItemRecord, GpsGroup) == 0x140);
static_assert(offsetof(ItemRecord, Text170) == 0x170 && offsetof(ItemRecord, Iptc) == 0x178);
static_assert(offsetof(IptcBlock, Texts) == 0x018);

namespace
{
void BlankIptcHead(IptcBlock &iptc) noexcept
{
    std::memset(iptc.Head, 0xFF, sizeof iptc.Head);
    std::memset(iptc.Head + 4, 0, sizeof(UINT16));
    iptc.Word10 = 0;
    iptc.Word14 = 0x80000000;
}

void FreeTexts(std::span<BSTR> texts) noexcept
{
    for (BSTR &text : texts)
    {
        BstrOwner::Adopt(std::exchange(text, nullptr));
    }
}
} // namespace

void LayOutItemRecord(ItemRecord *record) noexcept
{
    std::memset(record, 0, sizeof *record);
    BlankIptcHead(record->Iptc);
}

void ReleaseItemRecord(ItemRecord *record) noexcept
{
    if (record == nullptr)
    {
        return;
    }
    FreeTexts({&record->Path, 1});
    FreeTexts({&record->Extensions, 1});
    FreeTexts({&record->Text028, 1});
    FreeTexts(record->Texts0B0);
    FreeTexts({&record->ExifComment, 1});
    FreeTexts(record->CopyrightTexts);
    FreeTexts(record->Texts0F0);
    FreeTexts({&record->Text170, 1});
    ReleaseIptcBlock(record->Iptc);
}

void ReleaseIptcBlock(IptcBlock &iptc) noexcept
{
    FreeTexts(iptc.Texts);
    BlankIptcHead(iptc);
}

ItemTexts ChooseItemTexts(const ItemRecord &record, const WCHAR *uploadName)
{
    ItemTexts texts;
    const BSTR caption = record.Iptc.Texts[IPTC_TEXT_CAPTION];
    texts.Title = caption ? BstrOwner::CopyOf(caption) : BstrOwner(WideView(uploadName));
    texts.Description = BstrOwner::CopyOf(record.Iptc.Texts[IPTC_TEXT_DESCRIPTION]);
    texts.Tags = BstrOwner::CopyOf(record.Iptc.Texts[IPTC_TEXT_KEYWORDS]);
    if (texts.Description.IsEmpty() && SysStringLen(record.ExifComment) > 0)
    {
        texts.Description = BstrOwner::CopyOf(record.ExifComment);
    }
    return texts;
}
