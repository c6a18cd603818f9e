// The component that collects names and values of one request, in the order in which they are added.
#pragma once

#include "WebComponents.h"
#include "com/ComObject.h"
#include "webclient/RequestUrl.h"

// How the components of this module read back the parameters that a caller has collected. Private to the module: an
// IRequestParameters of somebody else's making doesn't have it.
struct IParameterReader : public IUnknown
{
    virtual const ParameterList &Collected() const noexcept = 0;

protected:
    ~IParameterReader() = default;
};
__CRT_UUID_DECL(IParameterReader, 0x3c1f6a8e, 0x52d7, 0x4b0b, 0x9e, 0x0c, 0x6f, 0x4a, 0x9b, 0x7d, 0x21, 0xc5)

class CRequestParameters final : public ComObject<CRequestParameters, IRequestParameters, IParameterReader>
{
public:
    STDMETHODIMP Add(LPCWSTR name, VARIANT value) noexcept override;
    const ParameterList &Collected() const noexcept override { return m_parameters; }

private:
    ParameterList m_parameters;
};

// All parameters; none for null. Throws E_INVALIDARG for an object that isn't this module's.
ParameterList ReadParameters(IRequestParameters *parameters);
