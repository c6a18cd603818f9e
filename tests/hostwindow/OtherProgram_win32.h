// What a test does with the windows of another program.
#pragma once

#include "com/HandleOwner.h"

#include <windows.h>

#include <string>
#include <vector>

// Memory of the window's program, in which its controls take and give what a message only points to.
class OtherMemory
{
public:
    OtherMemory(HWND window, size_t size);
    ~OtherMemory();
    OtherMemory(const OtherMemory &) = delete;
    OtherMemory &operator=(const OtherMemory &) = delete;

    void *At(size_t offset) const { return static_cast<BYTE *>(m_place) + offset; }
    LPARAM Pointer() const { return reinterpret_cast<LPARAM>(m_place); }
    void Write(const void *from, size_t size);
    void Read(void *to, size_t size, size_t offset = 0) const;

private:
    FileOwner m_process;
    void *m_place;
};

// A program that hangs gives no text, after some seconds.
std::wstring TextOf(HWND window);

// Those that are seen, of all programs.
std::vector<HWND> TopWindows();

// Those within the window that are seen.
std::vector<HWND> PartsOf(HWND window);

// The one with this number; null if there is none.
HWND FindPart(HWND window, int id);

// Clicks the link with that id or address among a control's links. False if nothing of it is on the screen.
bool FollowLink(HWND control, const std::wstring &name);

// The rows of a list, the columns of each with "|" between them.
std::vector<std::wstring> RowsOf(HWND list);
