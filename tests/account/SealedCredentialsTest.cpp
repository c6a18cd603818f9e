// The finished module must not show the application's key and secret to who looks at its bytes.
#include "core/ThisModule.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace
{
// Both forms lie in this program, so that a search that finds nothing anywhere is noticed.
const char NarrowKey[] = PLAIN_KEY;
const char NarrowSecret[] = PLAIN_SECRET;
const char16_t WideKey[] = u"" PLAIN_KEY;
const char16_t WideSecret[] = u"" PLAIN_SECRET;

std::string ContentOf(const std::filesystem::path &file)
{
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// Which runs of 8 characters of the value are there; shorter ones turn up by chance.
template <class Character>
std::string PartsFound(const std::string &content, const Character *value, size_t length)
{
    const auto *bytes = reinterpret_cast<const char *>(value);
    const size_t run = 8 * sizeof(Character);
    std::string found;
    for (size_t from = 0; from < length * sizeof(Character); from += run)
    {
        const bool isThere = content.find(std::string(bytes + from, run)) != std::string::npos;
        found += isThere ? 'x' : '-';
    }
    return found;
}
} // namespace

TEST(SealedCredentials, AreNotToBeReadInTheModule)
{
    const std::string module = ContentOf(SEALED_MODULE);
    ASSERT_GT(module.size(), 10000u) << SEALED_MODULE;
    const std::string control = ContentOf(std::filesystem::path(ThisModulePath()));
    ASSERT_GT(control.size(), 10000u);

    const auto look = [&](const auto &value) {
        const size_t length = std::size(value) - 1;
        EXPECT_EQ(PartsFound(control, value, length), std::string(length / 8, 'x')) << "the search is at fault";
        EXPECT_EQ(PartsFound(module, value, length), std::string(length / 8, '-'));
    };
    look(NarrowKey);
    look(NarrowSecret);
    look(WideKey);
    look(WideSecret);
}
