// One asynchronous request of WinHTTP. Its operations are started one after the other by one thread,
// which then waits for the end of each; WinHTTP tells the ends on threads of its own.
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

class WinHttpRequest
{
public:
    // How an operation ended: a Win32 error or 0, and the number of bytes that were written or read.
    struct Ending
    {
        DWORD error = 0;
        DWORD bytes = 0;
    };

    // What WinHTTP has told on the way, as of now.
    struct Sight
    {
        WideText resolvedName;      // the name that was looked up last: the host's or the proxy's
        DWORD certificateFlags = 0; // WINHTTP_CALLBACK_STATUS_FLAG_...
        bool isRequestLeaving = false;
    };

    static constexpr DWORD BufferSize = 64 * 1024;

    // Takes a handle that no operation has been started on, from a session with OnStatus for its callback.
    // HRESULT is thrown.
    explicit WinHttpRequest(InternetHandleOwner handle);
    // Ends whatever is under way, and waits for a short while until WinHTTP has let go.
    ~WinHttpRequest();
    WinHttpRequest(const WinHttpRequest &) = delete;
    WinHttpRequest &operator=(const WinHttpRequest &) = delete;

    HINTERNET Get() const noexcept { return m_handle.Get(); }

    // BufferSize bytes, what Write takes and Read fills. Not to be touched while one of them is under way.
    char *Buffer() noexcept;

    void Send(DWORD totalLength);
    void Write(DWORD offset, DWORD size);
    void Receive();
    void Read();

    // The ending of the operation that was started last; nothing if it has none within the time.
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
        ModuleLock codeStays; // WinHTTP calls OnStatus until it has closed the handle
    };

    void Started(BOOL isStarted);
    static void Note(State &state, DWORD status, void *information, DWORD size);

    // WinHTTP holds a share of its own, which it gives back with the last call of OnStatus.
    std::shared_ptr<State> m_state;
    std::shared_ptr<State> *m_context;
    InternetHandleOwner m_handle;
};
