// The class of the registrar. An object is used by one thread at a time.
#pragma once

#include <unknwn.h>

IClassFactory *RegistrarFactory();
