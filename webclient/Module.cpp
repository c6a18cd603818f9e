// The module of the web components: its class objects.
#include <windows.h>
#include <objbase.h>
#include <initguid.h>

#include "WebComponents.h"
#include "XmlInterfaces.h"

#include "com/ClassFactory.h"
#include "com/ModuleLocks.h"
#include "webclient/ComponentClasses.h"
#include "webclient/MultipartForm.h"
#include "webclient/OAuthWebClient.h"
#include "webclient/RequestParameters.h"

namespace
{
ClassFactory<COAuthWebClient> clientFactory;
ClassFactory<CRequestParameters> parametersFactory;
ClassFactory<CMultipartFormData> formFactory;

const ComponentClass Classes[] = {
    {CLSID_OAuthWebClient, TEXT("Halvora OAuth Web Client"), &clientFactory},
    {CLSID_RequestParameters, TEXT("Halvora Request Parameters"), &parametersFactory},
    {CLSID_MultipartFormData, TEXT("Halvora Multipart Form Data"), &formFactory},
};
} // namespace

std::span<const ComponentClass> ComponentClasses()
{
    return Classes;
}

#pragma GCC visibility push(default)

STDAPI DllGetClassObject(REFCLSID clsid, REFIID iid, void **object)
{
    if (object == nullptr)
    {
        return E_INVALIDARG;
    }
    *object = nullptr;
    for (const ComponentClass &component : Classes)
    {
        if (clsid == component.clsid)
        {
            return component.factory->QueryInterface(iid, object);
        }
    }
    return CLASS_E_CLASSNOTAVAILABLE;
}

STDAPI DllCanUnloadNow()
{
    return ModuleLocks::Read() == 0 ? S_OK : S_FALSE;
}

#pragma GCC visibility pop
