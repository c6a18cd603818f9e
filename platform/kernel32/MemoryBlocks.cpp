// Global and local memory: both are one heap, as on Windows. A fixed block's handle is its address;
// a movable one's is the address of its record, so that a caller must lock it to get the memory.
#include <windows.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace
{
struct Block
{
    void *memory = nullptr;
    size_t size = 0;
    bool movable = false;
    unsigned locks = 0;

    ~Block() { std::free(memory); }
};

// GMEM_* and LMEM_* have the same values where both are used here.
static_assert(GMEM_MOVEABLE == LMEM_MOVEABLE && GMEM_ZEROINIT == LMEM_ZEROINIT);

class Heap
{
public:
    HGLOBAL Allocate(UINT flags, size_t size)
    {
        auto block = std::make_unique<Block>();
        block->movable = (flags & GMEM_MOVEABLE) != 0;
        if (!Resize(*block, flags, size))
        {
            return nullptr;
        }
        const HGLOBAL handle = block->movable ? block.get() : block->memory;
        const std::lock_guard guard(m_lock);
        m_blocks.emplace(handle, std::move(block));
        return handle;
    }

    // Calls use(block) under the lock. Sets the last error and returns `failed` if there is no such block.
    template <class Result, class Use>
    Result With(HGLOBAL handle, Result failed, Use use)
    {
        const std::lock_guard guard(m_lock);
        const auto found = m_blocks.find(handle);
        if (found == m_blocks.end())
        {
            SetLastError(ERROR_INVALID_HANDLE);
            return failed;
        }
        return use(*found->second);
    }

    HGLOBAL Reallocate(HGLOBAL handle, UINT flags, size_t size)
    {
        return With(handle, HGLOBAL{}, [&](Block &block) -> HGLOBAL {
            if (!block.movable && !(flags & GMEM_MOVEABLE) && size > block.size)
            {
                SetLastError(ERROR_NOT_ENOUGH_MEMORY);
                return nullptr;
            }
            if (!Resize(block, flags, size))
            {
                return nullptr;
            }
            if (block.movable || handle == block.memory)
            {
                return handle;
            }
            auto node = m_blocks.extract(handle);
            node.key() = block.memory;
            m_blocks.insert(std::move(node));
            return block.memory;
        });
    }

    // Returns null if the block was freed or the handle is null, otherwise the handle.
    HGLOBAL Free(HGLOBAL handle)
    {
        const std::lock_guard guard(m_lock);
        if (handle != nullptr && m_blocks.erase(handle) == 0)
        {
            SetLastError(ERROR_INVALID_HANDLE);
            return handle;
        }
        return nullptr;
    }

private:
    // A movable block of size 0 has no memory: it counts as discarded.
    static bool Resize(Block &block, UINT flags, size_t size)
    {
        const size_t needed = block.movable ? size : std::max<size_t>(size, 1);
        void *const memory = needed == 0 ? nullptr : std::realloc(block.memory, needed);
        if (memory == nullptr && needed != 0)
        {
            SetLastError(ERROR_NOT_ENOUGH_MEMORY);
            return false;
        }
        if (needed == 0)
        {
            std::free(block.memory);
        }
        block.memory = memory;
        if ((flags & GMEM_ZEROINIT) && size > block.size)
        {
            std::memset(static_cast<BYTE *>(memory) + block.size, 0, size - block.size);
        }
        block.size = size;
        return true;
    }

    std::mutex m_lock;
    std::unordered_map<HGLOBAL, std::unique_ptr<Block>> m_blocks;
};

// Never destroyed, since owners in other modules free memory until the process ends.
Heap &TheHeap()
{
    static Heap *const heap = new Heap;
    return *heap;
}
} // namespace

HGLOBAL WINAPI GlobalAlloc(UINT flags, SIZE_T size)
{
    return TheHeap().Allocate(flags, size);
}

HGLOBAL WINAPI GlobalReAlloc(HGLOBAL handle, SIZE_T size, UINT flags)
{
    return TheHeap().Reallocate(handle, flags, size);
}

HGLOBAL WINAPI GlobalFree(HGLOBAL handle)
{
    return TheHeap().Free(handle);
}

SIZE_T WINAPI GlobalSize(HGLOBAL handle)
{
    return TheHeap().With(handle, SIZE_T{0}, [](Block &block) { return block.size; });
}

LPVOID WINAPI GlobalLock(HGLOBAL handle)
{
    return TheHeap().With(handle, LPVOID{}, [](Block &block) {
        if (block.memory == nullptr)
        {
            SetLastError(ERROR_DISCARDED);
        }
        else if (block.movable)
        {
            ++block.locks;
        }
        return block.memory;
    });
}

BOOL WINAPI GlobalUnlock(HGLOBAL handle)
{
    return TheHeap().With(handle, FALSE, [](Block &block) -> BOOL {
        if (!block.movable)
        {
            return TRUE;
        }
        if (block.locks == 0)
        {
            SetLastError(ERROR_NOT_LOCKED);
            return FALSE;
        }
        if (--block.locks == 0)
        {
            SetLastError(ERROR_SUCCESS);
        }
        return block.locks != 0;
    });
}

HLOCAL WINAPI LocalAlloc(UINT flags, SIZE_T size)
{
    return TheHeap().Allocate(flags, size);
}

HLOCAL WINAPI LocalFree(HLOCAL handle)
{
    return TheHeap().Free(handle);
}
