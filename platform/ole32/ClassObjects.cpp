// Apartments, and creation of objects: by a class object that the process has registered, else by the module that the class table
// names. A module, once loaded, stays until the process ends.
#include "com/ComPtr.h"
#include "com/Hresult.h"
#include "platform/kernel32/LoadedModules.h"
#include "platform/ole32/ClassServers.h"

#include "XmlInterfaces.h"

#include <ole2.h>
#include <wincodec.h>

#include <dlfcn.h>

#include <algorithm>
#include <atomic>
#include <mutex>

namespace
{
struct ThreadState
{
    unsigned entries = 0;
    bool multithreaded = false;
};

thread_local ThreadState threadState;
std::atomic<unsigned> multithreadedThreads{0};

// True after CoInitializeEx on this thread, and on every thread while some thread holds the multithreaded apartment
// open.
bool IsInApartment()
{
    return threadState.entries != 0 || multithreadedThreads.load() != 0;
}

struct Registration
{
    CLSID clsid;
    ComPtr<IUnknown> object;
    DWORD cookie;
};

std::mutex tableLock;

// Never destroyed: objects that are still registered when the process ends may not be released any more.
std::vector<Registration> &Registrations()
{
    static auto *registrations = new std::vector<Registration>;
    return *registrations;
}

std::vector<ClassServer> &HostServers()
{
    static auto *servers = new std::vector<ClassServer>;
    return *servers;
}

// MSXML's document without a version.
constexpr CLSID PlainDocument = {0x2933bf90, 0x7b36, 0x11d2, {0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60}};

// Empty if no module has the class.
std::filesystem::path FindServer(REFCLSID clsid)
{
    static const struct
    {
        const CLSID &clsid;
        const char *module;
    } Own[] = {
        {CLSID_WICImagingFactory, "windowscodecs.so"},
        {CLSID_DOMDocument60, "msxml.so"},
        {PlainDocument, "msxml.so"},
        {CLSID_ServerXMLHTTP60, "msxml.so"},
    };
    for (const auto &server : Own)
    {
        if (server.clsid == clsid)
        {
            const auto library = FindModuleOfAddress(reinterpret_cast<const void *>(&FindServer));
            return std::filesystem::path(library.value().path).replace_filename(server.module);
        }
    }
    const std::lock_guard guard(tableLock);
    const auto found = std::ranges::find(HostServers(), clsid, &ClassServer::clsid);
    return found != HostServers().end() ? found->module : std::filesystem::path();
}

ComPtr<IUnknown> FindRegistered(REFCLSID clsid)
{
    const std::lock_guard guard(tableLock);
    const auto found = std::ranges::find(Registrations(), clsid, &Registration::clsid);
    return found != Registrations().end() ? found->object : nullptr;
}

HRESULT GetFactory(REFCLSID clsid, ComPtr<IClassFactory> &factory)
{
    if (const ComPtr<IUnknown> registered = FindRegistered(clsid))
    {
        return registered->QueryInterface(__uuidof(IClassFactory), factory.PutVoid());
    }
    const std::filesystem::path file = FindServer(clsid);
    if (file.empty())
    {
        return REGDB_E_CLASSNOTREG;
    }
    std::error_code error;
    if (!exists(file, error))
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
    const HRESULT result = entry ? entry(clsid, __uuidof(IClassFactory), factory.PutVoid()) : CO_E_ERRORINDLL;
    dlclose(module);
    return result;
}
} // namespace

HRESULT WINAPI CoInitializeEx(LPVOID reserved, DWORD flags)
{
    constexpr DWORD known = COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE | COINIT_SPEED_OVER_MEMORY;
    if (reserved != nullptr || (flags & ~known) != 0)
    {
        return E_INVALIDARG;
    }
    const bool multithreaded = (flags & COINIT_APARTMENTTHREADED) == 0;
    if (threadState.entries != 0 && threadState.multithreaded != multithreaded)
    {
        return RPC_E_CHANGED_MODE;
    }
    if (threadState.entries++ != 0)
    {
        return S_FALSE;
    }
    threadState.multithreaded = multithreaded;
    multithreadedThreads += multithreaded ? 1 : 0;
    return S_OK;
}

void WINAPI CoUninitialize()
{
    if (threadState.entries != 0 && --threadState.entries == 0 && threadState.multithreaded)
    {
        --multithreadedThreads;
    }
}

void SetClassServers(std::vector<ClassServer> servers)
{
    const std::lock_guard guard(tableLock);
    HostServers() = std::move(servers);
}

HRESULT WINAPI CoCreateInstance(REFCLSID clsid, LPUNKNOWN outer, DWORD context, REFIID iid, LPVOID *object)
{
    if (object == nullptr)
    {
        return E_POINTER;
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
        ComPtr<IClassFactory> factory;
        const HRESULT found = GetFactory(clsid, factory);
        return SUCCEEDED(found) ? factory->CreateInstance(outer, iid, object) : found;
    });
}

HRESULT WINAPI CoRegisterClassObject(REFCLSID clsid, LPUNKNOWN object, DWORD context, DWORD, LPDWORD cookie)
{
    if (object == nullptr || cookie == nullptr || (context & CLSCTX_INPROC_SERVER) == 0)
    {
        return E_INVALIDARG;
    }
    *cookie = 0;
    return AtBoundary([&]() -> HRESULT {
        const std::lock_guard guard(tableLock);
        static DWORD lastCookie = 0;
        auto &all = Registrations();
        if (std::ranges::find(all, clsid, &Registration::clsid) != all.end())
        {
            return CO_E_OBJISREG;
        }
        all.push_back({clsid, ComPtr<IUnknown>(object), ++lastCookie});
        *cookie = lastCookie;
        return S_OK;
    });
}

HRESULT WINAPI CoRevokeClassObject(DWORD cookie)
{
    ComPtr<IUnknown> released; // released after the lock: the object's destructor may call back
    const std::lock_guard guard(tableLock);
    auto &all = Registrations();
    const auto found = std::ranges::find(all, cookie, &Registration::cookie);
    if (found == all.end())
    {
        return E_INVALIDARG;
    }
    released = std::move(found->object);
    all.erase(found);
    return S_OK;
}

// Natively no class has a program identifier: a host knows its classes by their own identifiers.
HRESULT WINAPI ProgIDFromCLSID(REFCLSID, LPOLESTR *progId)
{
    if (progId == nullptr)
    {
        return E_INVALIDARG;
    }
    *progId = nullptr;
    return REGDB_E_CLASSNOTREG;
}

// An object without IRunnableObject is always running.
HRESULT WINAPI OleRun(IUnknown *object)
{
    const auto runnable = QueryFor<IRunnableObject>(object);
    return object == nullptr ? E_INVALIDARG : runnable ? runnable->Run(nullptr) : S_OK;
}
