#include "tests/doubles/FakeStream.h"

#include <algorithm>
#include <cstring>

HRESULT FakeStream::Read(void *data, ULONG size, ULONG *read) noexcept
{
    if (read != nullptr)
    {
        *read = 0;
    }
    if (Fails())
    {
        return Failure;
    }
    const size_t count = Position < Bytes.size() ? std::min<size_t>(size, Bytes.size() - Position) : 0;
    if (count > 0)
    {
        std::memcpy(data, Bytes.data() + Position, count);
    }
    Position += count;
    if (read != nullptr)
    {
        *read = static_cast<ULONG>(count);
    }
    return count == size ? S_OK : S_FALSE;
}

HRESULT FakeStream::Write(const void *data, ULONG size, ULONG *written) noexcept
{
    if (written != nullptr)
    {
        *written = 0;
    }
    if (Fails())
    {
        return Failure;
    }
    Bytes.resize(std::max(Bytes.size(), Position + size));
    std::memcpy(Bytes.data() + Position, data, size);
    Position += size;
    if (written != nullptr)
    {
        *written = size;
    }
    return S_OK;
}

HRESULT FakeStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER *position) noexcept
{
    if (Fails())
    {
        return Failure;
    }
    const INT64 base = origin == STREAM_SEEK_SET   ? 0
                       : origin == STREAM_SEEK_CUR ? static_cast<INT64>(Position)
                                                   : static_cast<INT64>(Bytes.size());
    Position = static_cast<size_t>(base + move.QuadPart);
    if (position != nullptr)
    {
        position->QuadPart = Position;
    }
    return S_OK;
}

HRESULT FakeStream::SetSize(ULARGE_INTEGER size) noexcept
{
    if (Fails())
    {
        return Failure;
    }
    Bytes.resize(static_cast<size_t>(size.QuadPart));
    return S_OK;
}

HRESULT FakeStream::Stat(STATSTG *status, DWORD) noexcept
{
    *status = {};
    status->cbSize.QuadPart = Bytes.size();
    return S_OK;
}
