#include "webclient/RequestParameters.h"

#include "com/BstrOwner.h"
#include "webclient/Utf8.h"

namespace
{
WideText TextOf(const VARIANT &value)
{
    switch (V_VT(&value))
    {
    case VT_BSTR:
        // Up to the first zero, where the form's zero-terminated copy of the same value ends too: the
        // signed text must be the text that is sent.
        return V_BSTR(&value) != nullptr ? WideText(static_cast<const WCHAR *>(V_BSTR(&value))) : WideText();
    case VT_I4:
        return WideFromUtf8(std::to_string(V_I4(&value)));
    case VT_UI4:
        return WideFromUtf8(std::to_string(V_UI4(&value)));
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
        m_entries.push_back({name, TextOf(value)});
        return S_OK;
    });
}

HRESULT CRequestParameters::ReadParameter(UINT32 index, BSTR *name, BSTR *value) noexcept
{
    if (name == nullptr || value == nullptr)
    {
        return E_INVALIDARG;
    }
    *name = nullptr;
    *value = nullptr;
    return AtBoundary([&] {
        if (index >= m_entries.size())
        {
            return S_FALSE;
        }
        BstrOwner nameText(m_entries[index].name);
        BstrOwner valueText(m_entries[index].value);
        *name = nameText.Detach();
        *value = valueText.Detach();
        return S_OK;
    });
}

ParameterList ReadParameters(IRequestParameters *parameters)
{
    ParameterList result;
    if (parameters == nullptr)
    {
        return result;
    }
    const auto reader = QueryFor<IParameterReader>(parameters);
    if (!reader)
    {
        ThrowHresult(E_INVALIDARG);
    }
    for (UINT32 index = 0;; ++index)
    {
        BstrOwner name;
        BstrOwner value;
        if (ThrowIfFailed(reader->ReadParameter(index, name.Put(), value.Put())) == S_FALSE)
        {
            return result;
        }
        result.push_back({Utf8FromWide(name.View()), SecretUtf8FromWide(value.View())});
    }
}
