#include "host/ImageMetadata.h"

#include "com/ErrnoCodes_posix.h"
#include "com/WholeFile.h"
#include "host/ExifFields.h"
#include "host/ExtendedXmp_posix.h"
#include "host/MetadataTexts.h"

#include "com/Hresult.h"

#include <wincodec.h>

#include <exiv2/exiv2.hpp>

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

namespace
{
std::mutex &ReadingLock()
{
    static std::mutex lock;
    return lock;
}

// The imaging component uses the same library from the plug-in's thread, and the library's XMP toolkit is
// initialized once for the process, with the lock function of the first caller.
void LockToolkit(void *, bool lock)
{
    static std::recursive_mutex toolkit;
    lock ? toolkit.lock() : toolkit.unlock();
}

// exiv2 wants its XMP toolkit started before a second thread uses it, and speaks on stderr by itself. Of files
// made of boxes (HEIF, AVIF, CR3) it reads nothing, and reports no failure, unless told to.
class Library
{
public:
    Library()
    {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        Exiv2::enableBMFF();
        Exiv2::XmpParser::initialize(LockToolkit, nullptr);
    }
    // It registers each namespace that it meets, and frees none by itself.
    ~Library() { Exiv2::XmpProperties::unregisterNs(); }
    Library(const Library &) = delete;
    Library &operator=(const Library &) = delete;
};

void StartLibraryOnce()
{
    static const Library Started;
    static_cast<void>(Started);
}

// What one file holds, with the readers of single values.
class MetadataBlocks final : public MetadataTexts
{
public:
    explicit MetadataBlocks(const Exiv2::Image &image) : m_image(image) {}

    WideText Xmp(const WCHAR *property) const override
    {
        const auto datum = m_image.xmpData().findKey(KeyOf(property));
        if (datum == m_image.xmpData().end() || datum->count() == 0)
        {
            return WideText();
        }
        if (const auto *alternatives = dynamic_cast<const Exiv2::LangAltValue *>(&datum->value()))
        {
            const auto chosen = alternatives->value_.find("x-default");
            return TextOfBytes(chosen != alternatives->value_.end() ? chosen->second
                                                                    : alternatives->value_.begin()->second);
        }
        return TextOfBytes(datum->toString(0));
    }

    std::vector<WideText> XmpList(const WCHAR *property) const override
    {
        std::vector<WideText> texts;
        const auto datum = m_image.xmpData().findKey(KeyOf(property));
        for (long i = 0; datum != m_image.xmpData().end() && i < datum->count(); ++i)
        {
            Append(texts, TextOfBytes(datum->toString(i)));
        }
        return texts;
    }

    WideText Iptc(const IptcDataset &dataset) const override
    {
        const auto datum =
            m_image.iptcData().findKey(Exiv2::IptcKey(dataset.number, Exiv2::IptcDataSets::application2));
        return datum == m_image.iptcData().end() ? WideText() : TextOfBytes(datum->toString());
    }

    std::vector<WideText> IptcList(const IptcDataset &dataset) const override
    {
        std::vector<WideText> texts;
        for (const Exiv2::Iptcdatum &datum : m_image.iptcData())
        {
            if (datum.tag() == dataset.number && datum.record() == Exiv2::IptcDataSets::application2)
            {
                Append(texts, TextOfBytes(datum.toString()));
            }
        }
        return texts;
    }

    WideText Exif(WORD tag) const override { return TextOfBytes(BytesOf(Exiv2::ExifKey(tag, "Image"))); }

    WideText ExifWindowsText(WORD tag) const override
    {
        return WindowsTextOfBytes(BytesOf(Exiv2::ExifKey(tag, "Image")));
    }

    WideText ExifUserComment() const override
    {
        return CharsetTextOfBytes(BytesOf(Exiv2::ExifKey("Exif.Photo.UserComment")),
                                  m_image.byteOrder() == Exiv2::bigEndian ? ByteOrder16::BigEndian
                                                                          : ByteOrder16::LittleEndian);
    }

    std::optional<long> ExifRating() const override
    {
        const auto datum = m_image.exifData().findKey(Exiv2::ExifKey("Exif.Image.Rating"));
        return datum != m_image.exifData().end() && datum->count() > 0 ? std::optional(datum->toLong())
                                                                       : std::nullopt;
    }

    WideText FileComment() const override { return TextOfBytes(m_image.comment()); }

private:
    static Exiv2::XmpKey KeyOf(const WCHAR *property)
    {
        const WideView name(property);
        const size_t colon = name.find(':');
        return Exiv2::XmpKey(std::string(name.begin(), name.begin() + static_cast<ptrdiff_t>(colon)),
                             std::string(name.begin() + static_cast<ptrdiff_t>(colon) + 1, name.end()));
    }

    static void Append(std::vector<WideText> &texts, WideText text)
    {
        if (!text.empty())
        {
            texts.push_back(std::move(text));
        }
    }

    std::string BytesOf(const Exiv2::ExifKey &key) const
    {
        const auto datum = m_image.exifData().findKey(key);
        if (datum == m_image.exifData().end() || datum->size() <= 0)
        {
            return std::string();
        }
        std::vector<Exiv2::byte> bytes(static_cast<size_t>(datum->size()));
        const long length = datum->copy(bytes.data(), m_image.byteOrder());
        return std::string(bytes.begin(), bytes.begin() + std::max(0L, length));
    }

    const Exiv2::Image &m_image;
};

class GroupReading
{
public:
    GroupReading(const Exiv2::Image &image, MetadataSnapshot &groups) : m_groups(groups), m_fields(groups)
    {
        for (const Exiv2::Exifdatum &datum : image.exifData())
        {
            Take(datum);
        }
    }

