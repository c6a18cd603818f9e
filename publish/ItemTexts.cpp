#include "publish/ItemTexts.h"

ItemTexts ChooseItemTexts(const ItemRecord &record, const WCHAR *uploadName)
{
    ItemTexts texts;
    const BSTR caption = record.Iptc.Texts[IPTC_TEXT_CAPTION];
    texts.Title = caption ? BstrOwner::CopyOf(caption) : BstrOwner(WideView(uploadName));
    texts.Description = BstrOwner::CopyOf(record.Iptc.Texts[IPTC_TEXT_DESCRIPTION]);
    texts.Tags = BstrOwner::CopyOf(record.Iptc.Texts[IPTC_TEXT_KEYWORDS]);
    if (texts.Description.IsEmpty() && SysStringLen(record.ExifComment) > 0)
    {
        texts.Description = BstrOwner::CopyOf(record.ExifComment);
    }
    return texts;
}
