// Creation of objects: by a class object that the process has registered, else by the module
// that the class's registry entry names. A module, once loaded, stays until the process ends.
#include "com/ComPtr.h"
#include "com/Hresult.h"
#include "platform/kernel32/PathText.h"
#include "platform/ole32/Apartment.h"
#include "platform/ole32/ClassEntries.h"
#include "platform/ole32/ClassServers.h"

#include <objbase.h>

#include <dlfcn.h>
#include <sys/stat.h>

#include <algorithm>
#include <mutex>
#include <optional>
#include <vector>

namespace
{
struct Registration
{
    CLSID clsid;
    ComPtr<IUnknown> object;
    DWORD flags;
    DWORD cookie;
};

std::mutex registrationLock;

std::mutex folderLock;
std::optional<std::vector<std::filesystem::path>> allowedFolders;

bool MayLoad(const std::filesystem::path &file)
{
    const std::lock_guard guard(folderLock);
    return !allowedFolders || std::ranges::find(*allowedFolders, file.parent_path()) != allowedFolders->end();
}

// Never destroyed: objects that are still registered when the process ends may not be released any more.
std::vector<Registration> &Registrations()
{
    static auto *registrations = new std::vector<Registration>;
    return *registrations;
}

// A class object for single use is taken out of the table by its first use.
ComPtr<IUnknown> FindRegistered(REFCLSID clsid)
{
    const std::lock_guard guard(registrationLock);
    auto &all = Registrations();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto &entry) { return entry.clsid == clsid; });
    if (found == all.end())
    {
        return nullptr;
    }
    ComPtr<IUnknown> object = found->object;
    if (found->flags == REGCLS_SINGLEUSE)
    {
        all.erase(found);
    }
    return object;
}

HRESULT GetClassObjectOfModule(REFCLSID clsid, REFIID iid, void **object)
{
    WideText path;
    if (!ReadClassesEntry(ClassKeyPath(clsid) + TEXT("\\InprocServer32"), path))
    {
        return REGDB_E_CLASSNOTREG;
    }
    const std::string file = PathToBytes(path);
    if (!MayLoad(file))
    {
        return E_ACCESSDENIED;
    }
    struct stat status;
    if (stat(file.c_str(), &status) != 0)
    {
        return CO_E_DLLNOTFOUND;
    }
    // The loader finds a module that is loaded already by its file; RTLD_NODELETE keeps it for good.
    void *module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (module == nullptr)
    {
        return CO_E_ERRORINDLL;
    }
    using GetClassObject = HRESULT(WINAPI *)(REFCLSID, REFIID, void **);
    const auto entry = reinterpret_cast<GetClassObject>(dlsym(module, "DllGetClassObject"));
    const HRESULT result = entry ? entry(clsid, iid, object) : CO_E_ERRORINDLL;
    dlclose(module);
    return result;
}
} // namespace

void LoadClassServersOnlyFrom(std::vector<std::filesystem::path> folders)
{
    const std::lock_guard guard(folderLock);
    allowedFolders = std::move(folders);
}

HRESULT WINAPI CoGetClassObject(REFCLSID clsid, DWORD context, COSERVERINFO *, REFIID iid, LPVOID *object)
{
    if (object == nullptr)
    {
        return E_INVALIDARG;
    }
    *object = nullptr;
    if (!IsInApartment())
    {
        return CO_E_NOTINITIALIZED;
    }
    if ((context & CLSCTX_INPROC_SERVER) == 0)
    {
        return REGDB_E_CLASSNOTREG;
    }
    return AtBoundary([&] {
        if (const ComPtr<IUnknown> registered = FindRegistered(clsid))
        {
            return registered->QueryInterface(iid, object);
        }
        return GetClassObjectOfModule(clsid, iid, object);
    });
}

HRESULT WINAPI CoCreateInstance(REFCLSID clsid, LPUNKNOWN outer, DWORD context, REFIID iid, LPVOID *object)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    *object = nullptr;
    ComPtr<IClassFactory> factory;
    const HRESULT found = CoGetClassObject(clsid, context, nullptr, __uuidof(IClassFactory), factory.PutVoid());
    if (FAILED(found))
    {
        return found;
    }
    return factory->CreateInstance(outer, iid, object);
}

HRESULT WINAPI CoRegisterClassObject(REFCLSID clsid, LPUNKNOWN object, DWORD context, DWORD flags, LPDWORD cookie)
{
    if (object == nullptr || cookie == nullptr || (context & CLSCTX_INPROC_SERVER) == 0)
    {
        return E_INVALIDARG;
    }
    *cookie = 0;
    return AtBoundary([&]() -> HRESULT {
        const std::lock_guard guard(registrationLock);
        static DWORD lastCookie = 0;
        auto &all = Registrations();
        if (std::any_of(all.begin(), all.end(), [&](const auto &entry) { return entry.clsid == clsid; }))
        {
            return CO_E_OBJISREG;
        }
        all.push_back({clsid, ComPtr<IUnknown>(object), flags, ++lastCookie});
        *cookie = lastCookie;
        return S_OK;
    });
}

HRESULT WINAPI CoRevokeClassObject(DWORD cookie)
{
    ComPtr<IUnknown> released; // released after the lock: the object's destructor may call back
    const std::lock_guard guard(registrationLock);
    auto &all = Registrations();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto &entry) { return entry.cookie == cookie; });
    if (found == all.end())
    {
        return E_INVALIDARG;
    }
    released = std::move(found->object);
    all.erase(found);
    return S_OK;
}
