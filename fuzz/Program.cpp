// The readers of untrusted bytes under libFuzzer (https://llvm.org/docs/LibFuzzer.html), which calls
// LLVMFuzzerTestOneInput with bytes that it changes so that they reach more and more of the code:
//
//     fuzz-readers TARGET FOLDER [FOLDER...] [-runs=N] [-max_total_time=SECONDS] ...
//
// The folders hold the bytes to begin with. The target's samples and what earlier searches kept, each a line of
// hexadecimal digits in corpus/TARGET, are put into the first; so is what is found worth keeping. tools/fuzz builds and
// starts it. With a compiler that has no libFuzzer, Replay.cpp reads each file once.
#include "fuzz/FuzzTarget.h"

#include <windows.h>
#include <objbase.h>

#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

// Not our leak: exiv2's XMP toolkit keeps the namespaces of every packet until the process ends.
// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming): the sanitizer looks for this name
extern "C" __attribute__((visibility("default"))) const char *__lsan_default_suppressions()
{
    return "leak:Exiv2::XmpProperties::registerNs";
}

namespace
{
constexpr const FuzzTarget *Targets[] = {&JpegFiles, &MetadataPaths, &RegistryFiles,   &AccountStreams, &Addresses,
                                         &Replies,   &TaskDialogs,   &MultipartBodies, &Forms};
const FuzzTarget *g_target;

const FuzzTarget *TargetOf(std::string_view name)
{
    for (const FuzzTarget *target : Targets)
    {
        if (name == target->Name)
        {
            return target;
        }
    }
    return nullptr;
}

[[noreturn]] void Refuse()
{
    std::fputs("fuzz-readers TARGET FOLDER...; the targets are", stderr);
    for (const FuzzTarget *target : Targets)
    {
        std::fprintf(stderr, " %s", target->Name);
    }
    std::fputs("\n", stderr);
    std::exit(2);
}

std::string BytesOfDigits(std::string_view digits)
{
    std::string bytes;
    for (; digits.size() >= 2; digits.remove_prefix(2))
    {
        unsigned byte = 0;
        std::from_chars(digits.data(), digits.data() + 2, byte, 16);
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

void WriteSamples(const std::filesystem::path &folder)
{
    std::vector<std::string> samples = g_target->Samples();
    std::ifstream kept(std::filesystem::path(FUZZ_CORPUS) / g_target->Name);
    for (std::string line; std::getline(kept, line);)
    {
        samples.push_back(BytesOfDigits(line));
    }
    std::filesystem::create_directories(folder);
    int number = 0;
    for (const std::string &sample : samples)
    {
        std::ofstream(folder / ("sample" + std::to_string(++number)), std::ios::binary) << sample;
    }
}
} // namespace

void Broken(const char *promise)
{
    std::fprintf(stderr, "fuzz-readers: %s: not so: %s\n", g_target->Name, promise);
    std::abort();
}

extern "C" int LLVMFuzzerInitialize(int *count, char ***arguments)
{
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    // libFuzzer starts the program again to merge or to work in parallel, with arguments of its own.
    constexpr char inherited[] = "HALVORA_FUZZ_TARGET";
    if (const char *const name = std::getenv(inherited))
    {
        g_target = TargetOf(name);
        return 0;
    }
    g_target = *count > 2 ? TargetOf((*arguments)[1]) : nullptr;
    if (g_target == nullptr)
    {
        Refuse();
    }
    setenv(inherited, g_target->Name, 1);
    WriteSamples((*arguments)[2]);
    // libFuzzer reads the rest.
    (*arguments)[1] = (*arguments)[0];
    ++*arguments;
    --*count;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, size_t size)
{
    g_target->Read({reinterpret_cast<const char *>(bytes), size});
    return 0;
}
