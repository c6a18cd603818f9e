#include "platform/terminal/ButtonWords.h"

#include <windows.h>

const char16_t *WordOfButton(int id)
{
    switch (id)
    {
    case IDOK:
        return u"OK";
    case IDCANCEL:
        return u"Cancel";
    case IDABORT:
        return u"Abort";
    case IDRETRY:
        return u"Retry";
    case IDIGNORE:
        return u"Ignore";
    case IDYES:
        return u"Yes";
    case IDNO:
        return u"No";
    case IDCLOSE:
        return u"Close";
    case IDTRYAGAIN:
        return u"Try Again";
    case IDCONTINUE:
        return u"Continue";
    default:
        return u"";
    }
}
