// Writes a record's metadata into a new file, group by group.
//
//     copyright   EXIF Artist, Copyright, UserComment; dc:creator, dc:rights, photoshop:Credit;
//                 IPTC By-line, Copyright Notice, Credit; the comment segments of a copied picture
//     EXIF        camera and shooting data of IFD0 and the EXIF directory, the maker note
//     XMP         xmp:Rating, xmp:Label, photoshop:Urgency
//     GPS         the GPS directory
//     IPTC        ImageDescription; title, caption, keywords, place, usage terms and the like as IPTC
//                 datasets and as their counterparts in XMP (IptcTexts.h)
//
// The privacy rule: a group that the user switched off leaves no byte in the published file. A list of
// what to remove can't promise that, since nobody knows every tag; so the rule is a list of what to keep.
// In a picture that keeps its pixels the encoder starts with copies of the source's blocks. Only if all
// five groups are wanted does the EXIF block stay, and is completed; otherwise every copied block is
// removed, and the wanted groups are written anew from the lists above. Maker notes and makers' own
// segments can't be looked into and may hold a place, an owner or a title: they are published with all
// five groups or not at all. XMP and IPTC blocks are always written anew. The EXIF block's own thumbnail is
// always removed: it may show what was cropped away or painted over. So may the previews that some cameras keep in
// their maker notes, whose forms only their makers know; these are published with the notes, and the README
// says so.
//
// Orientation isn't metadata: it says how the pixels lie, as the colour profile says how they look. Pixels
// that weren't turned keep it, whatever the switches say, and so do pixels in Adobe RGB the two fields that say
// so where there is no profile (ExifFields.h).
#pragma once

#include "host/MetadataSnapshots.h"

#include <wincodec.h>

#include <functional>
#include <string>

struct GroupSwitches
{
    bool copyright;
    bool exif;
    bool xmp;
    bool gps;
    bool iptc;
};

// Called with words in UTF-8 about what was left out, for the log.
using WritingNotice = std::function<void(const std::string &words)>;

// What a new file holds before its metadata is written.
enum class NewFrame
{
    Processed, // pixels that were decoded and turned upright
    Intact,    // the source's pixels
    Copied     // the source's pixels and copies of its metadata blocks
};

// A group that is switched off or blank in the record leaves nothing behind. Throws the code of a removal
// from a copied frame that failed; a single value that can't be written is left out and noticed. Returns what was
// left out for want of room, in words for the log: first the maker note, then the longest texts.
std::string WriteRecordMetadata(IWICMetadataQueryWriter &writer, const ItemRecord &record,
                                const MetadataSnapshots &snapshots, const GroupSwitches &switches, NewFrame frame,
                                const WritingNotice &notice);
