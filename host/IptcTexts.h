// The texts of the record's IPTC group beside title, description and keywords: where each lies in the
// two kinds of metadata that hold it.
#pragma once

#include "core/WideText.h"

#include <cstddef>

struct IptcTextPlace
{
    UINT number;            // of IptcBlock's texts
    const char *xmpKey;     // names of the metadata library
    const char *iptcKey;    // null where the dataset doesn't exist
    const WCHAR *property;  // of the query "/xmp/..."
    const WCHAR *dataset;   // of the query "/app13/irb/8bimiptc/iptc/{str=...}", null as iptcKey
};

inline constexpr IptcTextPlace IPTC_TEXT_PLACES[] = {
    {0, "Xmp.photoshop.Headline", "Iptc.Application2.Headline", TEXT("photoshop:Headline"), TEXT("Headline")},
    {1, "Xmp.photoshop.City", "Iptc.Application2.City", TEXT("photoshop:City"), TEXT("City")},
    {2, "Xmp.iptc.Location", "Iptc.Application2.SubLocation", TEXT("iptc:Location"), TEXT("Sub-location")},
    {3, "Xmp.photoshop.State", "Iptc.Application2.ProvinceState", TEXT("photoshop:State"), TEXT("Province\\/State")},
    {4, "Xmp.photoshop.Country", "Iptc.Application2.CountryName", TEXT("photoshop:Country"),
     TEXT("Country\\/Primary Location Name")},
    {5, "Xmp.iptc.CountryCode", "Iptc.Application2.CountryCode", TEXT("iptc:CountryCode"),
     TEXT("Country\\/Primary Location Code")},
    {6, "Xmp.photoshop.Instructions", "Iptc.Application2.SpecialInstructions", TEXT("photoshop:Instructions"),
     TEXT("Special Instructions")},
    {7, "Xmp.photoshop.CaptionWriter", "Iptc.Application2.Writer", TEXT("photoshop:CaptionWriter"),
     TEXT("Writer\\/Editor")},
    {8, "Xmp.photoshop.Source", "Iptc.Application2.Source", TEXT("photoshop:Source"), TEXT("Source")},
    {9, "Xmp.photoshop.TransmissionReference", "Iptc.Application2.TransmissionReference",
     TEXT("photoshop:TransmissionReference"), TEXT("Original Transmission Reference")},
    {10, "Xmp.photoshop.AuthorsPosition", "Iptc.Application2.BylineTitle", TEXT("photoshop:AuthorsPosition"),
     TEXT("By-line Title")},
    {11, "Xmp.xmpRights.UsageTerms", nullptr, TEXT("xmpRights:UsageTerms"), nullptr},
    {12, "Xmp.xmpRights.WebStatement", nullptr, TEXT("xmpRights:WebStatement"), nullptr},
    {13, "Xmp.iptc.IntellectualGenre", nullptr, TEXT("iptc:IntellectualGenre"), nullptr},
};
