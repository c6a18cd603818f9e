// The EXIF block of a picture as a tree of directories that can be changed and written anew.
//
// Of our own, although the metadata library in this process (TextMetadata.h) writes such blocks too, for a promise:
// what was removed leaves no byte behind. The library may change a block where it lies, and promises nothing for
// bytes that no entry points to any more; and a maker note that it knows it takes apart and writes anew. Here
// a block is always written anew, with what is in the tree and nothing else, and a maker note byte for byte.
//
// Reading is tolerant: an entry that points outside of the block is left out, the rest stays. Left
// out are also the thumbnail, descriptions of further pictures (SubIFDs, strips), copies of XMP and IPTC, padding, and
// directories that no reader looks for.
#pragma once

#include "platform/windowscodecs/jpeg/StreamBytes.h"

#include <map>
#include <optional>
#include <vector>

namespace ExifTag
{
constexpr WORD XmpPacket = 700;
constexpr WORD XResolution = 282;
constexpr WORD YResolution = 283;
constexpr WORD ResolutionUnit = 296;
constexpr WORD IptcRecords = 33723;
constexpr WORD PhotoshopResources = 34377;
constexpr WORD ExifDirectory = 34665;
constexpr WORD GpsDirectory = 34853;
constexpr WORD InteropDirectory = 40965;
constexpr WORD MakerNote = 37500;
constexpr WORD UserComment = 37510;
constexpr WORD ThumbnailOffset = 513;
constexpr WORD ThumbnailLength = 514;
} // namespace ExifTag

// TIFF 6.0's field types.
enum ExifType : WORD
{
    EXIF_BYTE = 1,
    EXIF_ASCII = 2,
    EXIF_SHORT = 3,
    EXIF_LONG = 4,
    EXIF_RATIONAL = 5,
    EXIF_SBYTE = 6,
    EXIF_UNDEFINED = 7,
    EXIF_SSHORT = 8,
    EXIF_SLONG = 9,
    EXIF_SRATIONAL = 10,
    EXIF_FLOAT = 11,
    EXIF_DOUBLE = 12
};

// Bytes of one element, and of the parts whose bytes the byte order reverses; 0 for an unknown type.
UINT ExifElementBytes(WORD type) noexcept;
UINT ExifPieceBytes(WORD type) noexcept;

struct ExifEntry
{
    WORD Tag;
    WORD Type;
    Bytes Data; // in the byte order of the block
};

struct ExifDirectory
{
    std::vector<ExifEntry> Entries;
    std::map<WORD, ExifDirectory> Children; // by the tag that points to them

    bool IsEmpty() const noexcept;
    const ExifEntry *Find(WORD tag) const noexcept;
    void Set(ExifEntry entry);
    bool Remove(WORD tag);
};

class ExifBlock
{
public:
    ExifDirectory Main; // IFD0, with the EXIF, GPS and interoperability directories
    bool BigEndian = false;

    // The contents of an APP1 segment, signature included. nullopt if no IFD0 can be read.
    static std::optional<ExifBlock> Read(const Bytes &contents);

    bool IsEmpty() const noexcept { return Main.IsEmpty(); }

    // Turns the elements of a value from little-endian into the block's order, and back.
    void ConvertOrder(ExifEntry &entry) const noexcept;

    // Both axes in dots per inch. Get returns false for none, and for one that is 0 or has no unit.
    void SetResolution(double x, double y);
    bool GetResolution(double &x, double &y) const;

    // Whether it can be written, also after SetResolution.
    bool Fits() const;

    // The contents of an APP1 segment. A maker note keeps its place in the block where that can be,
    // since its own offsets often count from the block's start. Throws WINCODEC_ERR_TOOMUCHMETADATA.
    Bytes Write() const;

private:
    friend class ExifReader;
    UINT m_makerNoteOffset = 0;
};
