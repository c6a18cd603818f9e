// Wine's objbase.h lacks the macro that most callers of CoCreateInstance and QueryInterface use.
#pragma once

#include_next <objbase.h>

#if defined(__cplusplus) && !defined(IID_PPV_ARGS)
extern "C++"
{
    // Converts the address of an interface pointer to void **; fails to compile for any other type.
    template <class T>
    void **IID_PPV_ARGS_Helper(T **object) noexcept // NOLINT(readability-identifier-naming): its name on Windows
    {
        static_cast<void>(static_cast<IUnknown *>(*object));
        return reinterpret_cast<void **>(object);
    }
}
#define IID_PPV_ARGS(object) __uuidof(**(object)), IID_PPV_ARGS_Helper(object)
#endif
