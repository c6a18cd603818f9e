// Use of documents in tests.
#pragma once

#include "com/BstrOwner.h"
#include "com/ComPtr.h"

#include "XmlInterfaces.h"

#include <algorithm>
#include <string>

inline const CLSID DocumentClass = {0x88d96a05, 0xf192, 0x11d4, {0xa6, 0x5f, 0x00, 0x40, 0x96, 0x32, 0x51, 0xe5}};

inline ComPtr<IXMLDOMDocument2> NewDocument()
{
    ComPtr<IXMLDOMDocument2> document;
    CoCreateInstance(DocumentClass, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IXMLDOMDocument2), document.PutVoid());
    document->put_async(VARIANT_FALSE);
    return document;
}

// Whether the document takes the bytes; "(torn)" where result and switch differ.
inline std::string Outcome(HRESULT result, VARIANT_BOOL success)
{
    const bool isTaken = result == S_OK && success == VARIANT_TRUE;
    const bool isRefused = result == S_FALSE && success == VARIANT_FALSE;
    return isTaken ? "taken" : isRefused ? "refused" : "(torn)";
}

inline std::string LoadBytes(IXMLDOMDocument2 &document, const std::string &bytes)
{
    VARIANT source{};
    V_VT(&source) = VT_ARRAY | VT_UI1;
    V_ARRAY(&source) = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(bytes.size()));
    void *data = nullptr;
    SafeArrayAccessData(V_ARRAY(&source), &data);
    std::copy(bytes.begin(), bytes.end(), static_cast<char *>(data));
    SafeArrayUnaccessData(V_ARRAY(&source));
    VARIANT_BOOL success = 77;
    const HRESULT result = document.load(source, &success);
    VariantClear(&source);
    return Outcome(result, success);
}

// The text of what the expression finds; "(none)" for nothing, "(failed)" for a failing code.
inline WideText ReadText(IXMLDOMNode &from, const WCHAR *expression)
{
    ComPtr<IXMLDOMNode> node;
    BstrOwner text;
    const HRESULT result = from.selectSingleNode(BstrOwner(WideView(expression)).Get(), node.Put());
    if (result != S_OK || FAILED(node->get_text(text.Put())))
    {
        return FAILED(result) ? TEXT("(failed)") : TEXT("(none)");
    }
    return WideText(text.View());
}
