// Life of the record through which host and plug-in tell each other of one picture. The structure
// itself is part of the host contract.
#pragma once

#include "HostContract.h"

static_assert(sizeof(ItemRecord) == 656, "the host relies on the layout");

// Everything zero and every text absent, the IPTC group blank. Frees nothing.
void LayOutItemRecord(ItemRecord *record) noexcept;

// Frees every text that is set and blanks the IPTC group; may be repeated. Null does nothing.
void ReleaseItemRecord(ItemRecord *record) noexcept;

// Frees the texts of the IPTC group and gives it its empty form; may be repeated.
void ReleaseIptcBlock(IptcBlock &iptc) noexcept;

// A record that is laid out from its first moment and released at its last.
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
