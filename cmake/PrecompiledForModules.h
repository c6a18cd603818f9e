// What nearly every file of our modules includes; the compiler reads it once for each build. A file
// must still include what it uses: each header is also compiled alone, and HALVORA_PRECOMPILE=OFF
// builds everything without this.
#pragma once

#include "cmake/PrecompiledHeaderIsUsed.h"

#ifndef _WIN32
// Ahead of the Windows headers, which make ICU take the system for Windows.
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

// Without what clashes with other libraries: winsock.h with the system's own sockets.
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
// rpcndr.h makes a macro of a word that ICU and others have for names.
#undef small

#include "com/BstrOwner.h"
#include "com/ComObject.h"
#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/Hresult.h"
#include "com/WideText.h"
