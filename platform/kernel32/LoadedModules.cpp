#include "platform/kernel32/LoadedModules.h"

#include <link.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <functional>

namespace
{
std::string ResolvePath(const char *name, bool isProgram)
{
    char resolved[PATH_MAX];
    if (realpath(isProgram ? "/proc/self/exe" : name, resolved) != nullptr)
    {
        return resolved;
    }
    return name;
}

struct Extent
{
    uintptr_t first = UINTPTR_MAX;
    uintptr_t end = 0;
};

Extent ExtentOf(const dl_phdr_info &info)
{
    const auto pageMask = ~static_cast<uintptr_t>(sysconf(_SC_PAGESIZE) - 1);
    Extent extent;
    for (int i = 0; i < info.dlpi_phnum; ++i)
    {
        const ElfW(Phdr) &segment = info.dlpi_phdr[i];
        if (segment.p_type == PT_LOAD)
        {
            const uintptr_t start = info.dlpi_addr + segment.p_vaddr;
            extent.first = std::min(extent.first, start & pageMask);
            extent.end = std::max(extent.end, start + segment.p_memsz);
        }
    }
    return extent;
}

using Test = std::function<bool(const dl_phdr_info &info, bool isProgram, const Extent &extent)>;

struct Search
{
    const Test &matches;
    bool first = true;
    std::optional<LoadedModule> found;
};

int Visit(dl_phdr_info *info, size_t, void *context)
{
    auto &search = *static_cast<Search *>(context);
    // dl_iterate_phdr reports the program first.
    const bool isProgram = search.first;
    search.first = false;
    const Extent extent = ExtentOf(*info);
    if (extent.end == 0 || !search.matches(*info, isProgram, extent))
    {
        return 0;
    }
    search.found = LoadedModule{reinterpret_cast<HMODULE>(extent.first), info->dlpi_addr,
                                ResolvePath(info->dlpi_name, isProgram), isProgram, info->dlpi_subs};
    return 1;
}

std::optional<LoadedModule> SearchModules(const Test &matches)
{
    Search search{matches};
    dl_iterate_phdr(Visit, &search);
    return std::move(search.found);
}
} // namespace

std::optional<LoadedModule> FindModule(HMODULE handle)
{
    return SearchModules([handle](const dl_phdr_info &, bool isProgram, const Extent &extent) {
        return handle == nullptr ? isProgram : reinterpret_cast<uintptr_t>(handle) == extent.first;
    });
}

std::optional<LoadedModule> FindModuleOfAddress(const void *address)
{
    return SearchModules(
        [at = reinterpret_cast<uintptr_t>(address)](const dl_phdr_info &, bool, const Extent &extent) {
            return at >= extent.first && at < extent.end;
        });
}

std::optional<LoadedModule> FindModuleByName(const std::string &name)
{
    const bool isPath = name.find('/') != std::string::npos;
    const std::string wanted = isPath ? ResolvePath(name.c_str(), false) : name;
    return SearchModules([&](const dl_phdr_info &info, bool isProgram, const Extent &) {
        const std::string path = ResolvePath(info.dlpi_name, isProgram);
        return (isPath ? path : path.substr(path.rfind('/') + 1)) == wanted;
    });
}
