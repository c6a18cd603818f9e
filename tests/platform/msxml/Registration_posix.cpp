#include "Registration.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <dlfcn.h>
#include <unistd.h>

#include <string>

void RegisterDocumentClass()
{
    char program[4096] = {};
    ASSERT_GT(readlink("/proc/self/exe", program, sizeof(program) - 1), 0);
    const std::string folder = std::string(program).substr(0, std::string(program).rfind('/'));
    void *module = dlopen((folder + "/../lib/msxml.so").c_str(), RTLD_NOW);
    ASSERT_NE(nullptr, module) << dlerror();
    const auto entry = reinterpret_cast<HRESULT(WINAPI *)()>(dlsym(module, "DllRegisterServer"));
    ASSERT_NE(nullptr, entry);
    ASSERT_EQ(S_OK, entry());
}
