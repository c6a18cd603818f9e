// The form fields of an upload, checked, and the service's reading of a tag list.
#pragma once

#include "loopback/FormFields.h"
#include "loopback/PhotoIndex.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace loopback
{

// Tags are separated by white space; one in double quotes may hold blanks.
std::vector<std::string> SplitTags(std::string_view tags);

struct UploadParameters
{
    // Title to hidden are filled in; absent fields have the account's defaults.
    PhotoRecord record;
    bool isAsynchronous = false;
    // What is wrong, in words, or empty.
    std::string complaint;
};

UploadParameters ReadUploadParameters(const FormFields &fields);

} // namespace loopback
