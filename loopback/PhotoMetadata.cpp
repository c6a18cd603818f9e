#include "loopback/PhotoMetadata.h"

#include "com/Utf8.h"

#include <exiv2/exiv2.hpp>

#include <mutex>

namespace loopback
{

namespace
{

constexpr std::size_t LongestValue = 1000;

// An IPTC text that isn't UTF-8 is taken for Latin-1: files seldom declare its character set.
std::string AsUtf8(const std::string &bytes)
{
    if (IsUtf8(bytes))
    {
        return bytes;
    }
    std::string text;
    for (const char c : bytes)
    {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80)
        {
            text += c;
        }
        else
        {
            text += {static_cast<char>(0xC0 | (byte >> 6)), static_cast<char>(0x80 | (byte & 0x3F))};
        }
    }
    return text;
}

std::string Shortened(std::string text)
{
    if (text.size() > LongestValue)
    {
        text.resize(LongestValue);
        // Don't cut in the middle of a character.
        while (!text.empty() && !IsUtf8(text))
        {
            text.pop_back();
        }
        text += "…";
    }
    return text;
}

template <typename Datum>
std::string Printed(const Datum &datum, const Exiv2::ExifData *exif)
{
    return Shortened(AsUtf8(datum.print(exif)));
}

template <typename Data>
void AddEntries(const Data &data, MetadataGroup &group, const Exiv2::ExifData *exif = nullptr)
{
    for (const auto &datum : data)
    {
        group.entries.emplace_back(datum.key(), Printed(datum, exif));
    }
}

void AddExif(const Exiv2::ExifData &data, MetadataGroup &exif, MetadataGroup &gps)
{
    for (const auto &datum : data)
    {
        // Skip the pointers to the other two directories: they say nothing about the picture.
        if (datum.key() == "Exif.Image.ExifTag" || datum.key() == "Exif.Image.GPSTag")
        {
            continue;
        }
        const bool isOpaque = datum.size() > 4096 || datum.groupName().starts_with("Thumbnail");
        MetadataGroup &group = datum.groupName() == "GPSInfo" ? gps : exif;
        group.entries.emplace_back(datum.key(),
                                   isOpaque ? std::to_string(datum.size()) + " bytes" : Printed(datum, &data));
    }
}

} // namespace

PhotoFacts ReadPhotoFacts(const std::filesystem::path &file)
{
    // exiv2's XMP parser isn't thread-safe.
    static std::mutex oneReader;
    std::lock_guard lock(oneReader);
    MetadataGroup exif{"EXIF"};
    MetadataGroup gps{"GPS"};
    MetadataGroup iptc{"IPTC"};
    MetadataGroup xmp{"XMP"};
    MetadataGroup comment{"Comment"};
    PhotoFacts facts;
    try
    {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        const auto image = Exiv2::ImageFactory::open(file.string());
        image->readMetadata();
        facts.width = image->pixelWidth();
        facts.height = image->pixelHeight();
        facts.profileSize = image->iccProfileDefined() ? static_cast<std::size_t>(image->iccProfile()->size_) : 0;
        AddExif(image->exifData(), exif, gps);
        AddEntries(image->iptcData(), iptc);
        AddEntries(image->xmpData(), xmp);
        if (!image->comment().empty())
        {
            comment.entries.emplace_back("Comment", Shortened(AsUtf8(image->comment())));
        }
    }
    catch (const std::exception &)
    {
        // Keep what was read before the error.
    }
    for (auto *group : {&exif, &gps, &iptc, &xmp, &comment})
    {
        if (!group->entries.empty())
        {
            facts.groups.push_back(std::move(*group));
        }
    }
    return facts;
}

} // namespace loopback
