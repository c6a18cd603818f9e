// Everything that a publish run works with. The plug-in object owns it all and lends it for one call.
#pragma once

#include "com/ComPtr.h"
#include "core/Pause.h"
#include "publish/PublishStatistics.h"

#include "HostContract.h"
#include "WebComponents.h"

#include <windows.h>

#include <atomic>

class LocaleNumberFormat;
class VersionBlock;
struct AccountRecord;
struct SettingsBlock;

// The host's progress bar and status line; null outside a run.
struct ProgressWindows
{
    HWND ProgressWindow = nullptr;
    HWND StaticTextWindow = nullptr;
};

// Set by Cancel on any thread, cleared when a run starts.
struct CancelFlags
{
    std::atomic<BYTE> CancelRequested{0};
    std::atomic<BYTE> CancelAbruptly{0};
};

struct RunContext
{
    IHalvoraPublishingHost *Host;
    IUsageMetrics *Usage;              // may be null
    IUploadProgressCallback *Progress; // the plug-in object itself
    const AccountRecord &Account;
    const VersionBlock &Version;
    SettingsBlock &Settings;
    PublishStatistics &Statistics;
    ProgressWindows &Windows;
    CancelFlags &Cancel;
    TickSource Now;
    Pause Wait; // between two tries at one picture
};
