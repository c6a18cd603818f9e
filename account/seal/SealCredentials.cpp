// seal-credentials KEY SECRET OUTPUT
//
// Runs on the machine that builds: writes a C++ source with the application's key (32 characters) and
// secret (16) as sealed records, each under a mask of its own. Exit code 2, with words, for values that
// the records can't hold.
#include "account/SecuredTransformation.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace
{
// No byte may pass unchanged, and no ASCII character may become another one: the bytes over the low
// halves of characters have their upper bit set. The bytes behind the last whole chunk are under the mask
// shifted by 1 to 3.
bool IsGoodMask(std::uint32_t mask)
{
    for (int shift : {1, 2, 3, 8, 24})
    {
        if ((mask >> shift & 0xFF) == 0)
        {
            return false;
        }
    }
    return (mask & 0x00800080) == 0x00800080;
}

// Follows from the value, so that the same source and values give the same bytes. The mask lies beside what it
// covers: one that nobody could repeat would hide no more.
std::uint32_t MaskFor(std::string_view value)
{
    std::seed_seq seed(value.begin(), value.end());
    std::mt19937 random(seed);
    std::uint32_t mask = 0;
    while (!IsGoodMask(mask))
    {
        mask = static_cast<std::uint32_t>(random());
    }
    return mask;
}

void WriteRecord(std::ostream &out, const char *name, std::string_view value)
{
    std::vector<std::uint8_t> bytes;
    for (char character : value)
    {
        bytes.push_back(static_cast<std::uint8_t>(character));
        bytes.push_back(0);
    }
    bytes.insert(bytes.end(), 2, 0);
    const std::uint32_t mask = MaskFor(value);
    TransformSecured(bytes.data(), bytes.data(), bytes.size(), mask);

    out << "const SecuredRecord<" << bytes.size() << "> " << name << " = {\n    {"
        << (0x80000000u | static_cast<std::uint32_t>(bytes.size())) << "u, " << mask << "u, 0},\n    {";
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        out << (i == 0 ? "" : i % 16 == 0 ? ",\n     " : ", ") << static_cast<unsigned>(bytes[i]);
    }
    out << "}};\n";
}

bool IsSealable(const char *name, std::string_view value, std::size_t length)
{
    const bool printable = std::ranges::all_of(value, [](char c) { return c > ' ' && c <= '~'; });
    if (value.size() == length && printable)
    {
        return true;
    }
    std::fprintf(stderr, "%s must have exactly %zu printable ASCII characters; the one given has %zu%s.\n", name,
                 length, value.size(), printable ? "" : ", not all of them printable ASCII");
    return false;
}
} // namespace

int main(int argc, char **argv)
{
    if (argc != 4)
    {
        std::fputs("usage: seal-credentials KEY SECRET OUTPUT\n", stderr);
        return 2;
    }
    const bool keyFits = IsSealable("HALVORA_APPLICATION_KEY", argv[1], 32);
    const bool secretFits = IsSealable("HALVORA_APPLICATION_SECRET", argv[2], 16);
    if (!keyFits || !secretFits)
    {
        return 2;
    }
    std::ofstream out(argv[3], std::ios::trunc);
    out << "// Made while the system is built.\n"
           "#include \"account/ApplicationCredentials.h\"\n\n";
    WriteRecord(out, "ApplicationKey", argv[1]);
    WriteRecord(out, "ApplicationSecret", argv[2]);
    out.close();
    if (!out)
    {
        std::fprintf(stderr, "Could not write %s.\n", argv[3]);
        return 1;
    }
    return 0;
}
