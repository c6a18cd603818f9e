#include "host/ImageMetadata.h"

#include "host/ErrnoCodes.h"
#include "host/TextEncodings.h"

#include "core/Hresult.h"

#include <wincodec.h>

#include <exiv2/exiv2.hpp>

#include <cerrno>
#include <cstdio>
#include <initializer_list>
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

// exiv2 wants its XMP toolkit started before a second thread uses it, and speaks on stderr by itself.
void StartLibraryOnce()
{
    static const bool started = [] {
        Exiv2::LogMsg::setLevel(Exiv2::LogMsg::mute);
        return Exiv2::XmpParser::initialize();
    }();
    static_cast<void>(started);
}

// What one file holds, with the readers of single values. An absent or broken value reads as empty.
class MetadataBlocks
{
public:
    explicit MetadataBlocks(Exiv2::Image &image) : m_image(image) {}

    WideText Xmp(const char *key) const
    {
        const auto datum = m_image.xmpData().findKey(Exiv2::XmpKey(key));
        if (datum == m_image.xmpData().end() || datum->count() == 0)
        {
            return WideText();
        }
        if (const auto *alternatives = dynamic_cast<const Exiv2::LangAltValue *>(&datum->value()))
        {
            const auto chosen = alternatives->value_.find("x-default");
            return Clean(chosen != alternatives->value_.end() ? chosen->second
                                                             : alternatives->value_.begin()->second);
        }
        return Clean(datum->toString(0));
    }

    std::vector<WideText> XmpList(const char *key) const
    {
        std::vector<WideText> texts;
        const auto datum = m_image.xmpData().findKey(Exiv2::XmpKey(key));
        for (long i = 0; datum != m_image.xmpData().end() && i < datum->count(); ++i)
        {
            Append(texts, Clean(datum->toString(i)));
        }
        return texts;
    }

    WideText Iptc(const char *key) const
    {
        const auto datum = m_image.iptcData().findKey(Exiv2::IptcKey(key));
        return datum == m_image.iptcData().end() ? WideText() : Clean(datum->toString());
    }

    std::vector<WideText> IptcList(const char *key) const
    {
        std::vector<WideText> texts;
        const Exiv2::IptcKey wanted(key);
        for (const Exiv2::Iptcdatum &datum : m_image.iptcData())
        {
            if (datum.tag() == wanted.tag() && datum.record() == wanted.record())
            {
                Append(texts, Clean(datum.toString()));
            }
        }
        return texts;
    }

    WideText Exif(const char *key) const { return Clean(ExifBytes(key)); }

    // The tags that Windows writes: UTF-16 in little endian whatever the file's own order is.
    WideText ExifWindowsText(const char *key) const
    {
        return WithoutPadding(TextFromUtf16(ExifBytes(key), ByteOrder16::LittleEndian));
    }

    // A text behind 8 bytes that name its character set.
    WideText ExifCharsetText(const char *key) const
    {
        const std::string bytes = ExifBytes(key);
        const std::string_view view = bytes;
        if (view.size() <= 8)
        {
            return WideText();
        }
        const std::string_view charset = view.substr(0, 8);
        const std::string_view text = view.substr(8);
        if (charset == std::string_view("UNICODE\0", 8))
        {
            const auto fileOrder = m_image.byteOrder() == Exiv2::bigEndian ? ByteOrder16::BigEndian
                                                                           : ByteOrder16::LittleEndian;
            return WithoutPadding(TextFromUtf16Guessing(text, fileOrder));
        }
        if (charset == std::string_view("JIS\0\0\0\0\0", 8))
        {
            return WithoutPadding(TextFromJis(text.substr(0, text.find('\0'))));
        }
        return Clean(std::string(text));
    }

    WideText FileComment() const { return Clean(m_image.comment()); }

private:
    static WideText Clean(const std::string &bytes)
    {
        return WithoutPadding(TextFromUtf8OrLatin(bytes.substr(0, bytes.find('\0'))));
    }

    static void Append(std::vector<WideText> &texts, WideText text)
    {
        if (!text.empty())
        {
            texts.push_back(std::move(text));
        }
    }

