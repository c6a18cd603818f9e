// What the streams of this library have in common: positions, and the operations that nobody calls here.
#pragma once

#include "com/ComObject.h"

#include <objidl.h>

template <class Class>
class StreamBase : public ComObject<Class, Answers<IStream, ISequentialStream>>
{
public:
    STDMETHODIMP CopyTo(IStream *, ULARGE_INTEGER, ULARGE_INTEGER *, ULARGE_INTEGER *) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP Clone(IStream **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Commit(DWORD) noexcept override { return S_OK; }
    STDMETHODIMP Revert() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) noexcept override { return E_NOTIMPL; }

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
};
