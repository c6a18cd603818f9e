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

    // The selected rows, each a line: the level's word if it has one, and the text.
    std::wstring SelectedText() const;

    // Whether entries of level 0 are seen.
    void ShowDetails(bool details);

    // For the window's present size; a text that is longer can be scrolled to.
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
    void Insert(const Entry &entry);

    const HWND m_list;
    const UINT m_message;
    std::mutex m_lock;
    std::vector<Entry> m_appended;
    std::vector<Entry> m_entries;
    std::vector<int> m_levels; // row by row
    bool m_details = false;
    int m_longest = 0; // pixels of the widest text seen
};
