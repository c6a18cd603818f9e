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
    STDMETHODIMP SetHelpFile(LPOLESTR text) noexcept override { return Assign(m_helpFile, text); }
    STDMETHODIMP SetHelpContext(DWORD context) noexcept override
    {
        m_helpContext = context;
        return S_OK;
    }

    STDMETHODIMP GetGUID(GUID *guid) noexcept override { return Answer(guid, m_guid); }
    STDMETHODIMP GetSource(BSTR *text) noexcept override { return CopyTo(text, m_source); }
    STDMETHODIMP GetDescription(BSTR *text) noexcept override { return CopyTo(text, m_description); }
    STDMETHODIMP GetHelpFile(BSTR *text) noexcept override { return CopyTo(text, m_helpFile); }
    STDMETHODIMP GetHelpContext(DWORD *context) noexcept override { return Answer(context, m_helpContext); }

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

    template <class T>
    static HRESULT Answer(T *out, const T &value) noexcept
    {
        if (out == nullptr)
        {
            return E_INVALIDARG;
        }
        *out = value;
        return S_OK;
    }

    GUID m_guid{};
    BstrOwner m_source;
    BstrOwner m_description;
    BstrOwner m_helpFile;
    DWORD m_helpContext = 0;
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
