#include "tests/sheet/SheetDriver.h"

#include "resources/resource.h"

#include <commctrl.h>

namespace
{
constexpr const WCHAR *Caption = TEXT("Publish to Flickr");

LRESULT Ask(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0)
{
    DWORD_PTR result = 0;
    EXPECT_NE(SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, 30000, &result), 0)
        << "message " << message << " wasn't answered";
    return static_cast<LRESULT>(result);
}
} // namespace

HWND OpenSheet::Tabs() const
{
    return reinterpret_cast<HWND>(Ask(m_sheet, PSM_GETTABCONTROL));
}

HWND OpenSheet::Button(int id) const
{
    const HWND button = GetDlgItem(m_sheet, id);
    EXPECT_NE(button, nullptr) << "no button " << id;
    return button;
}

HWND OpenSheet::HomepageLink() const
{
    return GetDlgItem(m_sheet, IDC_HOMEPAGE_LINK);
}

HWND OpenSheet::Animation() const
{
    return FindWindowExW(Tabs(), nullptr, TEXT("HVR_WaitingAnimation"), nullptr);
}

void OpenSheet::SelectPage(int index) const
{
    Ask(m_sheet, PSM_SETCURSEL, static_cast<WPARAM>(index));
    EXPECT_EQ(SelectedPage(), index);
}

int OpenSheet::SelectedPage() const
{
    return static_cast<int>(Ask(Tabs(), TCM_GETCURSEL));
}

HWND OpenSheet::Control(UINT id) const
{
    const auto page = reinterpret_cast<HWND>(Ask(m_sheet, PSM_GETCURRENTPAGEHWND));
    const HWND control = GetDlgItem(page, static_cast<int>(id));
    EXPECT_NE(control, nullptr) << "no control " << id;
    return control;
}

void OpenSheet::Click(UINT id) const
{
    Ask(Control(id), BM_CLICK);
}

bool OpenSheet::IsChecked(UINT id) const
{
    return Ask(Control(id), BM_GETCHECK) == BST_CHECKED;
}

bool OpenSheet::IsEnabled(UINT id) const
{
    return IsWindowEnabled(Control(id)) != FALSE;
}

WideText OpenSheet::Text(UINT id) const
{
    WCHAR text[400] = {};
    Ask(Control(id), WM_GETTEXT, 400, reinterpret_cast<LPARAM>(text));
    return text;
}

void OpenSheet::Type(UINT id, const WCHAR *text) const
{
    const HWND box = Control(id);
    Ask(box, CB_SETEDITSEL, 0, MAKELPARAM(0, -1));
    const HWND edit = FindWindowExW(box, nullptr, WC_EDIT, nullptr);
    ASSERT_NE(edit, nullptr);
    Ask(edit, WM_CLEAR);
    for (; *text != 0; ++text)
    {
        Ask(edit, WM_CHAR, *text, 1);
    }
}

void OpenSheet::ClickLink(HWND link) const
{
    ASSERT_NE(link, nullptr);
    const LPARAM within = MAKELPARAM(8, 5);
    PostMessageW(link, WM_LBUTTONDOWN, MK_LBUTTON, within);
    PostMessageW(link, WM_LBUTTONUP, 0, within);
}

void OpenSheet::PressKey(WPARAM key) const
{
    PostMessageW(Focus(), WM_KEYDOWN, key, 1);
    PostMessageW(Focus(), WM_KEYUP, key, 0xC0000001);
}

HWND OpenSheet::Focus() const
{
    GUITHREADINFO information{sizeof(information)};
    return GetGUIThreadInfo(m_thread, &information) ? information.hwndFocus : nullptr;
}

void OpenSheet::Close(int button) const
{
    PostMessageW(Button(button), BM_CLICK, 0, 0);
    WaitForEnd();
}

void OpenSheet::CloseByTitleBar() const
{
    PostMessageW(m_sheet, WM_SYSCOMMAND, SC_CLOSE, 0);
    WaitForEnd();
}

void OpenSheet::WaitForEnd() const
{
    EXPECT_TRUE(WaitFor([this] { return !IsWindow(m_sheet) || !IsWindowVisible(m_sheet); }))
        << "the sheet stays open";
}

HWND OpenSheet::WaitForDialog(const WCHAR *title) const
{
    HWND dialog = nullptr;
    EXPECT_TRUE(WaitFor([&] { return (dialog = FindTop(m_thread, title, m_sheet)) != nullptr; }))
        << "no dialog comes";
    return dialog;
}

SheetDriver::SheetDriver(std::function<void(const OpenSheet &)> act)
    : DialogDriver(Caption, [thread = GetCurrentThreadId(), act = std::move(act)](HWND sheet) {
          EXPECT_TRUE(WaitFor([&] { return Ask(sheet, PSM_GETCURRENTPAGEHWND) != 0; }));
          const OpenSheet open(sheet, thread);
          act(open);
          if (IsWindow(sheet) && IsWindowVisible(sheet))
          {
              open.Close(IDCANCEL);
          }
      })
{
}
