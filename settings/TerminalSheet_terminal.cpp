#include "settings/TerminalSheet_terminal.h"

#include "account/AccountRecord.h"
#include "core/StringTable.h"
#include "resources/resource.h"
#include "settings/AboutPage.h"
#include "settings/CellText_terminal.h"
#include "settings/JpegPage.h"
#include "settings/OptionsPage.h"
#include "settings/PhotosPage.h"
#include "settings/RawPage.h"
#include "settings/TerminalPage_terminal.h"
#include "ui/CentredMessageBox.h"

#include <shellapi.h>

#include <algorithm>

namespace
{
// In milliseconds: the browser takes a moment to appear.
constexpr DWORD BrowserPause = 500;

// In cells; on a larger terminal the sheet keeps this size and gets a frame.
constexpr int Widest = 80;
constexpr int Tallest = 24;
constexpr int PageMargin = 2;
constexpr int WheelRows = 3;
constexpr int RowsForKeys = 20; // a lower sheet needs all its rows for the page

// Kept between sheets for as long as the module stays loaded.
size_t lastPageIndex = 0;

constexpr const WCHAR *OkWord = TEXT("[   OK   ]");
constexpr const WCHAR *CancelWord = TEXT("[ Cancel ]");
constexpr const WCHAR *KeyWords = TEXT("Tab move   Space change   Ctrl+PgDn next page   Enter OK   Esc cancel");
constexpr const WCHAR *WaitingWord = TEXT("Please wait...");

int Cells(WideView text)
{
    return static_cast<int>(CellsOf(text));
}

WideText LinkWord()
{
    WideText text = LoadStringOrPlaceholder(IDS_HOMEPAGE_LINK);
    for (const WideView mark : {WideView(TEXT("<a>")), WideView(TEXT("</a>"))})
    {
        if (const size_t at = text.find(mark); at != text.npos)
        {
            text.erase(at, mark.size());
        }
    }
    return text;
}

enum class Place
{
    Tabs,
    Page,
    Link,
    Ok,
    Cancel
};

// An area that answers clicks.
struct Target
{
    Place What;
    size_t Tab;
    ScreenArea Area;
};

class Sheet final : private IRefreshDisplay
{
public:
    Sheet(ISheetScreen &screen, HWND parent, SheetAccount &account, const Pause &wait)
        : m_screen(screen), m_parent(parent), m_account(account), m_wait(wait), m_about(account, wait)
    {
        for (SettingsPage *logic : {static_cast<SettingsPage *>(&m_photos),
                                    static_cast<SettingsPage *>(&m_options), static_cast<SettingsPage *>(&m_jpeg),
                                    static_cast<SettingsPage *>(&m_raw), static_cast<SettingsPage *>(&m_about)})
        {
            if (auto page = ReadPageTemplate(logic->Template()))
            {
                const WideText title = page->Title;
                m_tabs.push_back({*logic, title, TerminalPage(*std::move(page), screen), false});
            }
        }
    }

    SheetOutcome Run()
    {
        if (m_tabs.empty())
        {
            return {};
        }
        BringToTop(0);
        BringToTop(std::min(lastPageIndex, m_tabs.size() - 1));
        FocusPage();
        while (!m_outcome)
        {
            Draw();
            Press(m_screen.Read());
        }
        lastPageIndex = m_top;
        return *m_outcome;
    }

private:
    struct Tab
    {
        SettingsPage &Logic;
        WideText Title;
        TerminalPage Controls;
        bool IsLoaded;
    };

    Tab &Top() { return m_tabs[m_top]; }
    TerminalPage &Page() { return m_tabs[m_top].Controls; }
    bool HasLink() const { return !m_account.Account.PhotosUrl.IsEmpty(); }

    void BringToTop(size_t index)
    {
        m_top = index;
        if (!Top().IsLoaded)
        {
            Top().IsLoaded = true;
            Top().Logic.Load(Page());
        }
        if (&Top().Logic == &m_about)
        {
            m_about.ShowAccountData(Page());
        }
    }

    void FocusPage() { m_focus = Page().FocusFirst() ? Place::Page : Place::Ok; }

    // Brings the previous or next page to the top, from the last to the first and back.
    void Turn(int direction)
    {
        BringToTop((m_top + m_tabs.size() + static_cast<size_t>(direction)) % m_tabs.size());
        if (m_focus != Place::Tabs)
        {
            FocusPage();
        }
    }

