// Reading reply documents in tests.
#pragma once

#include "XmlInterfaces.h"

#include <string>

// The text of the node at path; "(none)" if there is no such node.
std::string DocumentText(IUnknown *document, const char *path);
