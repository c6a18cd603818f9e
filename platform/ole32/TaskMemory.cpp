// Task memory is the C heap: what one side allocates the other may free.
#include <windows.h>
#include <objbase.h>

#include <cstdlib>

LPVOID WINAPI CoTaskMemAlloc(SIZE_T size)
{
    return std::malloc(size ? size : 1);
}

LPVOID WINAPI CoTaskMemRealloc(LPVOID memory, SIZE_T size)
{
    if (size == 0 && memory != nullptr)
    {
        std::free(memory);
        return nullptr;
    }
    return std::realloc(memory, size ? size : 1);
}

void WINAPI CoTaskMemFree(LPVOID memory)
{
    std::free(memory);
}
