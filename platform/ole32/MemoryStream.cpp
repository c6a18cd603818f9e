// Streams over global memory. A stream and its clones share memory and size, each has a position
// of its own. The memory grows ahead of the size, so that small writes stay cheap.
#include "com/HandleOwner.h"
#include "platform/ole32/StreamBase.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>

namespace
{
// GetHGlobalFromStream asks a stream for this interface to learn whether it is one of these.
const IID MemoryStreamId = {0x6f2ad5b3, 0x1c0e, 0x4d0b, {0x9a, 0x0b, 0x52, 0x2d, 0x88, 0x31, 0x6e, 0x57}};

struct SharedMemory
{
    SharedMemory(HGLOBAL handle, bool freeAtEnd) : memory(handle), size(GlobalSize(handle)), owned(freeAtEnd) {}
    ~SharedMemory()
    {
        if (owned)
        {
            GlobalFree(memory);
        }
    }
    SharedMemory(const SharedMemory &) = delete;
    SharedMemory &operator=(const SharedMemory &) = delete;

    // Makes room for the wanted number of bytes; new ones are zero.
    bool Resize(ULONGLONG wanted)
    {
        if (wanted > 0xFFFFFFFF)
        {
            return false;
        }
        const SIZE_T capacity = GlobalSize(memory);
        if (wanted > capacity)
        {
            const SIZE_T grown = std::max<SIZE_T>({static_cast<SIZE_T>(wanted), capacity + capacity / 2, 4096});
            const HGLOBAL moved = GlobalReAlloc(memory, grown, GMEM_MOVEABLE);
            if (moved == nullptr)
            {
                return false;
            }
            memory = moved;
        }
        if (wanted > size)
        {
            const GlobalLockOwner locked(memory);
            std::memset(static_cast<BYTE *>(GlobalLock(memory)) + size, 0, wanted - size);
        }
        size = wanted;
        return true;
    }

    std::mutex lock;
    HGLOBAL memory;
    ULONGLONG size;
    bool owned;
};

class MemoryStream final : public StreamBase<MemoryStream>
{
public:
    MemoryStream(std::shared_ptr<SharedMemory> shared, ULONGLONG position)
        : m_shared(std::move(shared)), m_position(position)
    {
    }

    HRESULT QueryFurther(REFIID iid, void **object) noexcept
    {
        if (iid != MemoryStreamId)
        {
            return E_NOINTERFACE;
        }
        *object = this;
        AddRef();
        return S_OK;
    }

    HGLOBAL Memory() const { return m_shared->memory; }

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
        const ULONGLONG left = m_position < m_shared->size ? m_shared->size - m_position : 0;
        const ULONG got = static_cast<ULONG>(std::min<ULONGLONG>(wanted, left));
        if (got != 0)
        {
            const GlobalLockOwner locked(m_shared->memory);
            std::memcpy(bytes, static_cast<BYTE *>(GlobalLock(m_shared->memory)) + m_position, got);
        }
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
        if (m_position + count > m_shared->size && !m_shared->Resize(m_position + count))
        {
            return STG_E_MEDIUMFULL;
        }
        const GlobalLockOwner locked(m_shared->memory);
        std::memcpy(static_cast<BYTE *>(GlobalLock(m_shared->memory)) + m_position, bytes, count);
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
        const bool valid = NewPosition(move, origin, m_position, m_shared->size, m_position);
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
        status->cbSize.QuadPart = m_shared->size;
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

HRESULT WINAPI CreateStreamOnHGlobal(HGLOBAL memory, BOOL freeAtEnd, LPSTREAM *stream)
{
    if (stream == nullptr)
    {
        return E_INVALIDARG;
    }
    *stream = nullptr;
    return AtBoundary([&]() -> HRESULT {
        GlobalMemoryOwner fresh(memory ? nullptr : GlobalAlloc(GMEM_MOVEABLE, 0));
        if (memory == nullptr && !fresh)
        {
            return E_OUTOFMEMORY;
        }
        auto shared = std::make_shared<SharedMemory>(memory ? memory : fresh.Get(), freeAtEnd != FALSE);
        static_cast<void>(fresh.Detach());
        return MemoryStream::CreateInstance(nullptr, __uuidof(IStream), reinterpret_cast<void **>(stream),
                                            std::move(shared), ULONGLONG{0});
    });
}

HRESULT WINAPI GetHGlobalFromStream(LPSTREAM stream, HGLOBAL *memory)
{
    if (stream == nullptr || memory == nullptr)
    {
        return E_INVALIDARG;
    }
    *memory = nullptr;
    void *found = nullptr;
    if (FAILED(stream->QueryInterface(MemoryStreamId, &found)))
    {
        return E_INVALIDARG;
    }
    const auto own = ComPtr<MemoryStream>::Adopt(static_cast<MemoryStream *>(found));
    *memory = own->Memory();
    return S_OK;
}
