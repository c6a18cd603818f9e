// The component that collects names and values of one request, in the order in which they are added.
#pragma once

#include "ParameterReader.h"
#include "WebComponents.h"
#include "com/ComObject.h"
#include "com/WideText.h"
#include "webclient/RequestUrl.h"

#include <vector>

class CRequestParameters final : public ComObject<CRequestParameters, IRequestParameters, IParameterReader>
{
public:
    STDMETHODIMP Add(LPCWSTR name, VARIANT value) noexcept override;
    STDMETHODIMP ReadParameter(UINT32 index, BSTR *name, BSTR *value) noexcept override;

private:
    struct Entry
    {
        WideText name;
        WideText value;
    };
    std::vector<Entry> m_entries;
};

// All parameters as UTF-8; no parameters for null. Throws E_INVALIDARG for an object that isn't this module's.
ParameterList ReadParameters(IRequestParameters *parameters);
