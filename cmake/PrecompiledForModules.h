// What nearly every file of our modules includes; the compiler reads it once per build. A file must still
// include what it uses: each header is also compiled alone, and HALVORA_PRECOMPILE=OFF builds everything
// without precompiled headers.
#pragma once

#include "cmake/PrecompiledHeaderIsUsed.h"

#ifndef _WIN32
// Before the Windows headers, whose macros would make ICU believe that it runs on Windows.
#include <unicode/utypes.h>
#endif

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Leaves out winsock.h, which clashes with the system's own socket headers.
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#include <ole2.h>
#include <oleauto.h>
#include <olectl.h>
#include <shellapi.h>
#include <commctrl.h>
#include <wincodec.h>
// rpcndr.h defines a macro of this name, which ICU and others use for variables.
#undef small

#include "com/BstrOwner.h"
#include "com/ComObject.h"
#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/Hresult.h"
#include "com/WideText.h"
