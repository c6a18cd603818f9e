// What the streams of this library have in common: copying, and the operations that they don't
// support, with the codes that Windows gives for them.
#pragma once

#include "com/ComObject.h"

#include <objidl.h>

template <class Class>
class StreamBase : public ComObject<Class, Answers<IStream, ISequentialStream>>
{
public:
    STDMETHODIMP CopyTo(IStream *target, ULARGE_INTEGER bytes, ULARGE_INTEGER *read,
                        ULARGE_INTEGER *written) noexcept override
    {
        ULARGE_INTEGER readSoFar{}, writtenSoFar{};
        const HRESULT result = target
                                   ? CopyBytes(target, bytes.QuadPart, readSoFar.QuadPart, writtenSoFar.QuadPart)
                                   : STG_E_INVALIDPOINTER;
        if (read != nullptr)
        {
            *read = readSoFar;
        }
        if (written != nullptr)
        {
            *written = writtenSoFar;
        }
        return result;
    }

    STDMETHODIMP Commit(DWORD) noexcept override { return S_OK; }
    STDMETHODIMP Revert() noexcept override { return S_OK; }
    STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) noexcept override
    {
        return STG_E_INVALIDFUNCTION;
    }
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) noexcept override
    {
        return STG_E_INVALIDFUNCTION;
    }

protected:
    // The position that a Seek asks for; false if it is before the start, or the origin is unknown.
    static bool NewPosition(LARGE_INTEGER move, DWORD origin, ULONGLONG position, ULONGLONG size,
                            ULONGLONG &target) noexcept
    {
        const ULONGLONG base = origin == STREAM_SEEK_CUR ? position : origin == STREAM_SEEK_END ? size : 0;
        LONGLONG sum = 0;
        if (origin > STREAM_SEEK_END || __builtin_add_overflow(static_cast<LONGLONG>(base), move.QuadPart, &sum) ||
            sum < 0)
        {
            return false;
        }
        target = static_cast<ULONGLONG>(sum);
        return true;
    }

private:
    HRESULT CopyBytes(IStream *target, ULONGLONG left, ULONGLONG &read, ULONGLONG &written) noexcept
    {
        BYTE buffer[16384];
        while (left != 0)
        {
            const ULONG wanted = left < sizeof(buffer) ? static_cast<ULONG>(left) : sizeof(buffer);
            ULONG got = 0;
            HRESULT result = this->Read(buffer, wanted, &got);
            read += got;
            if (FAILED(result) || got == 0)
            {
                return FAILED(result) ? result : S_OK;
            }
            ULONG put = 0;
            result = target->Write(buffer, got, &put);
            written += put;
            if (FAILED(result) || put != got)
            {
                return FAILED(result) ? result : STG_E_MEDIUMFULL;
            }
            left -= got;
        }
        return S_OK;
    }
};
