// Streams in memory.
#include "platform/ole32/StreamBase.h"

#include <algorithm>
#include <cstring>
#include <mutex>
#include <vector>

namespace
{
class MemoryStream final : public StreamBase<MemoryStream>
{
public:
    // Like Windows' own, this stream answers S_OK at its end, with fewer bytes.
    STDMETHODIMP Read(void *bytes, ULONG wanted, ULONG *read) noexcept override
    {
        if (read != nullptr)
        {
            *read = 0;
        }
        if (bytes == nullptr)
        {
            return STG_E_INVALIDPOINTER;
        }
        const std::lock_guard guard(m_lock);
        const ULONGLONG left = m_position < m_bytes.size() ? m_bytes.size() - m_position : 0;
        const ULONG got = static_cast<ULONG>(std::min<ULONGLONG>(wanted, left));
        std::copy_n(m_bytes.data() + std::min<ULONGLONG>(m_position, m_bytes.size()), got,
                    static_cast<BYTE *>(bytes));
        m_position += got;
        if (read != nullptr)
        {
            *read = got;
        }
        return S_OK;
    }

    STDMETHODIMP Write(const void *bytes, ULONG count, ULONG *written) noexcept override
    {
        if (written != nullptr)
        {
            *written = 0;
        }
        if (bytes == nullptr)
        {
            return STG_E_INVALIDPOINTER;
        }
        if (count == 0)
        {
            return S_OK;
        }
        const std::lock_guard guard(m_lock);
        if (m_position + count > m_bytes.size() && !Resize(m_position + count))
        {
            return STG_E_MEDIUMFULL;
        }
        std::memcpy(m_bytes.data() + m_position, bytes, count);
        m_position += count;
        if (written != nullptr)
        {
            *written = count;
        }
        return S_OK;
    }

    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER *position) noexcept override
    {
        const std::lock_guard guard(m_lock);
        const bool valid = NewPosition(move, origin, m_position, m_bytes.size(), m_position);
        if (position != nullptr)
        {
            position->QuadPart = m_position;
        }
        return valid ? S_OK : STG_E_SEEKERROR;
    }

    STDMETHODIMP SetSize(ULARGE_INTEGER size) noexcept override
    {
        const std::lock_guard guard(m_lock);
        return Resize(size.QuadPart) ? S_OK : STG_E_MEDIUMFULL;
    }

    STDMETHODIMP Stat(STATSTG *status, DWORD) noexcept override
    {
        if (status == nullptr)
        {
            return STG_E_INVALIDPOINTER;
        }
        *status = STATSTG{};
        status->type = STGTY_STREAM;
        const std::lock_guard guard(m_lock);
        status->cbSize.QuadPart = m_bytes.size();
        return S_OK;
    }

private:
    // New bytes are zero. False if there is no memory for them.
    bool Resize(ULONGLONG wanted) noexcept
    {
        if (wanted > 0xFFFFFFFF)
        {
            return false;
        }
        try
        {
            m_bytes.resize(wanted);
            return true;
        }
        catch (const std::bad_alloc &)
        {
            return false;
        }
    }

    std::mutex m_lock;
    std::vector<BYTE> m_bytes;
    ULONGLONG m_position = 0;
};
} // namespace

// Only for a stream that makes its own memory.
HRESULT WINAPI CreateStreamOnHGlobal(HGLOBAL memory, BOOL, LPSTREAM *stream)
{
    if (stream == nullptr || memory != nullptr)
    {
        return E_INVALIDARG;
    }
    *stream = nullptr;
    return MemoryStream::CreateInstance(nullptr, __uuidof(IStream), reinterpret_cast<void **>(stream));
}
