// Chooses a picture's texts and numbers among the metadata blocks that hold them, whichever library reads
// the blocks.
#pragma once

#include "host/ImageTexts.h"
#include "host/IptcTexts.h"
#include "host/MetadataSnapshots.h"
#include "host/TextEncodings.h"

#include <optional>
#include <string_view>
#include <vector>

// One file's blocks as a reader gives them. An absent or broken value reads as empty; texts come without
// padding.
class MetadataTexts
{
public:
    // property is a prefix and a name, "dc:title". Of alternatives the default one.
    virtual WideText Xmp(const WCHAR *property) const = 0;
    virtual std::vector<WideText> XmpList(const WCHAR *property) const = 0;
    virtual WideText Iptc(const IptcDataset &dataset) const = 0;
    virtual std::vector<WideText> IptcList(const IptcDataset &dataset) const = 0;
    // Of the main directory, in EXIF's own encoding; ExifWindowsText in that of the tags that Windows writes.
    virtual WideText Exif(WORD tag) const = 0;
    virtual WideText ExifWindowsText(WORD tag) const = 0;
    virtual WideText ExifUserComment() const = 0;
    virtual std::optional<long> ExifRating() const = 0;
    virtual WideText FileComment() const = 0;

protected:
    ~MetadataTexts() = default;
};

// By the table of ImageTexts.h.
ImageTexts ChooseTexts(const MetadataTexts &blocks);

// The snapshot's rating, urgency and label.
void ChooseNumbers(const MetadataTexts &blocks, MetadataSnapshot &groups);

// UTF-8, or the Latin of older writers.
WideText TextOfBytes(std::string_view bytes);

// The tags that Windows writes: UTF-16 in little endian whatever the file's own order is.
WideText WindowsTextOfBytes(std::string_view bytes);

// A text behind 8 bytes that name its character set. order is the file's.
WideText CharsetTextOfBytes(std::string_view bytes, ByteOrder16 order);
