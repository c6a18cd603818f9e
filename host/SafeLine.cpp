#include "host/SafeLine.h"

#include "host/CharsetConversion.h"
#include "host/TextEncodings.h"

#include "terminal/SafeText.h"

std::string OneSafeLine(std::string_view utf8)
{
    return Utf8FromText(SafeText(TextFromCharset(Charset::Utf8, utf8, Faults::Replace).value_or(WideText())));
}
