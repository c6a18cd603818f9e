// The log of the window: entries of any thread in a list with their levels.
#pragma once

#include <windows.h>
#include <commctrl.h>

#include <mutex>
#include <string>
#include <vector>

class LogView
{
public:
    // list: a report view of the window, which it gives its columns. message is posted to the window when
    // Show has something to do.
    LogView(HWND list, UINT message);

    // Levels as in WriteLogEntry; text in UTF-8. Any thread.
    void Append(int level, std::string text);

    // On the window's thread: takes over what was appended.
    void Show();

    void SelectAll();

    // The selected entries, each a line: the level's word if it has one, and the text.
    std::wstring SelectedText() const;

    // Whether entries of level 0 are seen.
    void ShowDetails(bool details);

    // For the window's present size; a longer text continues in further rows.
    void FitColumns();

    // Answers the list's question how to draw: in colours of the levels.
    LRESULT Draw(NMLVCUSTOMDRAW &drawing) const;

private:
    struct Entry
    {
        int level;
        std::wstring text;
    };

    bool IsSeen(const Entry &entry) const { return entry.level > 0 || m_details; }
    std::vector<std::wstring> LinesOf(const std::wstring &text) const;
    void Insert(size_t index);
    void Refill();

    const HWND m_list;
    const UINT m_message;
    std::mutex m_lock;
    std::vector<Entry> m_appended;
    std::vector<Entry> m_entries;
    std::vector<size_t> m_rows; // the entry of each
    bool m_details = false;
    int m_textWidth = 0; // in pixels
};
