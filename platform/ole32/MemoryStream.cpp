// Streams in memory. A stream and its clones share their bytes, each has a position of its own.
#include "platform/ole32/StreamBase.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

namespace
{
struct SharedMemory
{
    // New bytes are zero. False if there is no memory for them.
    bool Resize(ULONGLONG wanted) noexcept
    {
        if (wanted > 0xFFFFFFFF)
        {
            return false;
        }
        try
        {
            bytes.resize(wanted);
            return true;
        }
        catch (const std::bad_alloc &)
        {
            return false;
        }
    }

    std::mutex lock;
    std::vector<BYTE> bytes;
};

class MemoryStream final : public StreamBase<MemoryStream>
{
public:
    MemoryStream(std::shared_ptr<SharedMemory> shared, ULONGLONG position)
        : m_shared(std::move(shared)), m_position(position)
    {
    }

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
        const std::lock_guard guard(m_shared->lock);
        const std::vector<BYTE> &held = m_shared->bytes;
        const ULONGLONG left = m_position < held.size() ? held.size() - m_position : 0;
        const ULONG got = static_cast<ULONG>(std::min<ULONGLONG>(wanted, left));
        std::memcpy(bytes, held.data() + (got != 0 ? m_position : 0), got);
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
        const std::lock_guard guard(m_shared->lock);
        if (m_position + count > m_shared->bytes.size() && !m_shared->Resize(m_position + count))
        {
            return STG_E_MEDIUMFULL;
        }
        std::memcpy(m_shared->bytes.data() + m_position, bytes, count);
        m_position += count;
        if (written != nullptr)
        {
            *written = count;
        }
        return S_OK;
    }

    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER *position) noexcept override
    {
        const std::lock_guard guard(m_shared->lock);
        const bool valid = NewPosition(move, origin, m_position, m_shared->bytes.size(), m_position);
        if (position != nullptr)
        {
            position->QuadPart = m_position;
        }
        return valid ? S_OK : STG_E_SEEKERROR;
    }

    STDMETHODIMP SetSize(ULARGE_INTEGER size) noexcept override
    {
        const std::lock_guard guard(m_shared->lock);
        return m_shared->Resize(size.QuadPart) ? S_OK : STG_E_MEDIUMFULL;
    }

    STDMETHODIMP Stat(STATSTG *status, DWORD) noexcept override
    {
        if (status == nullptr)
        {
            return STG_E_INVALIDPOINTER;
        }
        *status = STATSTG{};
        status->type = STGTY_STREAM;
        const std::lock_guard guard(m_shared->lock);
        status->cbSize.QuadPart = m_shared->bytes.size();
        return S_OK;
    }

    STDMETHODIMP Clone(IStream **clone) noexcept override
    {
        if (clone == nullptr)
        {
            return STG_E_INVALIDPOINTER;
        }
        return CreateInstance(nullptr, __uuidof(IStream), reinterpret_cast<void **>(clone), m_shared, m_position);
    }

private:
    std::shared_ptr<SharedMemory> m_shared;
    ULONGLONG m_position;
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
    return AtBoundary([&] {
        return MemoryStream::CreateInstance(nullptr, __uuidof(IStream), reinterpret_cast<void **>(stream),
                                            std::make_shared<SharedMemory>(), ULONGLONG{0});
    });
}
