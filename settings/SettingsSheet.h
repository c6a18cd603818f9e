// The settings sheet, which shows and edits the user's preferences and lets the authorization be dropped.
#pragma once

#include "com/WideText.h"

#include <windows.h>

#include <functional>

struct AccountRecord;

// What the sheet knows of the account; all of it the caller's, for the length of the call.
struct SheetAccount
{
    const AccountRecord &Account;
    WideText Version; // "1.96 (Build 401)"
    WideText Copyright;

    // Reads the account anew from the service, on the calling thread, and fills Account. A failure may
    // have filled parts of it; what it throws counts as a failure too.
    std::function<HRESULT()> Refresh;
};

struct SheetOutcome
{
    bool Applied;         // confirmed; pages that were shown have saved their settings
    bool RevokeRequested; // confirmed with the wish to forget the authorization
};

// Blocks until the user has closed the sheet. A sheet that can't be shown is one that was cancelled.
// Throws E_OUTOFMEMORY.
SheetOutcome ShowSettingsSheet(HWND parent, SheetAccount &account);
