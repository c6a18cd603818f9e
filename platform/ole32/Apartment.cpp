#include "platform/ole32/Apartment.h"

#include <windows.h>
#include <objbase.h>

#include <atomic>

namespace
{
struct ThreadState
{
    unsigned entries = 0;
    bool multithreaded = false;
};

thread_local ThreadState threadState;
std::atomic<unsigned> multithreadedThreads{0};
} // namespace

bool IsInApartment()
{
    return threadState.entries != 0 || multithreadedThreads.load() != 0;
}

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
