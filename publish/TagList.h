// The tags of a picture in the form in which the service takes them.
#pragma once

#include "com/WideText.h"

// From tags separated by ";" to tags in double quotes with a blank between them: "a; b c" gives
// "a" "b c", each with its quotes. Separators alone give an empty text; a tag of blanks alone stays
// as an empty pair of quotes.
WideText QuotedTagList(WideView tags);
