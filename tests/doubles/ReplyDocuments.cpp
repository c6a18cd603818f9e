#include "tests/doubles/ReplyDocuments.h"

#include "com/BstrOwner.h"

#include <objbase.h>

#include <gtest/gtest.h>

ComPtr<IXMLDOMDocument2> MakeDocument(WideView xml)
{
    ComPtr<IXMLDOMDocument2> document;
    const HRESULT created = CoCreateInstance(CLSID_DOMDocument60, nullptr, CLSCTX_INPROC_SERVER,
                                             __uuidof(IXMLDOMDocument2), document.PutVoid());
    if (FAILED(created))
    {
        ADD_FAILURE() << "no XML document: " << std::hex << created;
        return nullptr;
    }
    document->put_async(VARIANT_FALSE);
    const BstrOwner text(xml);
    VARIANT_BOOL parsed = VARIANT_FALSE;
    document->loadXML(text.Get(), &parsed);
    if (parsed == VARIANT_FALSE)
    {
        ADD_FAILURE() << "not well-formed: " << testing::PrintToString(xml);
        return nullptr;
    }
    return document;
}
