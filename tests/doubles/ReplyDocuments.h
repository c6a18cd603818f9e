// Replies of the service as the documents that a web client hands out.
#pragma once

#include "com/ComPtr.h"
#include "com/WideText.h"

#include "XmlInterfaces.h"

// A document of the system's XML component; a text that isn't XML fails the test and returns null.
ComPtr<IXMLDOMDocument2> MakeDocument(WideView xml);
