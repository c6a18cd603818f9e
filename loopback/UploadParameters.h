// Checks the form fields of an upload, and splits a tag list as the service does.
#pragma once

#include "loopback/FormFields.h"
#include "loopback/PhotoIndex.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace loopback
{

// White space separates tags; a tag in double quotes may contain blanks.
std::vector<std::string> SplitTags(std::string_view tags);

// Sets the record's members from title to isAsynchronous; those whose field is absent keep their defaults. Returns what
// is wrong with the fields, or an empty text.
std::string ReadUploadParameters(const FormFields &fields, PhotoRecord &record);

} // namespace loopback
