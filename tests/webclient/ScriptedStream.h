// A stream over bytes in memory that can claim another size, give out small portions, and fail.
#pragma once

#include "platform/ole32/StreamBase.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>

class ScriptedStream final : public StreamBase<ScriptedStream>
{
public:
    explicit ScriptedStream(std::string bytes, ULONG portion = 0xFFFFFFFF)
        : m_bytes(std::move(bytes)), m_portion(portion)
    {
    }

    static ComPtr<ScriptedStream> Make(std::string bytes, ULONG portion = 0xFFFFFFFF)
    {
        return ComObject::Make(std::move(bytes), portion);
    }

    // From a literal, zeros included.
    template <size_t N>
    static ComPtr<ScriptedStream> Make(const char (&literal)[N], ULONG portion = 0xFFFFFFFF)
    {
        return ComObject::Make(std::string(literal, N - 1), portion);
    }

    // So many bytes without holding them.
    static ComPtr<ScriptedStream> MakeEndless(UINT64 size)
    {
        auto stream = Make(std::string(100'000, 'x'));
        stream->claimedSize = size;
        stream->endless = true;
        return stream;
    }

    const std::string &Bytes() const { return m_bytes; }

    std::optional<UINT64> claimedSize;
    std::optional<UINT64> failAt; // a read at or behind this position fails
    HRESULT failure = STG_E_READFAULT;
    bool seekFails = false;
    bool endless = false; // the last bytes repeat up to the claimed size

    STDMETHODIMP Read(void *buffer, ULONG size, ULONG *read) noexcept override
    {
        if (failAt && m_position >= *failAt)
        {
            *read = 0;
            return failure;
        }
        const UINT64 end = endless ? claimedSize.value_or(m_bytes.size()) : m_bytes.size();
        UINT64 count = std::min<UINT64>({size, m_portion, end - std::min(end, m_position)});
        if (failAt)
        {
            count = std::min(count, *failAt - m_position);
        }
        for (UINT64 done = 0; done < count;)
        {
            const UINT64 from = (m_position + done) % m_bytes.size();
            const UINT64 piece = std::min<UINT64>(count - done, m_bytes.size() - from);
            std::memcpy(static_cast<char *>(buffer) + done, m_bytes.data() + from, piece);
            done += piece;
        }
        m_position += count;
        *read = static_cast<ULONG>(count);
        return count == size ? S_OK : S_FALSE;
    }

    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER *position) noexcept override
    {
        if (seekFails)
        {
            return STG_E_INVALIDFUNCTION;
        }
        m_position = (origin == STREAM_SEEK_CUR ? m_position : 0) + static_cast<UINT64>(move.QuadPart);
        if (position != nullptr)
        {
            position->QuadPart = m_position;
        }
        return S_OK;
    }

    STDMETHODIMP Stat(STATSTG *status, DWORD) noexcept override
    {
        *status = STATSTG{};
        status->type = STGTY_STREAM;
        status->cbSize.QuadPart = claimedSize.value_or(m_bytes.size());
        return S_OK;
    }

    STDMETHODIMP Write(const void *, ULONG, ULONG *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetSize(ULARGE_INTEGER) noexcept override { return E_NOTIMPL; }

private:
    std::string m_bytes;
    ULONG m_portion;
    UINT64 m_position = 0;
};
