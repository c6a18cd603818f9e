// Reading reply documents in tests.
#pragma once

#include "XmlInterfaces.h"

#include <string>

// Natively the document component lies beside the tests' libraries: it registers itself. On Windows
// it is the system's.
void UseDocumentComponent();

// The text of the node at path; "(none)" if there is no such node.
std::string DocumentText(IUnknown *document, const char *path);
