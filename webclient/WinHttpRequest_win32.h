// One asynchronous request of WinHTTP. One thread starts its operations one after the other and waits for
// the end of each; WinHTTP reports the ends on threads of its own.
#pragma once

#include "com/InternetHandleOwner.h"
#include "com/ModuleLocks.h"
#include "com/WideText.h"

#include <windows.h>
#include <winhttp.h>

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

// Throws the thread's last error as an HRESULT if a function has failed.
void ThrowUnless(BOOL isDone);

class WinHttpRequest
{
public:
    // How an operation ended: a Win32 error or 0, and the number of bytes that were written or read.
    struct Ending
    {
        DWORD error = 0;
        DWORD bytes = 0;
    };

    // What WinHTTP's status calls have reported so far.
    struct Sight
    {
        WideText resolvedName;      // the name that was looked up last: the host's or the proxy's
        DWORD certificateFlags = 0; // WINHTTP_CALLBACK_STATUS_FLAG_...
        bool isRequestLeaving = false;
    };

    static constexpr DWORD BufferSize = 64 * 1024;

    // Takes a handle on which no operation has been started, of a session whose callback is OnStatus.
    // Throws HRESULTs.
    explicit WinHttpRequest(InternetHandleOwner handle);
    // Ends the running operation, and waits up to half a second until WinHTTP has closed the handle.
    ~WinHttpRequest();
    WinHttpRequest(const WinHttpRequest &) = delete;
    WinHttpRequest &operator=(const WinHttpRequest &) = delete;

    HINTERNET Get() const noexcept { return m_handle.Get(); }

    // BufferSize bytes, which Write sends and Read fills. Don't touch them while one of the two runs.
    char *Buffer() noexcept { return m_state->buffer.data(); }

    void Send(DWORD totalLength);
    void Write(DWORD offset, DWORD size);
    void Receive();
    void Read();

    // The ending of the operation that was started last; nullopt if it hasn't ended within the time.
    std::optional<Ending> WaitFor(std::chrono::milliseconds time);

    Sight WhatWasSeen();

    static void CALLBACK OnStatus(HINTERNET handle, DWORD_PTR context, DWORD status, void *information,
                                  DWORD size);

private:
    struct State
    {
        std::mutex lock;
        std::condition_variable changed;
        std::optional<Ending> ending;
        bool isClosed = false;
        Sight sight;
        std::vector<char> buffer = std::vector<char>(BufferSize);
        ModuleLock codeStays; // keeps OnStatus loaded: WinHTTP calls it until it has closed the handle
    };

    void Started(BOOL isStarted);
    static void Note(State &state, DWORD status, void *information, DWORD size);

    // WinHTTP's context is a second shared owner, which the last call of OnStatus deletes.
    std::shared_ptr<State> m_state;
    std::shared_ptr<State> *m_context;
    InternetHandleOwner m_handle;
};