    void FocusNext()
    {
        if (m_focus == Place::Page && Page().FocusNext())
        {
            return;
        }
        switch (m_focus)
        {
        case Place::Tabs:
            FocusPage();
            break;
        case Place::Page:
            m_focus = HasLink() ? Place::Link : Place::Ok;
            break;
        case Place::Link:
            m_focus = Place::Ok;
            break;
        case Place::Ok:
            m_focus = Place::Cancel;
            break;
        case Place::Cancel:
            m_focus = Place::Tabs;
            break;
        }
    }

    void FocusPrevious()
    {
        if (m_focus == Place::Page && Page().FocusPrevious())
        {
            return;
        }
        switch (m_focus)
        {
        case Place::Tabs:
            m_focus = Place::Cancel;
            break;
        case Place::Page:
            m_focus = Place::Tabs;
            break;
        case Place::Cancel:
            m_focus = Place::Ok;
            break;
        case Place::Ok:
            if (HasLink())
            {
                m_focus = Place::Link;
                break;
            }
            [[fallthrough]];
        case Place::Link:
            m_focus = Page().FocusLast() ? Place::Page : Place::Tabs;
            break;
        }
    }

    void Press(const ScreenInput &input)
    {
        if (Page().HasOpenList())
        {
            const auto response =
                input.Key == SheetKey::Click ? Page().Click(input.Column, input.Row) : Page().Press(input);
            if (response.IsUsed)
            {
                return;
            }
        }
        switch (input.Key)
        {
        case SheetKey::Escape:
        case SheetKey::Lost:
            Cancel();
            break;
        case SheetKey::Tab:
            FocusNext();
            break;
        case SheetKey::BackTab:
            FocusPrevious();
            break;
        case SheetKey::NextPage:
            Turn(1);
            break;
        case SheetKey::PreviousPage:
            Turn(-1);
            break;
        case SheetKey::PageUp:
            Page().Scroll(-std::max(m_pageRows - 1, 1));
            break;
        case SheetKey::PageDown:
            Page().Scroll(std::max(m_pageRows - 1, 1));
            break;
        case SheetKey::WheelUp:
            Page().Scroll(-WheelRows);
            break;
        case SheetKey::WheelDown:
            Page().Scroll(WheelRows);
            break;
        case SheetKey::Click:
            ClickAt(input.Column, input.Row);
            break;
        default:
            PressFocused(input);
            break;
        }
    }

    void PressFocused(const ScreenInput &input)
    {
        if (m_focus == Place::Page)
        {
            const auto response = Page().Press(input);
            Answer(response);
            if (response.IsUsed)
            {
                return;
            }
        }
        const bool isSpace = input.Key == SheetKey::Character && input.Character == U' ';
        if (input.Key == SheetKey::Enter || (isSpace && m_focus > Place::Page))
        {
            Choose(m_focus);
            return;
        }
        const bool isForward = input.Key == SheetKey::Right || input.Key == SheetKey::Down;
        const bool isBack = input.Key == SheetKey::Left || input.Key == SheetKey::Up;
        if (m_focus == Place::Tabs && (input.Key == SheetKey::Left || input.Key == SheetKey::Right))
        {
            Turn(isForward ? 1 : -1);
        }
        else if (isForward && m_focus != Place::Cancel)
        {
            FocusNext();
        }
        else if (isBack && m_focus != Place::Tabs)
        {
            FocusPrevious();
        }
    }

    void Answer(const TerminalPage::Response &response)
    {
        if (!response.Clicked)
        {
            return;
        }
        if (&Top().Logic == &m_about && *response.Clicked == IDC_REFRESH)
        {
            m_about.Refresh(Page(), *this);
        }
        else
        {
            Top().Logic.Click(Page(), *response.Clicked);
        }
    }

    void ClickAt(int column, int row)
    {
        for (const Target &target : m_targets)
        {
            const bool isHit = row == target.Area.Top && column >= target.Area.Left &&
                               column < target.Area.Left + target.Area.Width;
            if (!isHit)
            {
                continue;
            }
            m_focus = target.What;
            if (target.What == Place::Tabs)
            {
                BringToTop(target.Tab);
                return;
            }
            Choose(target.What);
            return;
        }
        const auto response = Page().Click(column, row);
        m_focus = response.IsUsed ? Place::Page : m_focus;
        Answer(response);
    }

