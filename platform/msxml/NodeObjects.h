// Documents and their nodes as objects.
#pragma once

#include "XmlInterfaces.h"

#include <string_view>

IClassFactory *DocumentFactory();

// A new document with the bytes in it, one without content if they are no XML.
HRESULT GiveDocument(std::string_view bytes, IDispatch **document);
