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

struct IptcTextPlace
{
    UINT number;           // of IptcBlock's texts
    const WCHAR *property; // of the query "/xmp/..."
    IptcDataset dataset;
};

inline constexpr IptcTextPlace IptcTextPlaces[] = {
    {0, TEXT("photoshop:Headline"), {105, TEXT("Headline")}},
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
