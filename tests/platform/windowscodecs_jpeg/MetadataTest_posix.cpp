// What queries write into a file, as another reader finds it, and that what they remove is gone.
#include "tests/platform/windowscodecs_jpeg/CodecUse_posix.h"

#include <gtest/gtest.h>

namespace
{
WideText TagPath(const WCHAR *directory, int tag)
{
    const std::string digits = std::to_string(tag);
    return WideText(directory) + TEXT("/{ushort=") + WideText(digits.begin(), digits.end()) + TEXT("}");
}

struct Entry
{
    WideText Path;
    PROPVARIANT Value;
    std::string Tag;
    std::string Expected;
};

std::vector<Entry> Entries()
{
    static const WideText Caption = TEXT("Caf\x00E9 \x65E5\x672C");
    static unsigned char version[] = {2, 3, 0, 0};
    static ULARGE_INTEGER degrees[3] = {
        {.QuadPart = 1ull << 32 | 47}, {.QuadPart = 1ull << 32 | 30}, {.QuadPart = 100ull << 32 | 1234}};
    PROPVARIANT versionBytes{};
    versionBytes.vt = VT_VECTOR | VT_UI1;
    versionBytes.caub = {4, version};
    PROPVARIANT latitude{};
    latitude.vt = VT_VECTOR | VT_UI8;
    latitude.cauh = {3, degrees};
    PROPVARIANT bias{};
    bias.vt = VT_I8;
    bias.hVal.QuadPart = static_cast<LONGLONG>(3ull << 32 | 0xFFFFFFFFull);
    static WCHAR *words[] = {const_cast<WCHAR *>(TEXT("sea")), const_cast<WCHAR *>(TEXT("wind"))};
    PROPVARIANT keywords{};
    keywords.vt = VT_VECTOR | VT_LPWSTR;
    keywords.calpwstr = {2, words};
    const WCHAR *ifd = TEXT("/app1/ifd");
    const WCHAR *exif = TEXT("/app1/ifd/exif");
    const WCHAR *gps = TEXT("/app1/ifd/gps");
    return {
        {TagPath(ifd, 271), QueryValue::Narrow("Maker-secret"), "IFD0:Make", "Maker-secret"},
        {TagPath(ifd, 274), QueryValue::Short(6), "IFD0:Orientation", "6"},
        {TagPath(ifd, 315), QueryValue::Text(TEXT("Artist-secret")), "IFD0:Artist", "Artist-secret"},
        {TagPath(exif, 33434), QueryValue::Rational(1, 125), "ExifIFD:ExposureTime", "0.008"},
        {TagPath(exif, 34855), QueryValue::Short(400), "ExifIFD:ISO", "400"},
        {TagPath(exif, 37380), bias, "ExifIFD:ExposureCompensation", "-0.3333333333"},
        {TagPath(exif, 37510), QueryValue::Text(Caption.c_str()), "ExifIFD:UserComment",
         "Caf\xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC"},
        {TagPath(exif, 41985), QueryValue::Short(1), "ExifIFD:CustomRendered", "1"},
        {TagPath(TEXT("/app1/ifd/exif/interop"), 1), QueryValue::Narrow("R98"), "InteropIFD:InteropIndex", "R98"},
        {TagPath(gps, 0), versionBytes, "GPS:GPSVersionID", "2 3 0 0"},
        {TagPath(gps, 1), QueryValue::Narrow("N"), "GPS:GPSLatitudeRef", "N"},
        {TagPath(gps, 2), latitude, "GPS:GPSLatitude", "47.5034277777778"},
        {TEXT("/xmp/xmp:Rating"), QueryValue::Text(TEXT("4")), "XMP-xmp:Rating", "4"},
        {TEXT("/xmp/dc:title"), QueryValue::Text(Caption.c_str()), "XMP-dc:Title",
         "Caf\xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC"},
        {TEXT("/xmp/<xmpbag>dc:subject"), keywords, "XMP-dc:Subject", "sea, wind"},
        {TEXT("/xmp/photoshop:Urgency"), QueryValue::Text(TEXT("3")), "XMP-photoshop:Urgency", "3"},
        {TEXT("/app13/irb/8bimiptc/iptc/{str=Caption}"), QueryValue::Text(Caption.c_str()),
         "IPTC:Caption-Abstract", "Caf\xC3\xA9 \xE6\x97\xA5\xE6\x9C\xAC"},
        {TEXT("/app13/irb/8bimiptc/iptc/{str=Keywords}"), keywords, "IPTC:Keywords", "sea, wind"},
        {TEXT("/app13/irb/8bimiptc/iptc/{str=Country\\/Primary Location Name}"), QueryValue::Text(TEXT("Norge")),
         "IPTC:Country-PrimaryLocationName", "Norge"},
    };
}

Octets WriteEntries(const std::vector<Entry> &entries, ULONG chosen)
{
    Octets result;
    const HRESULT code = Rewrite(
        MakeJpeg({}),
        {.Edit =
             [&](IWICMetadataQueryWriter *writer) {
                 for (size_t i = 0; i < entries.size(); ++i)
                 {
                     if (chosen >> i & 1)
                     {
                         EXPECT_EQ(S_OK, writer->SetMetadataByName(entries[i].Path.c_str(), &entries[i].Value));
                     }
                 }
             }},
        result);
    EXPECT_EQ(S_OK, code);
    return result;
}
} // namespace

