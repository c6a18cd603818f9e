#include "loopback/PhotoMetadata.h"

#include <exiv2/exiv2.hpp>

#include <mutex>

namespace loopback
{

namespace
{

// Longer values are only counted.
constexpr long LongestValue = 4096;

template <typename Datum>
std::string Printed(const Datum &datum, const Exiv2::ExifData *exif)
{
    return datum.size() > LongestValue ? std::to_string(datum.size()) + " bytes" : datum.print(exif);
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
        MetadataGroup &group = datum.groupName() == "GPSInfo" ? gps : exif;
        group.entries.emplace_back(datum.key(), Printed(datum, &data));
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
            comment.entries.emplace_back("Comment", image->comment());
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
