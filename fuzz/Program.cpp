// fuzz-readers TARGET [--seconds N] [--count N] [--seed N] spoils samples in new ways until the time is over or
// the number is reached. fuzz-readers TARGET --file F reads one file. Bytes that abort the program remain in
// fuzz-TARGET.found in the working folder, to be read again with --file.
#include "fuzz/FuzzTarget.h"
#include "fuzz/Mutation.h"

#include <windows.h>
#include <objbase.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include <unistd.h>

// Not our leak: exiv2's XMP toolkit keeps the namespaces of every packet until the process ends.
extern "C" __attribute__((visibility("default"))) const char *__lsan_default_suppressions()
{
    return "leak:Exiv2::XmpProperties::registerNs";
}

extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace
{
constexpr const FuzzTarget *Targets[] = {&JpegFiles, &MetadataPaths, &RegistryFiles,   &AccountStreams, &Addresses,
                                         &Replies,   &TaskDialogs,   &MultipartBodies, &Forms};
constexpr unsigned SecondsForOne = 20;

const FuzzTarget *g_target;
const std::string *g_bytes;

void KeepBytes()
{
    if (g_bytes != nullptr)
    {
        const std::string name = std::string("fuzz-") + g_target->Name + ".found";
        std::ofstream(name, std::ios::binary) << *g_bytes;
        std::fprintf(stderr, "fuzz-readers: the bytes are in %s\n", name.c_str());
    }
}

void EndLate(int)
{
    std::fprintf(stderr, "fuzz-readers: %s is still reading after %u s\n", g_target->Name, SecondsForOne);
    KeepBytes();
    _exit(1);
}

void ReadOne(const std::string &bytes)
{
    g_bytes = &bytes;
    alarm(SecondsForOne);
    g_target->Read(bytes);
    alarm(0);
    g_bytes = nullptr;
}

int Usage()
{
    std::fputs("fuzz-readers TARGET [--seconds N] [--count N] [--seed N] [--file F]; targets:", stderr);
    for (const FuzzTarget *target : Targets)
    {
        std::fprintf(stderr, " %s", target->Name);
    }
    std::fputs("\n", stderr);
    return 2;
}
} // namespace

void Broken(const char *promise)
{
    std::fprintf(stderr, "fuzz-readers: %s: not so: %s\n", g_target->Name, promise);
    KeepBytes();
    _exit(1);
}

int main(int argc, char **argv)
{
    for (const FuzzTarget *target : Targets)
    {
        if (argc % 2 == 0 && std::string_view(argv[1]) == target->Name)
        {
            g_target = target;
        }
    }
    if (g_target == nullptr)
    {
        return Usage();
    }
    double seconds = 1e9;
    unsigned long count = ~0ul;
    uint64_t seed = 1;
    std::string file;
    for (int i = 2; i + 1 < argc; i += 2)
    {
        const std::string_view option = argv[i];
        if (option == "--seconds")
            seconds = std::atof(argv[i + 1]);
        else if (option == "--count")
            count = std::strtoul(argv[i + 1], nullptr, 10);
        else if (option == "--seed")
            seed = std::strtoull(argv[i + 1], nullptr, 10);
        else if (option == "--file")
            file = argv[i + 1];
        else
            return Usage();
    }
    std::signal(SIGALRM, EndLate);
    std::signal(SIGABRT, [](int) { KeepBytes(); });
    if (__sanitizer_set_death_callback != nullptr)
    {
        __sanitizer_set_death_callback(KeepBytes);
    }
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    if (!file.empty())
    {
        std::ifstream stream(file, std::ios::binary);
        ReadOne(std::string(std::istreambuf_iterator<char>(stream), {}));
        return 0;
    }
    const std::vector<std::string> samples = g_target->Samples();
    for (const std::string &sample : samples)
    {
        ReadOne(sample);
    }
    Mutation mutation(samples, seed);
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    unsigned long done = 0;
    for (; done < count && std::chrono::steady_clock::now() < end; ++done)
    {
        ReadOne(mutation.Next());
    }
    std::printf("%s: %lu readings, seed %llu\n", g_target->Name, done, static_cast<unsigned long long>(seed));
    CoUninitialize();
    return 0;
}
