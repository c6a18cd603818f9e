// The fields of an upload form: every field goes to the signed parameters and to the form itself.
#pragma once

#include "publish/ItemTexts.h"

#include "WebComponents.h"

// Adds, in the service's order, the fields that the settings of this moment and the texts call for,
// each first to parameters, then to form. The settings are read value by value, so that a change
// takes effect at the next picture. The first failure is thrown; what was added stays.
void AddFormFields(const ItemTexts &texts, IRequestParameters *parameters, IMultipartFormData *form);
