#include "tests/webclient/ModuleFile.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

std::string ModulePath(const char *name)
{
    return std::string(MODULE_FOLDER "/") + name + ".so";
}

void *ModuleFunction(const char *name, const char *function)
{
    // Never closed: registered classes stay for the whole program.
    void *module = dlopen(ModulePath(name).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr)
    {
        ADD_FAILURE() << dlerror();
        return nullptr;
    }
    return dlsym(module, function);
}
