#include "webclient/RequestParameters.h"

#include "com/TextConversion.h"

namespace
{
SecretText TextOf(const VARIANT &value)
{
    switch (V_VT(&value))
    {
    case VT_BSTR:
        // Up to the first zero, where the form's zero-terminated copy of the same value ends too: the
        // signed text must be the text that is sent.
        return V_BSTR(&value) != nullptr ? SecretUtf8FromWide(static_cast<const WCHAR *>(V_BSTR(&value)))
                                         : SecretText();
    case VT_I4:
        return SecretText(std::to_string(V_I4(&value)));
    case VT_UI4:
        return SecretText(std::to_string(V_UI4(&value)));
    default:
        ThrowHresult(DISP_E_BADVARTYPE);
    }
}
} // namespace

HRESULT CRequestParameters::Add(LPCWSTR name, VARIANT value) noexcept
{
    return AtBoundary([&] {
        if (name == nullptr || *name == 0)
        {
            return E_INVALIDARG;
        }
        m_parameters.push_back({ToUtf8(name), TextOf(value)});
        return S_OK;
    });
}

ParameterList ReadParameters(IRequestParameters *parameters)
{
    if (parameters == nullptr)
    {
        return {};
    }
    const auto reader = QueryFor<IParameterReader>(parameters);
    if (!reader)
    {
        ThrowHresult(E_INVALIDARG);
    }
    return reader->Collected();
}
