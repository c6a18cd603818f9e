#include "com/ComPtr.h"

#include <windows.h>
#include <ole2.h>

// An object without IRunnableObject is always running.
HRESULT WINAPI OleRun(IUnknown *object)
{
    const auto runnable = QueryFor<IRunnableObject>(object);
    return object == nullptr ? E_INVALIDARG : runnable ? runnable->Run(nullptr) : S_OK;
}
