// Secret bytes: keys, tokens, and everything that is computed from them. Every buffer that has held any of
// them is overwritten before it is freed, so that nothing is left in memory for a dump or a swap file.
#pragma once

#include "com/TextConversion.h"

#include <compare>
#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

inline void WipeMemory(void *memory, std::size_t bytes) noexcept
{
    // Volatile: a compiler drops other stores to memory that is about to be freed.
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

    // Byte by byte, bytes without a sign.
    friend auto operator<=>(const SecretText &a, const SecretText &b) noexcept { return a.View() <=> b.View(); }
    friend bool operator==(const SecretText &a, const SecretText &b) noexcept { return a.View() == b.View(); }

private:
    // A vector: a string keeps short texts inside the object, where the allocator doesn't wipe them.
    std::vector<char, WipingAllocator<char>> m_bytes;
};

using SecretWideText = std::vector<WCHAR, WipingAllocator<WCHAR>>; // without a closing zero

// UTF-16 to UTF-8 and back, as ToUtf8 and FromUtf8 convert what is no secret: what is malformed becomes U+FFFD.
inline SecretText SecretUtf8FromWide(WideView text)
{
    SecretText result;
    while (!text.empty())
    {
        const char32_t character = TakeUtf16(text);
        AppendUtf8(IsSurrogate(character) ? ReplacementCharacter : character,
                   [&](char byte) { result.Append(byte); });
    }
    return result;
}

inline SecretWideText SecretWideFromUtf8(std::string_view bytes)
{
    SecretWideText result;
    while (!bytes.empty())
    {
        const char32_t character = TakeUtf8(bytes);
        AppendUtf16(result, character == MalformedUtf8 ? ReplacementCharacter : character);
    }
    return result;
}
