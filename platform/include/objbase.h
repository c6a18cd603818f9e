// Wine's objbase.h lacks the macro that most callers of CoCreateInstance and QueryInterface use.
#pragma once

#include_next <objbase.h>

#if defined(__cplusplus) && !defined(IID_PPV_ARGS)
extern "C++"
{
    // The out parameter as void **, once it is certain that it points to an interface.
    template <class T>
    void **IID_PPV_ARGS_Helper(T **object) noexcept
    {
        static_cast<void>(static_cast<IUnknown *>(*object));
        return reinterpret_cast<void **>(object);
    }
}
#define IID_PPV_ARGS(object) __uuidof(**(object)), IID_PPV_ARGS_Helper(object)
#endif
