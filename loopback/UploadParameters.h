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

struct UploadParameters
{
    // Its members from title to isAsynchronous are set; absent fields have the account's defaults.
    PhotoRecord record;
    // The error message, or empty.
    std::string complaint;
};

UploadParameters ReadUploadParameters(const FormFields &fields);

} // namespace loopback
