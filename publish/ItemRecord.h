// Creation and release of the record by which host and plug-in describe one picture to each other. The
// structure itself is part of the host contract. And the picture's texts at the service, which are chosen from it.
#pragma once

#include "com/BstrOwner.h"

#include "HostContract.h"

static_assert(sizeof(ItemRecord) == 656, "the host relies on the layout");

// Makes the record zero, every text absent and the IPTC group blank. Frees nothing.
void LayOutItemRecord(ItemRecord *record) noexcept;

// Frees every text that is set and blanks the IPTC group; may be repeated. Null does nothing.
void ReleaseItemRecord(ItemRecord *record) noexcept;

// Frees the texts of the IPTC group and gives it its empty form; may be repeated.
void ReleaseIptcBlock(IptcBlock &iptc) noexcept;

// Owner of a record: laid out by the constructor, released by the destructor.
class ItemRecordOwner
{
public:
    ItemRecordOwner() noexcept { LayOutItemRecord(&m_record); }
    ~ItemRecordOwner() { ReleaseItemRecord(&m_record); }
    ItemRecordOwner(const ItemRecordOwner &) = delete;
    ItemRecordOwner &operator=(const ItemRecordOwner &) = delete;

    ItemRecord *Get() noexcept { return &m_record; }
    const ItemRecord &operator*() const noexcept { return m_record; }

private:
    ItemRecord m_record;
};

// The texts of a picture at the service. They don't depend on which metadata groups stay inside the uploaded picture.
// Each may be absent (null), or present and empty.
struct ItemTexts
{
    BstrOwner Title;
    BstrOwner Description;
    BstrOwner Tags;
};

// Copies them from a record that the host's reader has filled. Without a caption the title is the upload name;
// an empty caption gives an empty title. Without a description the EXIF comment takes its place.
// E_OUTOFMEMORY is thrown.
ItemTexts ChooseItemTexts(const ItemRecord &record, const WCHAR *uploadName);
