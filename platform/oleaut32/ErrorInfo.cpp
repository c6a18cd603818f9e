// The error object of each thread, and the system's own kind of error object.
#include "com/BstrOwner.h"
#include "com/ComObject.h"

namespace
{
thread_local ComPtr<IErrorInfo> threadError;

class ErrorObject final : public ComObject<ErrorObject, ICreateErrorInfo, IErrorInfo>
{
public:
    STDMETHODIMP SetGUID(REFGUID guid) noexcept override
    {
        m_guid = guid;
        return S_OK;
    }
    STDMETHODIMP SetSource(LPOLESTR text) noexcept override { return Assign(m_source, text); }
    STDMETHODIMP SetDescription(LPOLESTR text) noexcept override { return Assign(m_description, text); }
    STDMETHODIMP SetHelpFile(LPOLESTR) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetHelpContext(DWORD) noexcept override { return E_NOTIMPL; }

    STDMETHODIMP GetGUID(GUID *guid) noexcept override
    {
        if (guid == nullptr)
        {
            return E_INVALIDARG;
        }
        *guid = m_guid;
        return S_OK;
    }
    STDMETHODIMP GetSource(BSTR *text) noexcept override { return CopyTo(text, m_source); }
    STDMETHODIMP GetDescription(BSTR *text) noexcept override { return CopyTo(text, m_description); }
    STDMETHODIMP GetHelpFile(BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetHelpContext(DWORD *) noexcept override { return E_NOTIMPL; }

private:
    static HRESULT Assign(BstrOwner &field, LPOLESTR text) noexcept
    {
        return AtBoundary([&] {
            field = text ? BstrOwner(WideView(text)) : BstrOwner();
            return S_OK;
        });
    }

    static HRESULT CopyTo(BSTR *text, const BstrOwner &field) noexcept
    {
        if (text == nullptr)
        {
            return E_INVALIDARG;
        }
        *text = nullptr;
        return AtBoundary([&] {
            *text = BstrOwner(field).Detach();
            return S_OK;
        });
    }

    GUID m_guid{};
    BstrOwner m_source;
    BstrOwner m_description;
};
} // namespace

HRESULT WINAPI CreateErrorInfo(ICreateErrorInfo **object)
{
    if (object == nullptr)
    {
        return E_INVALIDARG;
    }
    return ErrorObject::CreateInstance(nullptr, __uuidof(ICreateErrorInfo), reinterpret_cast<void **>(object));
}

HRESULT WINAPI SetErrorInfo(ULONG reserved, IErrorInfo *error)
{
    if (reserved != 0)
    {
        return E_INVALIDARG;
    }
    threadError = ComPtr<IErrorInfo>(error);
    return S_OK;
}

HRESULT WINAPI GetErrorInfo(ULONG reserved, IErrorInfo **error)
{
    if (reserved != 0 || error == nullptr)
    {
        return E_INVALIDARG;
    }
    *error = threadError.Detach();
    return *error ? S_OK : S_FALSE;
}
