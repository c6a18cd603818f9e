#include "host/MetadataTexts.h"

#include "host/ExifFields.h"

#include <algorithm>
#include <initializer_list>

namespace
{
WideText FirstText(std::initializer_list<WideText> candidates)
{
    const auto *const found = std::ranges::find_if(candidates, [](const WideText &each) { return !each.empty(); });
    return found != candidates.end() ? *found : WideText();
}

std::vector<WideText> ChooseKeywords(const MetadataTexts &blocks)
{
    std::vector<WideText> keywords = blocks.XmpList(TEXT("dc:subject"));
    if (keywords.empty())
    {
        keywords = blocks.IptcList(Dataset::Keywords);
    }
    return keywords.empty() ? SplitKeywords(blocks.ExifWindowsText(ExifTag::XPKeywords)) : keywords;
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

int NumberOf(const WideText &text, int least, int most)
{
    const bool negative = text.starts_with(TEXT('-'));
    const WideView digits = WideView(text).substr(negative ? 1 : 0);
    if (digits.empty() || digits[0] < '0' || digits[0] > '9')
    {
        return NoNumber;
    }
    // Some writers say "3.0"; no scale has two digits.
    if (digits.size() > 1 && digits[1] != '.')
    {
        return NoNumber;
    }
    const int number = (negative ? -1 : 1) * (digits[0] - '0');
    return number >= least && number <= most ? number : NoNumber;
}
} // namespace

ImageTexts ChooseTexts(const MetadataTexts &blocks)
{
    ImageTexts texts;
    texts.title = FirstText({blocks.Xmp(TEXT("dc:title")), blocks.Iptc(Dataset::ObjectName),
                             blocks.ExifWindowsText(ExifTag::XPTitle), blocks.Xmp(TEXT("photoshop:Headline")),
                             blocks.Iptc(Dataset::Headline)});
    texts.description = FirstText({blocks.Xmp(TEXT("dc:description")), blocks.Iptc(Dataset::Caption),
                                   blocks.Exif(ExifTag::ImageDescription)});
    texts.keywords = ChooseKeywords(blocks);
    texts.comment = FirstText({blocks.ExifUserComment(), blocks.ExifWindowsText(ExifTag::XPComment),
                               blocks.Xmp(TEXT("exif:UserComment")), blocks.FileComment()});
    texts.artist =
        FirstText({JoinNames(blocks.XmpList(TEXT("dc:creator"))), JoinNames(blocks.IptcList(Dataset::Byline)),
                   blocks.Exif(ExifTag::Artist), blocks.ExifWindowsText(ExifTag::XPAuthor)});
    texts.copyright = FirstText(
        {blocks.Xmp(TEXT("dc:rights")), blocks.Iptc(Dataset::Copyright), blocks.Exif(ExifTag::Copyright)});
    texts.credit = FirstText({blocks.Xmp(TEXT("photoshop:Credit")), blocks.Iptc(Dataset::Credit)});
    for (const IptcTextPlace &place : IptcTextPlaces)
    {
        const bool hasDataset = place.dataset.name != nullptr;
        texts.places[place.number] =
            FirstText({blocks.Xmp(place.property), hasDataset ? blocks.Iptc(place.dataset) : WideText()});
    }
    return texts;
}

void ChooseNumbers(const MetadataTexts &blocks, MetadataSnapshot &groups)
{
    groups.rating = NumberOf(blocks.Xmp(TEXT("xmp:Rating")), -1, 5);
    if (groups.rating == NoNumber)
    {
        const long rating = blocks.ExifRating().value_or(0);
        groups.rating = rating >= 1 && rating <= 5 ? static_cast<int>(rating) : NoNumber;
    }
    groups.urgency =
        NumberOf(FirstText({blocks.Xmp(TEXT("photoshop:Urgency")), blocks.Iptc(Dataset::Urgency)}), 0, 8);
    groups.label = blocks.Xmp(TEXT("xmp:Label"));
}

WideText TextOfBytes(std::string_view bytes)
{
    return WithoutPadding(TextFromUtf8OrLatin(bytes.substr(0, bytes.find('\0'))));
}

WideText WindowsTextOfBytes(std::string_view bytes)
{
    return WithoutPadding(TextFromUtf16(bytes, ByteOrder16::LittleEndian));
}

WideText CharsetTextOfBytes(std::string_view bytes, ByteOrder16 order)
{
    if (bytes.size() <= 8)
    {
        return WideText();
    }
    const std::string_view charset = bytes.substr(0, 8);
    const std::string_view text = bytes.substr(8);
    if (charset == std::string_view("UNICODE\0", 8))
    {
        return WithoutPadding(TextFromUtf16Guessing(text, order));
    }
    if (charset == std::string_view("JIS\0\0\0\0\0", 8))
    {
        return WithoutPadding(TextFromJis(text.substr(0, text.find('\0'))));
    }
    return TextOfBytes(text);
}
