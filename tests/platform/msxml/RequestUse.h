// Use of the request classes in tests.
#pragma once

#include "com/BstrOwner.h"
#include "com/ComPtr.h"

#include "XmlInterfaces.h"

#include <string>

inline const CLSID ServerRequestClass = {
    0x88d96a0b, 0xf192, 0x11d4, {0xa6, 0x5f, 0x00, 0x40, 0x96, 0x32, 0x51, 0xe5}};
inline const CLSID UserRequestClass = {
    0x88d96a0a, 0xf192, 0x11d4, {0xa6, 0x5f, 0x00, 0x40, 0x96, 0x32, 0x51, 0xe5}};

inline BstrOwner Bstr(const std::string &ascii)
{
    return BstrOwner(WideText(ascii.begin(), ascii.end()));
}

// "?" for what isn't ASCII.
inline std::string Ascii(WideView text)
{
    std::string ascii;
    for (const WCHAR unit : text)
    {
        ascii += unit < 0x80 ? static_cast<char>(unit) : '?';
    }
    return ascii;
}

class RequestUse
{
public:
    explicit RequestUse(const CLSID &requestClass = ServerRequestClass)
    {
        creation = CoCreateInstance(requestClass, nullptr, 23, __uuidof(IXMLHTTPRequest), request.PutVoid());
    }

    HRESULT Open(const std::string &url, const std::string &method = "GET")
    {
        VARIANT isAsync{}, empty{};
        V_VT(&isAsync) = VT_BOOL;
        V_BOOL(&isAsync) = VARIANT_FALSE;
        return request->open(Bstr(method).Get(), Bstr(url).Get(), isAsync, empty, empty);
    }

    HRESULT Send() { return request->send(VARIANT{}); }

    HRESULT Get(const std::string &url)
    {
        const HRESULT result = Open(url);
        return FAILED(result) ? result : Send();
    }

    HRESULT Post(const std::string &url, const std::string &body)
    {
        const BstrOwner text = Bstr(body);
        VARIANT value{};
        V_VT(&value) = VT_BSTR;
        V_BSTR(&value) = text.Get();
        const HRESULT result = Open(url, "POST");
        return FAILED(result) ? result : request->send(value);
    }

    LONG Status()
    {
        LONG status = -1;
        return SUCCEEDED(request->get_status(&status)) ? status : -1;
    }

    // The text of what the expression finds in the reply; "(none)", or "(no document)".
    std::string Read(const char *expression)
    {
        ComPtr<IDispatch> answer;
        ComPtr<IXMLDOMDocument2> document;
        if (request->get_responseXML(answer.Put()) != S_OK || !answer ||
            FAILED(answer->QueryInterface(__uuidof(IXMLDOMDocument2), document.PutVoid())))
        {
            return "(no document)";
        }
        ComPtr<IXMLDOMNode> node;
        BstrOwner text;
        const bool isThere = document->selectSingleNode(Bstr(expression).Get(), node.Put()) == S_OK &&
                             node->get_text(text.Put()) == S_OK;
        return isThere ? Ascii(text.View()) : "(none)";
    }

    std::string Text()
    {
        BstrOwner text;
        return request->get_responseText(text.Put()) == S_OK ? Ascii(text.View()) : "(no text)";
    }

    std::string Header(const char *name)
    {
        BstrOwner value;
        return request->getResponseHeader(Bstr(name).Get(), value.Put()) == S_OK ? Ascii(value.View()) : "(none)";
    }

    HRESULT creation = E_FAIL;
    ComPtr<IXMLHTTPRequest> request;
};
