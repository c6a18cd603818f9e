// The texts of the record's IPTC group other than title, description and keywords, and where XMP and IPTC
// hold each of them.
#pragma once

#include "com/WideText.h"

// Of IPTC's second record.
struct IptcDataset
{
    WORD number;
    const WCHAR *name; // of the query "/app13/irb/8bimiptc/iptc/{str=...}"; null for no dataset
};

namespace Dataset
{
inline constexpr IptcDataset ObjectName = {5, TEXT("Object Name")};
inline constexpr IptcDataset Urgency = {10, TEXT("Urgency")};
inline constexpr IptcDataset Keywords = {25, TEXT("Keywords")};
inline constexpr IptcDataset Byline = {80, TEXT("By-line")};
inline constexpr IptcDataset Headline = {105, TEXT("Headline")};
inline constexpr IptcDataset Credit = {110, TEXT("Credit")};
inline constexpr IptcDataset Copyright = {116, TEXT("Copyright Notice")};
inline constexpr IptcDataset Caption = {120, TEXT("Caption")};
} // namespace Dataset

struct IptcTextPlace
{
    UINT number;           // of IptcBlock's texts
    const WCHAR *property; // of the query "/xmp/..."
    IptcDataset dataset;
};

inline constexpr IptcTextPlace IptcTextPlaces[] = {
    {0, TEXT("photoshop:Headline"), Dataset::Headline},
    {1, TEXT("photoshop:City"), {90, TEXT("City")}},
    {2, TEXT("iptc:Location"), {92, TEXT("Sub-location")}},
    {3, TEXT("photoshop:State"), {95, TEXT("Province\\/State")}},
    {4, TEXT("photoshop:Country"), {101, TEXT("Country\\/Primary Location Name")}},
    {5, TEXT("iptc:CountryCode"), {100, TEXT("Country\\/Primary Location Code")}},
    {6, TEXT("photoshop:Instructions"), {40, TEXT("Special Instructions")}},
    {7, TEXT("photoshop:CaptionWriter"), {122, TEXT("Writer\\/Editor")}},
    {8, TEXT("photoshop:Source"), {115, TEXT("Source")}},
    {9, TEXT("photoshop:TransmissionReference"), {103, TEXT("Original Transmission Reference")}},
    {10, TEXT("photoshop:AuthorsPosition"), {85, TEXT("By-line Title")}},
    {11, TEXT("xmpRights:UsageTerms"), {}},
    {12, TEXT("xmpRights:WebStatement"), {}},
    {13, TEXT("iptc:IntellectualGenre"), {}},
};
