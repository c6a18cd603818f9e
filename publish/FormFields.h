// The fields of an upload form. Each is added twice, to the parameters that the signature covers and to the
// form itself: the service refuses a form that differs from what was signed.
#pragma once

#include "com/WideText.h"
#include "publish/ItemRecord.h"

#include "WebComponents.h"

// Adds the fields that the stored settings and the texts call for, each first to parameters, then to form.
// The settings are read from the registry at each call, so that a change takes effect at the next picture.
// The first failure is thrown; fields added before it stay.
void AddFormFields(const ItemTexts &texts, IRequestParameters *parameters, IMultipartFormData *form);

// Makes of tags separated by ";" a list of tags in double quotes, separated by blanks: a; b c becomes
// "a" "b c". Separators alone give an empty text; a tag of blanks alone becomes an empty pair of quotes.
WideText QuotedTagList(WideView tags);
