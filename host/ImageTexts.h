// The texts of a picture, as they lie in its metadata and as the item record has them.
//
//     title        IptcCaption        XMP dc:title, IPTC ObjectName, EXIF XPTitle, XMP photoshop:Headline,
//                                     IPTC Headline
//     description  IptcDescription    XMP dc:description, IPTC Caption, EXIF ImageDescription
//     keywords     IptcKeywords       XMP dc:subject, IPTC Keywords, EXIF XPKeywords; joined with ";"
//     comment      ExifComment        EXIF UserComment, EXIF XPComment, XMP exif:UserComment, the JPEG
//                                     comment segment
//     artist       CopyrightTexts[0]  XMP dc:creator, IPTC Byline, EXIF Artist, EXIF XPAuthor
//     copyright    CopyrightTexts[1]  XMP dc:rights, IPTC Copyright, EXIF Copyright
//     credit       CopyrightTexts[2]  XMP photoshop:Credit, IPTC Credit
//
// The first source that holds a text wins. Keywords are not merged: a writer that keeps both blocks
// writes the same list twice, and one that keeps only the first has dropped words on purpose.
#pragma once

#include "com/WideText.h"

#include "HostContract.h"

#include <array>
#include <vector>

// Texts are empty where the file has none, free of NUL padding and white space at their end.
struct ImageTexts
{
    WideText title;
    WideText description;
    std::vector<WideText> keywords;
    WideText comment;
    WideText artist;
    WideText copyright;
    WideText credit;
    std::array<WideText, 32> places; // further texts of the record's IPTC group, by number (IptcTexts.h)

    bool operator==(const ImageTexts &) const = default;
};

// The keywords of a record: joined with ";". A ";" inside a keyword becomes ",", so that it stays one
// keyword; empty ones are left out.
WideText JoinKeywords(const std::vector<WideText> &keywords);

// Parts of a ";"-separated list, without blanks around them and without empty ones.
std::vector<WideText> SplitKeywords(WideView list);

// Puts the texts that are there into a laid-out record, whose texts are then its user's to free. An
// absent text stays null: an empty title would stand for "no title", not for "none known". Throws
// E_OUTOFMEMORY.
void FillTexts(ItemRecord &record, const ImageTexts &texts);