    // Takes fields that a file has in XMP only, as PNG files and some raw files do.
    void TakeFromXmp(const Exiv2::XmpData &xmp)
    {
        Exiv2::ExifData converted;
        try
        {
            Exiv2::copyXmpToExif(xmp, converted);
        }
        catch (const Exiv2::AnyError &)
        {
            // What was converted up to here is taken.
        }
        // Never combine GPS tags from EXIF and XMP: a latitude of one with a longitude of the other is a wrong
        // position.
        const bool hasPlace = !m_groups.gps.empty();
        for (const Exiv2::Exifdatum &datum : converted)
        {
            if (datum.groupName() != "GPSInfo" || !hasPlace)
            {
                Take(datum);
            }
        }
    }

private:
    void Take(const Exiv2::Exifdatum &datum)
    {
        using enum ExifField::Directory;
        const std::string group = datum.groupName();
        if (group == "Image" && datum.tag() == ExifTag::Orientation && datum.count() > 0)
        {
            m_groups.orientation = ValidOrientation(datum.toLong());
        }
        else if (group == "Image" || group == "Photo" || group == "GPSInfo")
        {
            Keep(group == "Image" ? Main : group == "Photo" ? Exif : Gps, datum);
        }
    }

    void Keep(ExifField::Directory directory, const Exiv2::Exifdatum &datum)
    {
        const size_t size = datum.size() > 0 ? static_cast<size_t>(datum.size()) : 0;
        const auto type = static_cast<WORD>(datum.typeId());
        if (!m_fields.Wants(directory, datum.tag(), type, size))
        {
            return;
        }
        ExifField field{directory, datum.tag(), type, std::vector<BYTE>(size)};
        if (datum.copy(field.data.data(), Exiv2::littleEndian) == static_cast<long>(size))
        {
            m_fields.Keep(std::move(field));
        }
    }

    MetadataSnapshot &m_groups;
    SnapshotFields m_fields;
};

bool TellsAdobeRgb(const Exiv2::ExifData &exif)
{
    const auto space = exif.findKey(Exiv2::ExifKey("Exif.Photo.ColorSpace"));
    const auto index = exif.findKey(Exiv2::ExifKey("Exif.Iop.InteroperabilityIndex"));
    return space != exif.end() && space->count() > 0 &&
           IsAdobeRgb(space->toLong(), index != exif.end() ? index->toString() : std::string());
}

MetadataSnapshot ReadGroups(const Exiv2::Image &image, const MetadataBlocks &blocks)
{
    MetadataSnapshot groups;
    GroupReading reading(image, groups);
    reading.TakeFromXmp(image.xmpData());
    ChooseNumbers(blocks, groups);
    groups.isAdobeRgb = TellsAdobeRgb(image.exifData());
    return groups;
}

// Adds the properties that a JPEG file's further packet holds.
void AddExtendedXmp(const std::filesystem::path &file, Exiv2::XmpData &xmp)
{
    // By its name alone: the library makes no key of a prefix that it hasn't read yet.
    const auto identifier = std::find_if(
        xmp.begin(), xmp.end(), [](const Exiv2::Xmpdatum &datum) { return datum.tagName() == "HasExtendedXMP"; });
    if (identifier == xmp.end())
    {
        return;
    }
    Exiv2::XmpData extension;
    const std::string packet = ReadExtendedXmp(file, identifier->toString());
    if (packet.empty() || Exiv2::XmpParser::decode(extension, packet) != 0)
    {
        return;
    }
    for (const Exiv2::Xmpdatum &datum : extension)
    {
        if (xmp.findKey(Exiv2::XmpKey(datum.key())) == xmp.end())
        {
            xmp.add(datum);
        }
    }
}

// Opens the file first: the library's errors tell a missing file from an unknown kind only in their texts, and
// the library waits without end for a pipe's writer.
HRESULT TryOpen(const std::filesystem::path &file)
{
    const std::error_code fault = TryToRead(file);
    return fault ? HRESULT_FROM_WIN32(Win32FromErrno(fault.value())) : S_OK;
}
} // namespace

HRESULT ReadMetadata(const std::filesystem::path &file, ImageTexts &texts, MetadataSnapshot *groups) noexcept
{
    texts = ImageTexts();
    if (groups != nullptr)
    {
        *groups = MetadataSnapshot();
    }
    return AtBoundary([&] {
        ThrowIfFailed(TryOpen(file));
        const std::lock_guard guard(ReadingLock());
        StartLibraryOnce();
        try
        {
            // Absolute, so that no name looks like one of the library's protocols.
            const auto image = Exiv2::ImageFactory::open(std::filesystem::absolute(file).native());
            image->readMetadata();
            AddExtendedXmp(file, image->xmpData());
            const MetadataBlocks blocks(*image);
            if (groups != nullptr)
            {
                *groups = ReadGroups(*image, blocks);
            }
            texts = ChooseTexts(blocks);
        }
        catch (const Exiv2::BasicError<char> &error)
        {
            texts = ImageTexts();
            if (groups != nullptr)
            {
                *groups = MetadataSnapshot();
            }
            return error.code() == Exiv2::kerFileContainsUnknownImageType ? WINCODEC_ERR_UNKNOWNIMAGEFORMAT
                                                                          : WINCODEC_ERR_BADMETADATAHEADER;
        }
        return S_OK;
    });
}

bool CanReadMetadata() noexcept
{
    return true;
}
