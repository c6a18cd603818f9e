// The tags of a picture in the form that the service wants.
#pragma once

#include "com/WideText.h"

// Makes of tags separated by ";" a list of tags in double quotes, separated by blanks: a; b c becomes
// "a" "b c". Separators alone give an empty text; a tag of blanks alone becomes an empty pair of quotes.
WideText QuotedTagList(WideView tags);
