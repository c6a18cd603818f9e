// The settings sheet, which shows and edits the user's preferences and lets the authorization be dropped.
#pragma once

#include "com/WideText.h"

#include <windows.h>

#include <functional>

struct AccountRecord;

// What the sheet shows of the account. The caller owns it for the length of the call.
struct SheetAccount
{
    const AccountRecord &Account;
    WideText Version; // "1.96 (Build 401)"
    WideText Copyright;

    // Reads the account from the service into Account, on the calling thread. A failure may leave Account half
    // filled; an exception counts as a failure.
    std::function<HRESULT()> Refresh;
};

struct SheetOutcome
{
    bool Applied;         // closed with OK; pages that were shown have saved their settings
    bool RevokeRequested; // closed with OK and the wish to forget the authorization
};

// Blocks until the user has closed the sheet. A sheet that can't be shown counts as cancelled. Throws
// E_OUTOFMEMORY.
SheetOutcome ShowSettingsSheet(HWND parent, SheetAccount &account);
