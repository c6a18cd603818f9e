// One type of a library, as callers by name see it.
#pragma once

#include "com/ComPtr.h"
#include "platform/oleaut32/TypeLibraryFile.h"

#include <oaidl.h>

#include <memory>

// content outlives the object; library is what GetContainingTypeLib answers.
ComPtr<ITypeInfo> MakeTypeInformation(std::shared_ptr<const TypeLibraryContent> content, size_t index,
                                      ComPtr<ITypeLib> library);

// Null where a text is empty; out may be null, and then nothing is made.
void GiveTypeText(const WideText &text, BSTR *out);