TEST(MetadataQueries, WriteWhatExiftoolReads)
{
    const std::vector<Entry> entries = Entries();
    // Each alone, all together, and pseudo-random choices.
    std::vector<ULONG> choices = {(1u << entries.size()) - 1};
    for (size_t i = 0; i < entries.size(); ++i)
    {
        choices.push_back(1u << i);
    }
    for (ULONG seed = 1; choices.size() < 300; seed = seed * 69069 + 1)
    {
        choices.push_back(seed >> 7 & ((1u << entries.size()) - 1));
    }
    std::vector<Octets> files;
    for (const ULONG chosen : choices)
    {
        files.push_back(WriteEntries(entries, chosen));
    }
    const std::vector<TagValues> read = ReadWithExiftool(files);
    for (size_t number = 0; number < choices.size(); ++number)
    {
        const ULONG chosen = choices[number];
        const TagValues &tags = read[number];
        SCOPED_TRACE(chosen);
        EXPECT_EQ(0u, tags.count("Warning") + tags.count("Error"));
        for (size_t i = 0; i < entries.size(); ++i)
        {
            const auto found = tags.find(entries[i].Tag);
            EXPECT_EQ((chosen >> i & 1) != 0, found != tags.end()) << entries[i].Tag;
            EXPECT_TRUE(found == tags.end() || found->second == entries[i].Expected)
                << entries[i].Tag << " is " << found->second;
        }
    }
}

TEST(MetadataQueries, RefuseWhatMakesNoSense)
{
    const auto edit = [](IWICMetadataQueryWriter *writer) {
        const PROPVARIANT text = QueryValue::Text(TEXT("x"));
        PROPVARIANT nothing{};
        for (const WCHAR *path :
             {TEXT(""), TEXT("app1"), TEXT("/app99"), TEXT("/app1/ifd/{ushort=x}"), TEXT("/app1/ifd/{ushort=1"),
              TEXT("/app1/ifd/{ushort=65536}"), TEXT("/xmp/nosuchprefix:x"), TEXT("/xmp/plain"),
              TEXT("/app1/ifd/gps/exif/{ushort=1}"), TEXT("/app1/ifd/gps"), TEXT("/app1/thumb/{ushort=1}"),
              TEXT("//"), TEXT("/app13/irb/8bimiptc/iptc/{str=No Such Thing}"), TEXT("/com/Other")})
        {
            EXPECT_EQ(WINCODEC_ERR_INVALIDQUERYREQUEST, writer->SetMetadataByName(path, &text))
                << testing::PrintToString(path);
            EXPECT_EQ(WINCODEC_ERR_INVALIDQUERYREQUEST, writer->RemoveMetadataByName(path))
                << testing::PrintToString(path);
        }
        for (const WCHAR *path : {TEXT("/app1/ifd/{ushort=271}"), TEXT("/xmp/dc:title"),
                                  TEXT("/app13/irb/8bimiptc/iptc/{str=Caption}")})
        {
            EXPECT_EQ(WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE, writer->SetMetadataByName(path, &nothing))
                << testing::PrintToString(path);
        }
        for (const WCHAR *path : {TEXT("/xmp"), TEXT("/app13"), TEXT("/app1"), TEXT("/app1/thumb"),
                                  TEXT("/[1]app1"), TEXT("/app3"), TEXT("/com")})
        {
            EXPECT_EQ(WINCODEC_ERR_PROPERTYNOTFOUND, writer->RemoveMetadataByName(path))
                << testing::PrintToString(path);
        }
    };
    Octets result;
    EXPECT_EQ(S_OK, Rewrite(MakeJpeg({}), {.Edit = edit}, result));
}

