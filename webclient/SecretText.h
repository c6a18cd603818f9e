// Bytes that nobody is to find in memory later: keys, tokens, and all that is computed from them.
// Every buffer that the text ever had is overwritten before it is freed.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

inline void WipeMemory(void *memory, std::size_t bytes) noexcept
{
    // Volatile, so that the stores stay although nobody reads them.
    auto *byte = static_cast<volatile unsigned char *>(memory);
    while (bytes-- > 0)
    {
        *byte++ = 0;
    }
}

template <class T>
struct WipingAllocator
{
    using value_type = T;

    WipingAllocator() noexcept = default;
    template <class U>
    WipingAllocator(const WipingAllocator<U> &) noexcept
    {
    }

    T *allocate(std::size_t count) { return std::allocator<T>().allocate(count); }
    void deallocate(T *memory, std::size_t count) noexcept
    {
        WipeMemory(memory, count * sizeof(T));
        std::allocator<T>().deallocate(memory, count);
    }

    template <class U>
    bool operator==(const WipingAllocator<U> &) const noexcept
    {
        return true;
    }
};

class SecretText
{
public:
    SecretText() noexcept = default;
    explicit SecretText(std::string_view text) : m_bytes(text.begin(), text.end()) {}

    void Append(std::string_view text) { m_bytes.insert(m_bytes.end(), text.begin(), text.end()); }
    void Append(char byte) { m_bytes.push_back(byte); }

    std::string_view View() const noexcept { return {m_bytes.data(), m_bytes.size()}; }
    bool IsEmpty() const noexcept { return m_bytes.empty(); }

private:
    // A vector: a string would keep a short text inside the object, out of the allocator's reach.
    std::vector<char, WipingAllocator<char>> m_bytes;
};
