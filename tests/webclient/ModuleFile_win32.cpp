#include "tests/webclient/ModuleFile.h"

#include <gtest/gtest.h>

std::string ModulePath(const char *name)
{
    // Beside this program.
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    const std::string program = path;
    return program.substr(0, program.find_last_of('\\') + 1) + name + ".dll";
}

void *ModuleFunction(const char *name, const char *function)
{
    const HMODULE module = LoadLibraryA(ModulePath(name).c_str());
    if (module == nullptr)
    {
        ADD_FAILURE() << "error " << GetLastError();
        return nullptr;
    }
    return reinterpret_cast<void *>(GetProcAddress(module, function));
}