    void Choose(Place place)
    {
        switch (place)
        {
        case Place::Link:
            OpenHomepage();
            break;
        case Place::Cancel:
            Cancel();
            break;
        default:
            Apply();
            break;
        }
    }

    void Cancel() { m_outcome = SheetOutcome{}; }

    void Apply()
    {
        for (Tab &tab : m_tabs)
        {
            if (tab.IsLoaded)
            {
                tab.Logic.Save(tab.Controls);
            }
        }
        m_outcome = {true, m_about.RevokeRequested()};
    }

    void OpenHomepage()
    {
        ShowWaiting(true);
        ShellExecuteW(m_parent, TEXT("open"), m_account.Account.PhotosUrl.Text(), nullptr, nullptr, SW_SHOWNORMAL);
        m_wait(BrowserPause);
        ShowWaiting(false);
        m_focus = Place::Ok;
    }

    void ShowPending() override { Draw(); }

    void ShowWaiting(bool isWaiting) override
    {
        m_isWaiting = isWaiting;
        if (!isWaiting)
        {
            // Keys typed during the wait must not act on the sheet afterwards.
            m_screen.DiscardInput();
        }
        Draw();
    }

    void ShowError(const WideText &text, const WideText &caption) override
    {
        m_screen.Lend([&] { CentredMessageBox(m_parent, text.c_str(), caption.c_str(), MB_ICONERROR); });
    }

    void Draw()
    {
        m_screen.Clear();
        m_targets.clear();
        ScreenArea sheet{0, 0, std::min(m_screen.Columns(), Widest), std::min(m_screen.Rows(), Tallest)};
        sheet.Left = (m_screen.Columns() - sheet.Width) / 2;
        sheet.Top = (m_screen.Rows() - sheet.Height) / 2;
        if (m_screen.Columns() >= Widest + 2 && m_screen.Rows() >= Tallest + 2)
        {
            DrawFrame(sheet);
        }
        const int bottom = sheet.Top + sheet.Height - 1;
        DrawTabs(sheet);
        DrawRule(sheet, sheet.Top + 1);
        const int keyRows = DrawKeys(sheet, bottom);
        const int footRows = keyRows + DrawButtons(sheet, bottom - keyRows);
        DrawRule(sheet, bottom - footRows);
        m_pageRows = std::max(sheet.Height - footRows - 3, 1);
        const int pageColumns = std::max(sheet.Width - 2 * PageMargin, 1);
        Page().Draw({sheet.Left + PageMargin, sheet.Top + 2, pageColumns, m_pageRows}, m_focus == Place::Page);
        m_screen.Show();
    }

    void DrawRule(const ScreenArea &sheet, int row)
    {
        const WCHAR line = m_screen.IsUnicode() ? u'─' : u'-';
        m_screen.Write(sheet.Left, row, WideText(static_cast<size_t>(sheet.Width), line), Look::Dim);
    }

    void DrawFrame(const ScreenArea &sheet)
    {
        const bool isUnicode = m_screen.IsUnicode();
        const WideText line(static_cast<size_t>(sheet.Width), isUnicode ? u'─' : u'-');
        const WideText side = isUnicode ? TEXT("│") : TEXT("|");
        const int bottom = sheet.Top + sheet.Height;
        const WCHAR *const corners = isUnicode ? TEXT("╭╮╰╯") : TEXT("++++");
        m_screen.Write(sheet.Left - 1, sheet.Top - 1, corners[0] + line + corners[1], Look::Dim);
        m_screen.Write(sheet.Left - 1, bottom, corners[2] + line + corners[3], Look::Dim);
        for (int row = sheet.Top; row < bottom; ++row)
        {
            m_screen.Write(sheet.Left - 1, row, side, Look::Dim);
            m_screen.Write(sheet.Left + sheet.Width, row, side, Look::Dim);
        }
    }

    // The tab of the page on top is drawn as "[Photos]", the others as " Options "; the sheet's title comes before
    // them if there is room.
    void DrawTabs(const ScreenArea &sheet)
    {
        int width = 0;
        for (const Tab &tab : m_tabs)
        {
            width += Cells(tab.Title) + 2;
        }
        if (width + 2 > sheet.Width)
        {
            DrawTopTab(sheet);
            return;
        }
        const WideText title = LoadStringOrPlaceholder(IDS_DISPLAY_NAME);
        int column = sheet.Left + 1;
        if (Cells(title) + width + 5 <= sheet.Width)
        {
            m_screen.Write(column + 1, sheet.Top, title, Look::Strong);
            column = sheet.Left + sheet.Width - width - 1;
        }
        for (size_t i = 0; i < m_tabs.size(); ++i)
        {
            const WideText &name = m_tabs[i].Title;
            DrawTab(i, column, sheet.Top, i == m_top ? TEXT("[") + name + TEXT("]") : TEXT(" ") + name);
            column += Cells(name) + 2;
        }
    }

