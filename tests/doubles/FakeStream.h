// A stream over bytes in memory that can be told to fail, or to stop short, at its n-th call.
#pragma once

#include "core/ComObject.h"
#include "core/Hresult.h"

#include <objidl.h>

#include <vector>

class FakeStream final : public ComObject<FakeStream, Answers<IStream, ISequentialStream>>
{
public:
    FakeStream() = default;
    explicit FakeStream(std::vector<BYTE> bytes) : Bytes(std::move(bytes)) {}

    std::vector<BYTE> Bytes;
    size_t Position = 0;
    int Calls = 0;              // of Read, Write, Seek and SetSize
    int FailAtCall = 0;         // counted from 1; 0: never
    HRESULT Failure = STG_E_READFAULT;

    STDMETHODIMP Read(void *data, ULONG size, ULONG *read) noexcept override;
    STDMETHODIMP Write(const void *data, ULONG size, ULONG *written) noexcept override;
    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER *position) noexcept override;
    STDMETHODIMP SetSize(ULARGE_INTEGER size) noexcept override;
    STDMETHODIMP CopyTo(IStream *, ULARGE_INTEGER, ULARGE_INTEGER *, ULARGE_INTEGER *) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP Commit(DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Revert() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Stat(STATSTG *status, DWORD) noexcept override;
    STDMETHODIMP Clone(IStream **) noexcept override { return E_NOTIMPL; }

private:
    bool Fails() noexcept { return ++Calls == FailAtCall; }
};
