// The classes of the module.
#pragma once

#include <windows.h>
#include <objbase.h>

#include <span>

struct ComponentClass
{
    const CLSID &clsid;
    const WCHAR *name;
    IClassFactory *factory;
};

std::span<const ComponentClass> ComponentClasses();
