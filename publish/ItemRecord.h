// Creation and release of the record by which host and plug-in describe one picture to each other. The
// structure itself is part of the host contract.
#pragma once

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
