// The profile of Adobe RGB (1998), for pictures that name it and don't hold it.
#pragma once

#include <string>

// Empty if there isn't the memory for it. Any thread.
const std::string &AdobeRgbProfile();
