#include "tests/doubles/SystemModules.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <unistd.h>

namespace
{
void RegisterModule(const char *name)
{
    const std::filesystem::path file = std::filesystem::path(HALVORA_MODULE_FOLDER) / name;
    const HMODULE module = LoadLibraryW(file.u16string().c_str());
    ASSERT_NE(module, nullptr) << file << " can't be loaded, error " << GetLastError();
    const auto registerServer = reinterpret_cast<HRESULT(STDAPICALLTYPE *)()>(
        reinterpret_cast<void *>(GetProcAddress(module, "DllRegisterServer")));
    ASSERT_NE(registerServer, nullptr) << file << " has no DllRegisterServer";
    ASSERT_GE(registerServer(), 0) << file << " can't be registered";
}
} // namespace

void RegisterSystemModules()
{
    UsePrivateRegistryStore();
    static const bool Done = [] {
        RegisterModule("atl.so");
        RegisterModule("msxml.so");
        RegisterModule("windowscodecs.so");
        return true;
    }();
    (void)Done;
}

void UsePrivateRegistryStore()
{
    const auto file =
        std::filesystem::temp_directory_path() / ("halvora-test-" + std::to_string(getpid()) + ".reg");
    setenv("HALVORA_REGISTRY_FILE", file.c_str(), 0);
}
