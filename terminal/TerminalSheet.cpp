#include "terminal/TerminalSheet.h"

#include "account/AccountRecord.h"
#include "resources/resource.h"
#include "settings/AboutPage.h"
#include "settings/SettingsPages.h"
#include "terminal/SheetView.h"
#include "ui/CentredDialogs.h"

#include <shellapi.h>

#include <algorithm>

namespace
{
// In milliseconds: the browser takes a moment to appear.
constexpr DWORD BrowserPause = 500;

constexpr int WheelRows = 3;
constexpr int PlaceCount = 5;

// Kept between sheets for as long as the module stays loaded.
size_t lastPageIndex = 0;

class Sheet final : private IRefreshDisplay
{
public:
    Sheet(ISheetScreen &screen, HWND parent, SheetAccount &account, const Pause &wait)
        : m_screen(screen),
          m_view(screen),
          m_parent(parent),
          m_account(account),
          m_wait(wait),
          m_about(account, wait)
    {
        SettingsPage *const pages[] = {&m_photos, &m_options, &m_jpeg, &m_raw, &m_about};
        for (SettingsPage *logic : pages)
        {
            if (auto page = ReadPageTemplate(logic->Template()))
            {
                m_picture.Titles.push_back(page->Title);
                m_tabs.push_back({*logic, TerminalPage(*std::move(page), screen), false});
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
        lastPageIndex = m_picture.Top;
        return *m_outcome;
    }

private:
    struct Tab
    {
        SettingsPage &Logic;
        TerminalPage Controls;
        bool IsLoaded;
    };

    Tab &Top() { return m_tabs[m_picture.Top]; }
    TerminalPage &Page() { return Top().Controls; }

    void Draw()
    {
        m_picture.HasLink = HasLink();
        m_view.Draw(m_picture, Page());
    }

    bool HasLink() const { return !m_account.Account.PhotosUrl.IsEmpty(); }

    void BringToTop(size_t index)
    {
        m_picture.Top = index;
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

    void FocusPage() { m_picture.Focus = Page().FocusFirst() ? SheetPlace::Page : SheetPlace::Ok; }

    // Brings the previous or next page to the top, from the last to the first and back.
    void Turn(int direction)
    {
        BringToTop((m_picture.Top + m_tabs.size() + static_cast<size_t>(direction)) % m_tabs.size());
        if (m_picture.Focus != SheetPlace::Tabs)
        {
            FocusPage();
        }
    }

    void MoveFocus(int direction)
    {
        if (m_picture.Focus == SheetPlace::Page && (direction > 0 ? Page().FocusNext() : Page().FocusPrevious()))
        {
            return;
        }
        do
        {
            const int next = static_cast<int>(m_picture.Focus) + direction + PlaceCount;
            m_picture.Focus = static_cast<SheetPlace>(next % PlaceCount);
        } while (!TakesFocus(direction));
    }

    bool TakesFocus(int direction)
    {
        switch (m_picture.Focus)
        {
        case SheetPlace::Page:
            return direction > 0 ? Page().FocusFirst() : Page().FocusLast();
        case SheetPlace::Link:
            return HasLink();
        default:
            return true;
        }
    }

    void Press(const Input &input)
    {
        if (Page().HasOpenList())
        {
            const auto response =
                input.What == Key::Click ? Page().Click(input.Column, input.Row) : Page().Press(input);
            if (response.IsUsed)
            {
                return;
            }
        }
        switch (input.What)
        {
        case Key::Escape:
        case Key::Lost:
            m_outcome = SheetOutcome{};
            break;
        case Key::Tab:
            MoveFocus(1);
            break;
        case Key::BackTab:
            MoveFocus(-1);
            break;
        case Key::NextPage:
            Turn(1);
            break;
        case Key::PreviousPage:
            Turn(-1);
            break;
        case Key::PageUp:
            Page().Scroll(-std::max(m_view.PageRows() - 1, 1));
            break;
        case Key::PageDown:
            Page().Scroll(std::max(m_view.PageRows() - 1, 1));
            break;
        case Key::WheelUp:
            Page().Scroll(-WheelRows);
            break;
        case Key::WheelDown:
            Page().Scroll(WheelRows);
            break;
        case Key::Click:
            ClickAt(input.Column, input.Row);
            break;
        default:
            PressFocused(input);
            break;
        }
    }

    void PressFocused(const Input &input)
    {
        const SheetPlace focus = m_picture.Focus;
        if (focus == SheetPlace::Page)
        {
            const auto response = Page().Press(input);
            Answer(response);
            if (response.IsUsed)
            {
                return;
            }
        }
        const bool isSpace = input.What == Key::Character && input.Character == U' ';
        if (input.What == Key::Enter || (isSpace && focus > SheetPlace::Page))
        {
            Choose(focus);
            return;
        }
        const bool isForward = input.What == Key::Right || input.What == Key::Down;
        const bool isBack = input.What == Key::Left || input.What == Key::Up;
        if (focus == SheetPlace::Tabs && (input.What == Key::Left || input.What == Key::Right))
        {
            Turn(isForward ? 1 : -1);
        }
        else if ((isForward && focus != SheetPlace::Cancel) || (isBack && focus != SheetPlace::Tabs))
        {
            MoveFocus(isForward ? 1 : -1);
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
        if (const SheetTarget *const target = m_view.TargetAt(column, row))
        {
            m_picture.Focus = target->What;
            target->What == SheetPlace::Tabs ? BringToTop(target->Tab) : Choose(target->What);
            return;
        }
        const auto response = Page().Click(column, row);
        m_picture.Focus = response.IsUsed ? SheetPlace::Page : m_picture.Focus;
        Answer(response);
    }

    void Choose(SheetPlace place)
    {
        switch (place)
        {
        case SheetPlace::Link:
            OpenHomepage();
            break;
        case SheetPlace::Cancel:
            m_outcome = SheetOutcome{};
            break;
        default:
            Apply();
            break;
        }
    }

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
        m_picture.Focus = SheetPlace::Ok;
    }

    void ShowPending() override { Draw(); }

    void ShowWaiting(bool isWaiting) override
    {
        m_picture.IsWaiting = isWaiting;
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

    ISheetScreen &m_screen;
    SheetView m_view;
    SheetPicture m_picture;
    HWND m_parent;
    SheetAccount &m_account;
    const Pause &m_wait;
    PhotosPage m_photos;
    OptionsPage m_options;
    JpegPage m_jpeg;
    RawPage m_raw;
    AboutPage m_about;
    std::vector<Tab> m_tabs;
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