TEST(Privacy, NewTextsTakeThePlaceOfTheOldOnes)
{
    const Octets source =
        MakeJpeg({.Markers = {{0xE1, std::string("http://ns.adobe.com/xap/1.0/\0", 29) +
                                         "<x:xmpmeta xmlns:x='adobe:ns:meta/'>secret</x:xmpmeta>"},
                              {0xED, std::string("Photoshop 3.0\0", 14) + "secret"}}});
    const auto edit = [](IWICMetadataQueryWriter *writer) {
        const PROPVARIANT text = QueryValue::Text(TEXT("blue"));
        EXPECT_EQ(S_OK, writer->SetMetadataByName(TEXT("/xmp/xmp:Label"), &text));
        EXPECT_EQ(S_OK, writer->SetMetadataByName(TEXT("/app13/irb/8bimiptc/iptc/{str=City}"), &text));
    };
    Octets result;
    ASSERT_EQ(S_OK, Rewrite(source, {.Edit = edit}, result));
    EXPECT_FALSE(Holds(result, "secret"));
    const TagValues tags = ReadWithExiftool(result);
    EXPECT_EQ("blue", tags.at("XMP-xmp:Label"));
    EXPECT_EQ("blue", tags.at("IPTC:City"));
    EXPECT_EQ(0u, tags.count("Warning"));
}

TEST(ExifBlock, NestsNoDeeperThanItsDirectoriesDo)
{
    // Each directory holds nothing but the next one, and the last a text.
    constexpr int depth = 4000;
    std::string block = "II*";
    const auto put = [&](unsigned value, int bytes) {
        for (; bytes > 0; --bytes, value >>= 8)
        {
            block += static_cast<char>(value & 0xFF);
        }
    };
    put(0, 1);
    put(8, 4);
    for (unsigned i = 0; i < depth; ++i)
    {
        put(1, 2);
        put(0x8769, 2);
        put(4, 2);
        put(1, 4);
        put(static_cast<unsigned>(block.size()) + 4, 4);
    }
    put(1, 2);
    put(271, 2);
    put(2, 2);
    put(4, 4);
    block += "sec";
    put(0, 5);
    Octets result;
    ASSERT_EQ(S_OK, Rewrite(MakeJpeg({.Markers = {{0xE1, std::string("Exif\0\0", 6) + block}}}), {}, result));
    EXPECT_FALSE(Holds(result, "sec"));
    EXPECT_LT(result.size(), 10000u);
}

TEST(Metadata, OfTwentyMegabytesStaysBehind)
{
    SampleOptions options;
    for (int i = 0; i < 320; ++i)
    {
        options.Markers.push_back({0xE5, std::string(65000, 'p')});
    }
    const Octets source = MakeJpeg(options);
    Octets result;
    ASSERT_EQ(S_OK, Rewrite(source, {}, result));
    EXPECT_LT(result.size(), 100000u);
    EXPECT_EQ(DecodeJpeg(source), DecodeJpeg(result));
}