    // On a narrow terminal: only the page on top, with its number: "< JPEG Settings 3/5 >".
    void DrawTopTab(const ScreenArea &sheet)
    {
        const auto digit = [](size_t number) { return static_cast<WCHAR>(u'0' + number); };
        const WideText number = {u' ', digit(m_top + 1), u'/', digit(m_tabs.size())};
        DrawTab(m_top, sheet.Left + 1, sheet.Top, TEXT("< ") + Top().Title + number + TEXT(" >"));
    }

    void DrawTab(size_t index, int column, int row, const WideText &text)
    {
        const bool isTop = index == m_top;
        const bool hasFocus = isTop && m_focus == Place::Tabs;
        m_screen.Write(column, row, text, hasFocus ? Look::Focus : isTop ? Look::Strong : Look::Plain);
        m_targets.push_back({Place::Tabs, index, {column, row, Cells(text), 1}});
        if (hasFocus)
        {
            m_screen.PlaceCursor(column + 1, row);
        }
    }

    // Returns the number of rows used.
    int DrawKeys(const ScreenArea &sheet, int row)
    {
        if (sheet.Height < RowsForKeys || sheet.Width < Cells(KeyWords) + 2 * PageMargin)
        {
            return 0;
        }
        m_screen.Write(sheet.Left + PageMargin, row, KeyWords, Look::Dim);
        return 1;
    }

    // Returns the number of rows used.
    int DrawButtons(const ScreenArea &sheet, int row)
    {
        const int cancelColumn = sheet.Left + sheet.Width - Cells(CancelWord) - 2;
        const int okColumn = cancelColumn - Cells(OkWord) - 2;
        DrawButton(Place::Ok, okColumn, row, OkWord, Look::Plain);
        DrawButton(Place::Cancel, cancelColumn, row, CancelWord, Look::Plain);
        const WideText link = m_isWaiting ? WideText(WaitingWord) : HasLink() ? LinkWord() : WideText();
        if (link.empty())
        {
            return 1;
        }
        const int column = sheet.Left + PageMargin;
        const int linkRow = column + Cells(link) + 2 > okColumn ? row - 1 : row;
        if (m_isWaiting)
        {
            m_screen.Write(column, linkRow, link, Look::Strong);
        }
        else
        {
            DrawButton(Place::Link, column, linkRow, link, Look::Link);
        }
        return row - linkRow + 1;
    }

    void DrawButton(Place place, int column, int row, const WideText &text, Look look)
    {
        const bool hasFocus = m_focus == place && !m_isWaiting;
        m_screen.Write(column, row, text, m_isWaiting ? Look::Dim : hasFocus ? Look::Focus : look);
        m_targets.push_back({place, 0, {column, row, Cells(text), 1}});
        if (hasFocus)
        {
            m_screen.PlaceCursor(column + (place == Place::Link ? 0 : 2), row);
        }
    }

    ISheetScreen &m_screen;
    HWND m_parent;
    SheetAccount &m_account;
    const Pause &m_wait;
    PhotosPage m_photos;
    OptionsPage m_options;
    JpegPage m_jpeg;
    RawPage m_raw;
    AboutPage m_about;
    std::vector<Tab> m_tabs;
    size_t m_top = 0;
    Place m_focus = Place::Page;
    std::vector<Target> m_targets;
    int m_pageRows = 1;
    bool m_isWaiting = false;
    std::optional<SheetOutcome> m_outcome;
};
} // namespace

SheetOutcome RunTerminalSheet(ISheetScreen &screen, HWND parent, SheetAccount &account, const Pause &wait)
{
    return Sheet(screen, parent, account, wait).Run();
}

SheetOutcome ShowSettingsSheet(HWND parent, SheetAccount &account)
{
    const auto screen = OpenTerminalScreen();
    return screen ? RunTerminalSheet(*screen, parent, account, SystemPause) : SheetOutcome{};
}
