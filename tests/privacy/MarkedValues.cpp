#include "tests/privacy/MarkedValues.h"

using namespace std::string_literals;

// Copyright: artist, copyright, comment. EXIF: camera and shooting data. XMP: rating, label, urgency.
// IPTC: caption, title, keywords, location, usage rights. What one program's group names by another's
// word belongs to the group of its meaning, wherever it lies.
const std::vector<MarkedPlace> ExifPlaces{
    {"Exif.Image.Artist", "qzArtistIfd0", {Copyright}},
    {"Exif.Image.Copyright", "qzCopyrightIfd0", {Copyright}},
    {"Exif.Image.XPAuthor", "qzXpAuthor", {Copyright}},
    {"Exif.Image.XPComment", "qzXpComment", {Copyright}},
    {"Exif.Photo.UserComment", "qzUserComment", {Copyright}},
    {"Exif.Photo.CameraOwnerName", "qzCameraOwner", {Exif, Copyright}},
    {"Exif.Thumbnail.Artist", "qzArtistIfd1", {Copyright}},
    {"Exif.Thumbnail.Copyright", "qzCopyrightIfd1", {Copyright}},
    {"Exif.Thumbnail.Model", "qzModelIfd1", {Exif}},
    {"Exif.Image.Model", "qzModelIfd0", {Exif}},
    {"Exif.Image.Software", "qzSoftware", {Exif}},
    {"Exif.Photo.LensModel", "qzLensModel", {Exif}},
    {"Exif.Photo.BodySerialNumber", "qzBodySerial", {Exif}},
    {"Exif.Panasonic.InternalSerialNumber", "qzMakerSerial", {Exif}},
    {"Exif.Panasonic.City", "qzMakerCity", {Exif | Gps}},
    {"Exif.Panasonic.Landmark", "qzMakerLandmark", {Exif | Gps}},
    {"Exif.GPSInfo.GPSProcessingMethod", "qzGpsMethod", {Gps}},
    {"Exif.GPSInfo.GPSAreaInformation", "qzGpsArea", {Gps}},
    {"Exif.GPSInfo.GPSMapDatum", "qzGpsDatum", {Gps}},
    {"Exif.GPSInfo.GPSDateStamp", "1971:02:03", {Gps}},
    {"Exif.Photo.DateTimeOriginal", "1972:03:04 05:06:07", {Exif}},
    {"Exif.Photo.ImageUniqueID", "qzUniqueId", {Exif}},
    {"Exif.Image.HostComputer", "qzHostComputer", {Exif}},
    {"Exif.Image.DocumentName", "qzDocumentName", {Exif, Iptc}},
    {"Exif.Photo.0xa436", "qzExif3Title", {Iptc}},
    {"Exif.Photo.0xa437", "qzExif3Photographer", {Copyright}},
    {"Exif.Image.0x02bd", "<x qzXmpGpsInIfd0/>", {AllGroups}},
    {"Exif.Image.0x83bc", "qzIptcInIfd0", {AllGroups}},
    {"Exif.Image.0x864a", "8BIMqzResourceInIfd0", {AllGroups}},
    {"Exif.Image.ImageDescription", "qzImageDescription", {Iptc}},
    {"Exif.Image.XPTitle", "qzXpTitle", {Iptc}},
    {"Exif.Image.XPSubject", "qzXpSubject", {Iptc}},
    {"Exif.Image.XPKeywords", "qzXpKeywords", {Iptc}},
};

const std::vector<MarkedPlace> IptcPlaces{
    {"Iptc.Application2.Caption", "qzIptcCaption", {Iptc}},
    {"Iptc.Application2.ObjectName", "qzIptcTitle", {Iptc}},
    {"Iptc.Application2.Keywords", "qzIptcKeyword", {Iptc}},
    {"Iptc.Application2.City", "qzIptcCity", {Iptc}},
    {"Iptc.Application2.SubLocation", "qzIptcSubLocation", {Iptc}},
    {"Iptc.Application2.Byline", "qzIptcByline", {Iptc, Copyright}},
    {"Iptc.Application2.Copyright", "qzIptcCopyright", {Iptc, Copyright}},
    {"Iptc.Application2.Credit", "qzIptcCredit", {Iptc, Copyright}},
};

