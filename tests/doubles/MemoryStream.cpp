#include "tests/doubles/MemoryStream.h"

#include <algorithm>
#include <cstring>

HRESULT MemoryStream::Read(void *target, ULONG length, ULONG *done)
{
    const HRESULT result = Calls.Enter("Read", {std::to_string(length)});
    size_t count = 0;
    if (SUCCEEDED(result) && Position < Content.size())
    {
        count = std::min<size_t>(length, Content.size() - Position);
        std::memcpy(target, Content.data() + Position, count);
        Position += count;
    }
    *done = static_cast<ULONG>(count);
    return FAILED(result) ? result : count == length ? S_OK : S_FALSE;
}

HRESULT MemoryStream::Write(const void *source, ULONG length, ULONG *done)
{
    const HRESULT result = Calls.Enter("Write", {std::to_string(length)});
    const size_t count = SUCCEEDED(result) ? std::min<size_t>(length, Room - std::min(Room, Position)) : 0;
    Content.resize(std::max(Content.size(), Position + count));
    Content.replace(Position, count, static_cast<const char *>(source), count);
    Position += count;
    *done = static_cast<ULONG>(count);
    return result;
}

HRESULT MemoryStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER *position)
{
    const HRESULT result = Calls.Enter("Seek");
    if (FAILED(result))
    {
        return result;
    }
    const size_t bases[] = {0, Position, Content.size()};
    if (origin > STREAM_SEEK_END || static_cast<INT64>(bases[origin]) + move.QuadPart < 0)
    {
        return STG_E_INVALIDFUNCTION;
    }
    Position = static_cast<size_t>(static_cast<INT64>(bases[origin]) + move.QuadPart);
    position->QuadPart = Position;
    return S_OK;
}

HRESULT MemoryStream::SetSize(ULARGE_INTEGER size)
{
    const HRESULT result = Calls.Enter("SetSize", {std::to_string(size.QuadPart)});
    if (SUCCEEDED(result))
    {
        Content.resize(static_cast<size_t>(size.QuadPart));
    }
    return result;
}

HRESULT MemoryStream::Stat(STATSTG *statistics, DWORD)
{
    const HRESULT result = Calls.Enter("Stat");
    *statistics = {};
    statistics->type = STGTY_STREAM;
    statistics->cbSize.QuadPart = Content.size();
    return result;
}
