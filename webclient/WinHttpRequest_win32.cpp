#include "webclient/WinHttpRequest_win32.h"

#include "com/Hresult.h"

void ThrowUnless(BOOL isDone)
{
    if (!isDone)
    {
        ThrowHresult(HRESULT_FROM_WIN32(GetLastError()));
    }
}

WinHttpRequest::WinHttpRequest(InternetHandleOwner handle)
    : m_state(std::make_shared<State>()), m_context(nullptr), m_handle(std::move(handle))
{
    auto context = std::make_unique<std::shared_ptr<State>>(m_state);
    auto value = reinterpret_cast<DWORD_PTR>(context.get());
    ThrowUnless(WinHttpSetOption(m_handle.Get(), WINHTTP_OPTION_CONTEXT_VALUE, &value, sizeof(value)));
    m_context = context.release();
}

WinHttpRequest::~WinHttpRequest()
{
    m_handle.Reset();
    std::unique_lock guard(m_state->lock);
    m_state->changed.wait_for(guard, std::chrono::milliseconds(500), [this] { return m_state->isClosed; });
}

void WinHttpRequest::Started(BOOL isStarted)
{
    if (!isStarted)
    {
        const DWORD error = GetLastError();
        const std::lock_guard guard(m_state->lock);
        m_state->ending = Ending{error, 0};
    }
}

void WinHttpRequest::Send(DWORD totalLength)
{
    Started(WinHttpSendRequest(Get(), WINHTTP_NO_ADDITIONAL_HEADERS, 0, WINHTTP_NO_REQUEST_DATA, 0, totalLength,
                               reinterpret_cast<DWORD_PTR>(m_context)));
}

void WinHttpRequest::Write(DWORD offset, DWORD size)
{
    Started(WinHttpWriteData(Get(), Buffer() + offset, size, nullptr));
}

void WinHttpRequest::Receive()
{
    Started(WinHttpReceiveResponse(Get(), nullptr));
}

void WinHttpRequest::Read()
{
    Started(WinHttpReadData(Get(), Buffer(), BufferSize, nullptr));
}

std::optional<WinHttpRequest::Ending> WinHttpRequest::WaitFor(std::chrono::milliseconds time)
{
    std::unique_lock guard(m_state->lock);
    m_state->changed.wait_for(guard, time, [this] { return m_state->ending.has_value(); });
    return std::exchange(m_state->ending, std::nullopt);
}

WinHttpRequest::Sight WinHttpRequest::WhatWasSeen()
{
    const std::lock_guard guard(m_state->lock);
    return m_state->sight;
}

void WinHttpRequest::Note(State &state, DWORD status, void *information, DWORD size)
{
    switch (status)
    {
    case WINHTTP_CALLBACK_STATUS_RESOLVING_NAME:
        state.sight.resolvedName = information != nullptr ? static_cast<const WCHAR *>(information) : TEXT("");
        return;
    case WINHTTP_CALLBACK_STATUS_SENDING_REQUEST:
        state.sight.isRequestLeaving = true;
        return;
    case WINHTTP_CALLBACK_STATUS_SECURE_FAILURE:
        state.sight.certificateFlags |= information != nullptr ? *static_cast<const DWORD *>(information) : 0;
        return;
    case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
    case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
        state.ending = Ending{};
        return;
    case WINHTTP_CALLBACK_STATUS_WRITE_COMPLETE:
        state.ending = Ending{0, information != nullptr ? *static_cast<const DWORD *>(information) : 0};
        return;
    case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
        state.ending = Ending{0, size};
        return;
    case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
        state.ending = Ending{static_cast<const WINHTTP_ASYNC_RESULT *>(information)->dwError, 0};
        return;
    case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING:
        state.isClosed = true;
        return;
    }
}

void CALLBACK WinHttpRequest::OnStatus(HINTERNET, DWORD_PTR context, DWORD status, void *information, DWORD size)
{
    auto *const share = reinterpret_cast<std::shared_ptr<State> *>(context);
    if (share == nullptr)
    {
        return; // of the session or its connection
    }
    {
        State &state = **share;
        const std::lock_guard guard(state.lock);
        Note(state, status, information, size);
        state.changed.notify_all();
    }
    if (status == WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING)
    {
        delete share;
    }
}
