// Task memory is the C heap: what one side allocates the other may free.
#include <windows.h>
#include <objbase.h>

#include <cstdlib>

LPVOID WINAPI CoTaskMemAlloc(SIZE_T size)
{
    return std::malloc(size ? size : 1);
}

void WINAPI CoTaskMemFree(LPVOID memory)
{
    std::free(memory);
}
