#include "platform/terminal/ButtonWords.h"

#include <windows.h>

namespace
{
struct ButtonWord
{
    int id;
    const char16_t *word;
};

constexpr ButtonWord Words[] = {
    {IDOK, u"OK"},
    {IDCANCEL, u"Cancel"},
    {IDABORT, u"Abort"},
    {IDRETRY, u"Retry"},
    {IDIGNORE, u"Ignore"},
    {IDYES, u"Yes"},
    {IDNO, u"No"},
    {IDCLOSE, u"Close"},
    {IDTRYAGAIN, u"Try Again"},
    {IDCONTINUE, u"Continue"},
};
} // namespace

const char16_t *WordOfButton(int id)
{
    for (const ButtonWord &button : Words)
    {
        if (button.id == id)
        {
            return button.word;
        }
    }
    return u"";
}
