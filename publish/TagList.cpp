#include "publish/TagList.h"

#include "core/TextPieces.h"

WideText QuotedTagList(WideView tags)
{
    WideText list;
    for (const WideView tag : SplitText(tags, TEXT(';')))
    {
        if (!list.empty())
        {
            list += TEXT(' ');
        }
        list += TEXT('"');
        list += StripWhiteSpace(tag);
        list += TEXT('"');
    }
    return list;
}
