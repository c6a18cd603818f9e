#include "account/ApplicationCredentials.h"

#include "com/WideText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <optional>
#include <thread>
#include <vector>

namespace
{
// The buffer whose end is looked at, and how many of its bytes were still there when it was freed.
const unsigned char *watched = nullptr;
size_t watchedLength = 0;
std::optional<ptrdiff_t> bytesLeft;
} // namespace

// malloc's blocks are aligned to 16 bytes, which is what this program asks for.
void *operator new(size_t size, std::align_val_t)
{
    void *const memory = std::malloc(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}

void operator delete(void *memory, std::align_val_t) noexcept
{
    if (memory != nullptr && memory == watched)
    {
        bytesLeft = std::count_if(watched, watched + watchedLength, [](unsigned char byte) { return byte != 0; });
        watched = nullptr;
    }
    std::free(memory);
}

void operator delete(void *memory, size_t, std::align_val_t alignment) noexcept
{
    ::operator delete(memory, alignment);
}

namespace
{
// The opens of a test are closed even if it fails half-way.
WideText Plain(const SecuredString &record)
{
    const WideText text = OpenSecuredString(record);
    CloseSecuredString(record);
    return text;
}

// A record of any bytes, so that lengths and masks can be told by hand.
struct HandMade
{
    alignas(SecuredString) BYTE Bytes[sizeof(SecuredString) + 64] = {};

    HandMade(UINT32 lengthWord, UINT32 mask, const std::vector<BYTE> &data)
    {
        auto &head = *new (Bytes) SecuredString{lengthWord, mask, 0};
        std::copy(data.begin(), data.end(), Bytes + sizeof(head));
    }

    const SecuredString &Record() const { return *reinterpret_cast<const SecuredString *>(Bytes); }
};

std::vector<BYTE> Opened(const HandMade &value, size_t length)
{
    const auto *plain = reinterpret_cast<const BYTE *>(OpenSecuredString(value.Record()));
    EXPECT_EQ(reinterpret_cast<size_t>(plain) % 16, 0u);
    std::vector<BYTE> bytes(plain, plain + length);
    CloseSecuredString(value.Record());
    return bytes;
}
} // namespace

TEST(ApplicationCredentials, LieSealedInRecordsOfTheToldForm)
{
    static_assert(offsetof(SecuredRecord<66>, Data) == 16 && offsetof(SecuredString, maskWord) == 4);
    EXPECT_EQ(ApplicationKey.Head.lengthWord, 0x80000000u | 66);
    EXPECT_EQ(ApplicationSecret.Head.lengthWord, 0x80000000u | 34);
    EXPECT_NE(ApplicationKey.Head.maskWord, ApplicationSecret.Head.maskWord);

    const auto isPrintable = [](WCHAR unit) { return unit > ' ' && unit <= '~'; };
    for (const auto &[record, length] :
         {std::pair(&ApplicationKey.Head, 32u), std::pair(&ApplicationSecret.Head, 16u)})
    {
        const WideText plain = Plain(*record);
        EXPECT_EQ(plain.size(), length);
        EXPECT_TRUE(std::ranges::all_of(plain, isPrintable));
    }
}

TEST(ApplicationCredentials, EachByteGoesUnderItsPartOfTheMask)
{
    // Mask 0x89ABCDEF: EF CD AB 89 over the chunks; behind them the low byte of the mask shifted by position.
    const struct
    {
        size_t length;
        std::vector<BYTE> plainOfZeros;
    } cases[] = {
        {1, {0xEF}},
        {2, {0xEF, 0xF7}},
        {3, {0xEF, 0xF7, 0x7B}},
        {4, {0xEF, 0xCD, 0xAB, 0x89}},
        {7, {0xEF, 0xCD, 0xAB, 0x89, 0xDE, 0x6F, 0x37}},
        {16, {0xEF, 0xCD, 0xAB, 0x89, 0xEF, 0xCD, 0xAB, 0x89, 0xEF, 0xCD, 0xAB, 0x89, 0xEF, 0xCD, 0xAB, 0x89}},
    };
    for (const auto &[length, plain] : cases)
    {
        const HandMade value(static_cast<UINT32>(length), 0x89ABCDEF, std::vector<BYTE>(length, 0));
        EXPECT_EQ(Opened(value, length), plain);
    }
    // Positions 32 and 33 count modulo 31: shifts 1 and 2, whatever bit 31 of the length says.
    const HandMade secret(0x80000000 | 34, 0x89ABCDEF, std::vector<BYTE>(34, 0xFF));
    const std::vector<BYTE> plain = Opened(secret, 34);
    EXPECT_EQ(plain[31], 0xFF ^ 0x89);
    EXPECT_EQ(plain[32], 0xFF ^ 0xF7);
    EXPECT_EQ(plain[33], 0xFF ^ 0x7B);
}

TEST(ApplicationCredentials, OverlappingOpensShareOneBufferThatTheLastCloseWipes)
{
    const SecuredString &record = ApplicationKey.Head;
    const WCHAR *first = OpenSecuredString(record);
    const WideText text = first;
    watched = reinterpret_cast<const unsigned char *>(first);
    watchedLength = 66;
    bytesLeft.reset();
    EXPECT_EQ(OpenSecuredString(record), first);
    CloseSecuredString(record);
    EXPECT_FALSE(bytesLeft) << "still open";
    EXPECT_EQ(WideText(first), text);
    CloseSecuredString(record);
    EXPECT_EQ(bytesLeft, 0);

    CloseSecuredString(record);
    EXPECT_EQ(Plain(record), text) << "a close too many changes nothing";
}

TEST(ApplicationCredentials, MayBeOpenedFromManyThreadsAtOnce)
{
    const WideText key = Plain(ApplicationKey.Head);
    const WideText secret = Plain(ApplicationSecret.Head);
    std::atomic<int> wrong{0};
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i)
        {
            threads.emplace_back([&] {
                for (int round = 0; round < 2000; ++round)
                {
                    wrong += secret != OpenSecuredString(ApplicationSecret.Head);
                    wrong += key != OpenSecuredString(ApplicationKey.Head);
                    CloseSecuredString(ApplicationSecret.Head);
                    CloseSecuredString(ApplicationKey.Head);
                }
            });
        }
    }
    EXPECT_EQ(wrong, 0);
}
