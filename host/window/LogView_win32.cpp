#include "host/window/LogView_win32.h"

#include "com/SafeText.h"
#include "host/window/WindowText_win32.h"
#include "host/window/resource.h"

#include "HostContract.h"

#include <algorithm>
#include <utility>

namespace
{
constexpr size_t MostEntries = 10000;

constexpr COLORREF ErrorColour = RGB(176, 32, 20);
constexpr COLORREF WarningColour = RGB(150, 90, 0);
constexpr COLORREF DetailColour = RGB(110, 110, 110);

// A user who chose colours for the whole system gets those.
bool HasOwnColours()
{
    HIGHCONTRASTW contrast{};
    contrast.cbSize = sizeof(contrast);
    return SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0) != FALSE &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

std::wstring LevelText(int level)
{
    return ResourceText(static_cast<unsigned>(IDS_LEVEL_VERBOSE + std::clamp(level, 0, 4)));
}
} // namespace

LogView::LogView(HWND list, UINT message) : m_list(list), m_message(message)
{
    ListView_SetExtendedListViewStyle(m_list, LVS_EX_FULLROWSELECT | LVS_EX_DOUBLEBUFFER | LVS_EX_LABELTIP);
    LVCOLUMNW column{};
    column.mask = LVCF_WIDTH;
    ListView_InsertColumn(m_list, 0, &column);
    ListView_InsertColumn(m_list, 1, &column);
    FitColumns();
}

void LogView::Append(int level, std::string text)
{
    {
        const std::lock_guard guard(m_lock);
        m_appended.push_back({level, WideOf(OneSafeLine(text))});
    }
    PostMessageW(GetParent(m_list), m_message, 0, 0);
}

void LogView::Show()
{
    std::vector<Entry> appended;
    {
        const std::lock_guard guard(m_lock);
        appended = std::exchange(m_appended, {});
    }
    if (appended.empty())
    {
        return;
    }
    for (Entry &entry : appended)
    {
        m_entries.push_back(std::move(entry));
        Insert(m_entries.size() - 1);
    }
    FitColumns();
    if (m_entries.size() > MostEntries)
    {
        m_entries.erase(m_entries.begin(), m_entries.end() - MostEntries / 2);
        Refill();
    }
    ListView_EnsureVisible(m_list, static_cast<int>(m_rows.size()) - 1, FALSE);
}

// A report view has no rows of several lines: an entry that is too wide takes as many rows as it needs.
std::vector<std::wstring> LogView::LinesOf(const std::wstring &text) const
{
    const auto fits = [&](const std::wstring &line) {
        return ListView_GetStringWidth(m_list, line.c_str()) <= m_textWidth;
    };
    if (fits(text))
    {
        return {text};
    }
    std::vector<std::wstring> lines;
    std::wstring line;
    for (size_t begin = 0; begin < text.size();)
    {
        const size_t end = std::min(text.find(L' ', begin), text.size());
        const std::wstring word = text.substr(begin, end - begin);
        const std::wstring longer = line.empty() ? word : line + L' ' + word;
        if (!line.empty() && !fits(longer))
        {
            lines.push_back(std::exchange(line, word));
        }
        else
        {
            line = longer;
        }
        begin = end + 1;
    }
    lines.push_back(line);
    return lines;
}

void LogView::Insert(size_t index)
{
    const Entry &entry = m_entries[index];
    if (!IsSeen(entry))
    {
        return;
    }
    std::wstring level = LevelText(entry.level);
    for (std::wstring &line : LinesOf(entry.text))
    {
        LVITEMW row{};
        row.mask = LVIF_TEXT;
        row.iItem = static_cast<int>(m_rows.size());
        row.pszText = level.data();
        m_rows.push_back(index);
        ListView_InsertItem(m_list, &row);
        row.iSubItem = 1;
        row.pszText = line.data();
        ListView_SetItem(m_list, &row);
        level.clear();
    }
}

void LogView::SelectAll()
{
    ListView_SetItemState(m_list, -1, LVIS_SELECTED, LVIS_SELECTED);
}

std::wstring LogView::SelectedText() const
{
    std::wstring text;
    size_t copied = m_entries.size();
    for (size_t row = 0; row < m_rows.size(); ++row)
    {
        if (m_rows[row] != copied && ListView_GetItemState(m_list, static_cast<int>(row), LVIS_SELECTED) != 0)
        {
            copied = m_rows[row];
            const std::wstring level = LevelText(m_entries[copied].level);
            text += (level.empty() ? level : level + L": ") + m_entries[copied].text + L"\r\n";
        }
    }
    return text;
}

void LogView::ShowDetails(bool details)
{
    m_details = details;
    Refill();
}

void LogView::Refill()
{
    SendMessageW(m_list, WM_SETREDRAW, FALSE, 0);
    ListView_DeleteAllItems(m_list);
    m_rows.clear();
    for (size_t i = 0; i < m_entries.size(); ++i)
    {
        Insert(i);
    }
    SendMessageW(m_list, WM_SETREDRAW, TRUE, 0);
    InvalidateRect(m_list, nullptr, TRUE);
    ListView_EnsureVisible(m_list, static_cast<int>(m_rows.size()) - 1, FALSE);
}

void LogView::FitColumns()
{
    int widest = 0;
    for (int level = 0; level <= 4; ++level)
    {
        widest = std::max(widest, ListView_GetStringWidth(m_list, LevelText(level).c_str()));
    }
    widest += 4 * GetSystemMetrics(SM_CXEDGE) + GetSystemMetrics(SM_CXSMICON) / 2;
    RECT area{};
    GetClientRect(m_list, &area);
    const int whole =
        area.right - ((GetWindowLongW(m_list, GWL_STYLE) & WS_VSCROLL) != 0 ? 0 : GetSystemMetrics(SM_CXVSCROLL));
    ListView_SetColumnWidth(m_list, 0, widest);
    ListView_SetColumnWidth(m_list, 1, whole - widest);
    if (const int width = whole - widest - 6 * GetSystemMetrics(SM_CXEDGE); width != m_textWidth)
    {
        m_textWidth = width;
        Refill();
    }
}

LRESULT LogView::Draw(NMLVCUSTOMDRAW &drawing) const
{
    const size_t row = drawing.nmcd.dwItemSpec;
    if (drawing.nmcd.dwDrawStage == CDDS_ITEMPREPAINT && row < m_rows.size() && !HasOwnColours())
    {
        const int level = m_entries[m_rows[row]].level;
        drawing.clrText = level >= LOG_LEVEL_ERROR     ? ErrorColour
                          : level == LOG_LEVEL_WARNING ? WarningColour
                          : level <= LOG_LEVEL_VERBOSE ? DetailColour
                                                       : GetSysColor(COLOR_WINDOWTEXT);
    }
    return drawing.nmcd.dwDrawStage == CDDS_PREPAINT ? CDRF_NOTIFYITEMDRAW : CDRF_DODEFAULT;
}
