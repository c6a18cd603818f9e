// Stands for libFuzzer with a compiler that has none: reads each file of the folders once, and names it before.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerInitialize(int *count, char ***arguments);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, size_t size);

int main(int count, char **arguments)
{
    LLVMFuzzerInitialize(&count, &arguments);
    for (int i = 1; i < count; ++i)
    {
        for (const auto &entry : std::filesystem::directory_iterator(arguments[i]))
        {
            std::printf("%s\n", entry.path().c_str());
            std::fflush(stdout);
            std::ifstream file(entry.path(), std::ios::binary);
            const std::string bytes(std::istreambuf_iterator<char>(file), {});
            LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
        }
    }
    return 0;
}
