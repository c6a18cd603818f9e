// The host as a program of its own, and a user before its window.
#pragma once

#include "com/HandleOwner.h"

#include <windows.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

class HostProgram
{
public:
    // Starts it and waits for its window; a test without one has failed.
    HostProgram(const std::filesystem::path &profile, const std::vector<std::filesystem::path> &pictures);
    // Whatever is left of it is ended.
    ~HostProgram();
    HostProgram(const HostProgram &) = delete;
    HostProgram &operator=(const HostProgram &) = delete;

    HWND Window() const { return m_window; }

    // A control that is seen, by its number; null if there is none.
    HWND Part(int id) const;
    std::vector<HWND> Parts() const;

    std::wstring Text(int id) const;
    bool IsEnabled(int id) const { return IsWindowEnabled(Part(id)) != FALSE; }
    // Of a list; the columns of a row are parted by "|".
    std::vector<std::wstring> Rows(int id) const;
    // The rows of the log in one text.
    std::wstring Log() const;

    bool AwaitText(int id, const std::wstring &text) const;
    bool AwaitLog(const std::wstring &text) const;
    bool AwaitEnabled(int id, bool isEnabled) const;

    void Press(int id) const { PostMessageW(Part(id), BM_CLICK, 0, 0); }
    void Choose(int command) const { PostMessageW(m_window, WM_COMMAND, static_cast<WPARAM>(command), 0); }
    void Follow(int id, const std::wstring &link) const;

    void SelectLog() const;

    // Whether its thread takes a message within two seconds.
    bool IsAlive() const;

    // The message box that it shows; null if none comes.
    HWND AwaitQuestion() const;

    void Close() const { PostMessageW(m_window, WM_CLOSE, 0, 0); }
    // The exit code; nothing if it doesn't end.
    std::optional<DWORD> AwaitEnd() const;

    // The size in which a control shows all of its text: a button, or links of the given width.
    SIZE IdealSizeOf(HWND button) const;
    int IdealHeightOf(HWND links, int width) const;

private:
    FileOwner m_process;
    DWORD m_number = 0;
    HWND m_window = nullptr;
};
