// The two windows that a run drives: a progress bar and a status text. Each change of them is reported
// to an observer, on the thread that made it.
#pragma once

#include "host/ProgressLine.h"

#include <windows.h>

#include <functional>
#include <mutex>

class ProgressWindows
{
public:
    using Observer = std::function<void(const ProgressView &)>;

    // Throws the HRESULT of a window that can't be made.
    explicit ProgressWindows(Observer observer);
    ~ProgressWindows();
    ProgressWindows(const ProgressWindows &) = delete;
    ProgressWindows &operator=(const ProgressWindows &) = delete;

    HWND Bar() const { return m_bar; }
    HWND Status() const { return m_status; }

private:
    static LRESULT CALLBACK BarProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    static LRESULT CALLBACK StatusProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    void BarChanged();
    void StatusChanged(const WCHAR *text);

    const Observer m_observer;
    std::mutex m_lock;
    ProgressView m_view;
    HWND m_bar = nullptr;
    HWND m_status = nullptr;
    WNDPROC m_barDefault = nullptr;
    WNDPROC m_statusDefault = nullptr;
};
