#include "host/window/PluginDirectory_win32.h"

#include "com/ComPtr.h"

#include <comcat.h>

namespace
{
constexpr CATID PublishingPlugins = {0x5EE4545B, 0x143B, 0x4F11, {0xB9, 0xB3, 0xF9, 0x19, 0x65, 0x3E, 0xB6, 0x2F}};
} // namespace

std::vector<CLSID> RegisteredPlugins()
{
    std::vector<CLSID> classes;
    ComPtr<ICatInformation> categories;
    ComPtr<IEnumCLSID> found;
    CATID wanted = PublishingPlugins;
    if (FAILED(CoCreateInstance(CLSID_StdComponentCategoriesMgr, nullptr, CLSCTX_INPROC_SERVER,
                                __uuidof(ICatInformation), categories.PutVoid())) ||
        FAILED(categories->EnumClassesOfCategories(1, &wanted, 0, nullptr, found.Put())))
    {
        return classes;
    }
    CLSID one;
    ULONG count = 0;
    while (found->Next(1, &one, &count) == S_OK && count == 1)
    {
        classes.push_back(one);
    }
    return classes;
}
