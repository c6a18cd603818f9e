#include "host/ImageTexts.h"

#include "com/AsciiText.h"
#include "com/BstrOwner.h"
#include "core/TextPieces.h"

#include <algorithm>

namespace
{
void PutText(BSTR &field, WideView text)
{
    if (!text.empty())
    {
        BstrOwner owned(text);
        BstrOwner::Adopt(field).Reset();
        field = owned.Detach();
    }
}
} // namespace

WideText JoinKeywords(const std::vector<WideText> &keywords)
{
    WideText joined;
    for (const WideText &keyword : keywords)
    {
        const WideView word = Trimmed(keyword);
        if (word.empty())
        {
            continue;
        }
        if (!joined.empty())
        {
            joined += TEXT(';');
        }
        const size_t start = joined.size();
        joined += word;
        std::replace(joined.begin() + static_cast<ptrdiff_t>(start), joined.end(), TEXT(';'), TEXT(','));
    }
    return joined;
}

std::vector<WideText> SplitKeywords(WideView list)
{
    std::vector<WideText> words;
    for (const WideView piece : SplitText(list, TEXT(';')))
    {
        if (const WideView word = Trimmed(piece); !word.empty())
        {
            words.emplace_back(word);
        }
    }
    return words;
}

void FillTexts(ItemRecord &record, const ImageTexts &texts)
{
    PutText(record.Iptc.Texts[IPTC_TEXT_CAPTION], texts.title);
    PutText(record.Iptc.Texts[IPTC_TEXT_DESCRIPTION], texts.description);
    PutText(record.Iptc.Texts[IPTC_TEXT_KEYWORDS], JoinKeywords(texts.keywords));
    PutText(record.ExifComment, texts.comment);
    PutText(record.CopyrightTexts[0], texts.artist);
    PutText(record.CopyrightTexts[1], texts.copyright);
    PutText(record.CopyrightTexts[2], texts.credit);
    for (size_t i = 0; i < texts.places.size(); ++i)
    {
        PutText(record.Iptc.Texts[i], texts.places[i]);
    }
}