    std::string ExifBytes(const char *key) const
    {
        const auto datum = m_image.exifData().findKey(Exiv2::ExifKey(key));
        if (datum == m_image.exifData().end() || datum->size() <= 0)
        {
            return std::string();
        }
        std::vector<Exiv2::byte> bytes(static_cast<size_t>(datum->size()));
        const long length = datum->copy(bytes.data(), m_image.byteOrder());
        return std::string(bytes.begin(), bytes.begin() + std::max(0L, length));
    }

    Exiv2::Image &m_image;
};

WideText FirstText(std::initializer_list<WideText> candidates)
{
    for (const WideText &candidate : candidates)
    {
        if (!candidate.empty())
        {
            return candidate;
        }
    }
    return WideText();
}

std::vector<WideText> ChooseKeywords(const MetadataBlocks &blocks)
{
    std::vector<WideText> keywords = blocks.XmpList("Xmp.dc.subject");
    if (keywords.empty())
    {
        keywords = blocks.IptcList("Iptc.Application2.Keywords");
    }
    return keywords.empty() ? SplitKeywords(blocks.ExifWindowsText("Exif.Image.XPKeywords")) : keywords;
}

WideText JoinNames(const std::vector<WideText> &names)
{
    WideText joined;
    for (const WideText &name : names)
    {
        joined += joined.empty() ? WideText() : WideText(TEXT("; "));
        joined += name;
    }
    return joined;
}

ImageTexts ChooseTexts(const MetadataBlocks &blocks)
{
    ImageTexts texts;
    texts.title = FirstText({blocks.Xmp("Xmp.dc.title"), blocks.Iptc("Iptc.Application2.ObjectName"),
                             blocks.ExifWindowsText("Exif.Image.XPTitle"), blocks.Xmp("Xmp.photoshop.Headline"),
                             blocks.Iptc("Iptc.Application2.Headline")});
    texts.description = FirstText({blocks.Xmp("Xmp.dc.description"), blocks.Iptc("Iptc.Application2.Caption"),
                                   blocks.Exif("Exif.Image.ImageDescription")});
    texts.keywords = ChooseKeywords(blocks);
    texts.comment = FirstText({blocks.ExifCharsetText("Exif.Photo.UserComment"),
                               blocks.ExifWindowsText("Exif.Image.XPComment"),
                               blocks.Xmp("Xmp.exif.UserComment"), blocks.FileComment()});
    texts.artist = FirstText({JoinNames(blocks.XmpList("Xmp.dc.creator")),
                              JoinNames(blocks.IptcList("Iptc.Application2.Byline")),
                              blocks.Exif("Exif.Image.Artist"), blocks.ExifWindowsText("Exif.Image.XPAuthor")});
    texts.copyright = FirstText({blocks.Xmp("Xmp.dc.rights"), blocks.Iptc("Iptc.Application2.Copyright"),
                                 blocks.Exif("Exif.Image.Copyright")});
    texts.credit = FirstText({blocks.Xmp("Xmp.photoshop.Credit"), blocks.Iptc("Iptc.Application2.Credit")});
    return texts;
}

// Not left to the library, which tells a missing file and a strange one apart by prose alone.
HRESULT TryOpen(const std::filesystem::path &file)
{
    if (std::FILE *opened = std::fopen(file.c_str(), "rb"))
    {
        std::fclose(opened);
        return S_OK;
    }
    return HresultFromErrno(errno);
}
} // namespace

HRESULT ReadImageTexts(const std::filesystem::path &file, ImageTexts &texts) noexcept
{
    texts = ImageTexts();
    return AtBoundary([&] {
        ThrowIfFailed(TryOpen(file));
        const std::lock_guard guard(ReadingLock());
        StartLibraryOnce();
        try
        {
            // Absolute, so that no name looks like one of the library's protocols.
            const auto image = Exiv2::ImageFactory::open(std::filesystem::absolute(file).native());
            image->readMetadata();
            texts = ChooseTexts(MetadataBlocks(*image));
        }
        catch (const Exiv2::BasicError<char> &error)
        {
            texts = ImageTexts();
            return error.code() == Exiv2::kerFileContainsUnknownImageType ? WINCODEC_ERR_UNKNOWNIMAGEFORMAT
                                                                         : WINCODEC_ERR_BADMETADATAHEADER;
        }
        return S_OK;
    });
}