const std::vector<MarkedPlace> XmpPlaces{
    {"Xmp.xmp.Label", "qzXmpLabel", {Xmp}},
    {"Xmp.dc.title", "qzXmpTitle", {Iptc}},
    {"Xmp.dc.description", "qzXmpDescription", {Iptc}},
    {"Xmp.dc.subject", "qzXmpSubject", {Iptc}},
    {"Xmp.photoshop.City", "qzXmpCity", {Iptc}},
    {"Xmp.photoshop.Credit", "qzXmpCredit", {Iptc, Copyright}},
    {"Xmp.dc.creator", "qzXmpCreator", {Iptc, Copyright}},
    {"Xmp.dc.rights", "qzXmpRights", {Iptc, Copyright}},
    {"Xmp.xmpRights.UsageTerms", "qzXmpUsage", {Iptc, Copyright}},
    {"Xmp.exif.UserComment", "qzXmpComment", {Copyright}},
    {"Xmp.exif.GPSLatitude", "47,13.8264135N", {Gps}},
    {"Xmp.exif.GPSProcessingMethod", "qzXmpGps", {Gps}},
    {"Xmp.aux.SerialNumber", "qzXmpSerial", {Exif}},
    {"Xmp.tiff.Model", "qzXmpModel", {Exif}},
};

// Segments that are no EXIF, XMP or IPTC, or more of it than the usual. What programs put into segments of
// their own can be anything, so these go only with everything.
const std::vector<MarkedPlace> OtherPlaces{
    {"COM", "qzComment", {Copyright}},
    {"second COM", "qzSecondComment", {Copyright}},
    {"APP1, extended XMP", "qzExtendedXmpGps", {Gps}},
    {"APP6, telemetry of an action camera", "qzTelemetryGps", {AllGroups}},
    {"APP12, picture information", "qzDuckyComment", {AllGroups}},
    {"APP1, second EXIF block", "qzSecondExifGps", {}},
    {"APP2, list of further pictures", "qzFurtherPictures", {AllGroups}},
    {"APP13, second segment", "qzSecondResources", {Iptc}},
    {"COM before the first scan", "qzLateComment", {Copyright}},
    {"APP1 before the first scan", "qzLateExifGps", {}},
    {"APP6 between two scans", "qzLaterTelemetryGps", {AllGroups}},
    {"thumbnail, COM", "qzThumbComment", {Exif | Copyright}},
    {"thumbnail, EXIF", "qzThumbGps", {Exif | Gps}},
    {"unused bytes in the EXIF block", "qzStaleGps", {}},
    {"APP11, content credentials", "qzCredentials", {AllGroups}},
    {"APP2, a gain map's announcement", "qzGainMap", {}},
    {"second picture behind the end", "qzTrailerGps", {}},
    {"a motion photo's video behind that", "qzVideoGps", {}},
};

// Programs write what they like under these keywords, so nothing of it goes into a new picture.
const std::vector<MarkedPlace> PngPlaces{
    {"PNG tEXt Author", "qzPngAuthor", {}},
    {"PNG tEXt Comment", "qzPngComment", {}},
    {"PNG tEXt GPSPosition", "qzPngGps 47.231 8.452", {}},
    {"PNG iTXt Location", "qzPngLocation", {}},
    {"PNG tEXt Software", "qzPngSoftware", {}},
    {"PNG tEXt Description", "qzPngDescription", {}},
};

const std::vector<MarkedValue> &MarkedValues()
{
    static const std::vector<MarkedValue> Values = [] {
        std::vector<MarkedValue> all;
        for (const auto *Places : {&ExifPlaces, &IptcPlaces, &XmpPlaces, &OtherPlaces, &PngPlaces})
        {
            for (const MarkedPlace &place : *Places)
            {
                all.push_back({place.key, place.value, true, place.leave});
            }
        }
        for (const bool isBigEndian : {false, true})
        {
            all.push_back(
                {"Exif.GPSInfo.GPSLatitude",
                 NumberBytes(SecondsNumerator, 4, isBigEndian) + NumberBytes(SecondsDenominator, 4, isBigEndian),
                 false,
                 {Gps}});
        }
        return all;
    }();
    return Values;
}

std::string NumberBytes(size_t value, int count, bool isBigEndian)
{
    std::string bytes;
    for (int place = 0; place < count; ++place)
    {
        bytes += static_cast<char>(value >> 8 * (isBigEndian ? count - 1 - place : place) & 0xFF);
    }
    return bytes;
}

std::string WideBytes(const std::string &text, bool isBigEndian)
{
    std::string wide;
    for (const char unit : text)
    {
        wide += NumberBytes(static_cast<unsigned char>(unit), 2, isBigEndian);
    }
    return wide;
}

size_t FindValue(const std::string &file, const MarkedValue &value)
{
    size_t found = file.find(value.bytes);
    for (const bool isBigEndian : {false, true})
    {
        if (found == std::string::npos && value.isText)
        {
            found = file.find(WideBytes(value.bytes, isBigEndian));
        }
    }
    return found;
}
