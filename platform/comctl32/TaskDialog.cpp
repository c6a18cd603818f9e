// TaskDialogIndirect in the terminal. The dialog has a window that isn't drawn: its handle identifies the
// dialog to the callback, which may send it messages from any thread.
#include "com/Hresult.h"
#include "platform/comctl32/TaskDialogPage.h"
#include "platform/terminal/TerminalDialog.h"

#include <windows.h>
#include <commctrl.h>

#include <algorithm>
#include <chrono>
#include <iterator>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

namespace
{
using Clock = std::chrono::steady_clock;

long long MillisecondsSince(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start).count();
}

class TaskDialogWindow;

// The open dialogs. A message runs on the thread that sends it, so its handler holds a reference to the
// dialog for that time.
class OpenDialogs
{
public:
    void Add(HWND window, std::shared_ptr<TaskDialogWindow> dialog)
    {
        const std::lock_guard guard(m_lock);
        m_dialogs.emplace(window, std::move(dialog));
    }

    void Remove(HWND window)
    {
        const std::lock_guard guard(m_lock);
        m_dialogs.erase(window);
    }

    std::shared_ptr<TaskDialogWindow> Find(HWND window)
    {
        const std::lock_guard guard(m_lock);
        const auto found = m_dialogs.find(window);
        return found != m_dialogs.end() ? found->second : nullptr;
    }

private:
    std::mutex m_lock;
    std::map<HWND, std::shared_ptr<TaskDialogWindow>> m_dialogs;
};

// Never destroyed, since other threads may send messages until the process ends.
OpenDialogs &openDialogs = *new OpenDialogs;

class TaskDialogWindow final : public DialogListener
{
public:
    explicit TaskDialogWindow(const TASKDIALOGCONFIG &config) : m_config(config)
    {
        m_dialog.Change([&](DialogPage &page) { page = PageOf(config); });
    }

    static HRESULT Show(const TASKDIALOGCONFIG &config, int *button, int *radioButton, BOOL *checked)
    {
        const auto dialog = std::make_shared<TaskDialogWindow>(config);
        const WCHAR *const title = IS_INTRESOURCE(config.pszWindowTitle) ? nullptr : config.pszWindowTitle;
        const HWND window =
            CreateWindowExW(0, WindowClass(), title, 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
        if (window == nullptr)
        {
            return E_FAIL;
        }
        dialog->m_window = window;
        openDialogs.Add(window, dialog);
        const HRESULT result = AtBoundary([&] { return dialog->RunAndTell(button, radioButton, checked); });
        openDialogs.Remove(window);
        DestroyWindow(window);
        return result;
    }

    bool ButtonClicked(int id) override { return Notify(TDN_BUTTON_CLICKED, static_cast<WPARAM>(id)) != S_FALSE; }
    void RadioButtonClicked(int id) override { Notify(TDN_RADIO_BUTTON_CLICKED, static_cast<WPARAM>(id)); }
    void CheckBoxClicked(bool checked) override { Notify(TDN_VERIFICATION_CLICKED, checked); }
    void ExpandoClicked(bool expanded) override { Notify(TDN_EXPANDO_BUTTON_CLICKED, expanded); }
    void LinkClicked(const std::u16string &address) override
    {
        Notify(TDN_HYPERLINK_CLICKED, 0, reinterpret_cast<LPARAM>(address.c_str()));
    }
    // The callback resets the timer's count by returning S_FALSE.
    void TimerPassed() override
    {
        if (Notify(TDN_TIMER, static_cast<WPARAM>(MillisecondsSince(m_start))) == S_FALSE)
        {
            m_start = Clock::now();
        }
    }

private:
    HRESULT RunAndTell(int *button, int *radioButton, BOOL *checked)
    {
        m_start = Clock::now();
        Notify(TDN_DIALOG_CONSTRUCTED);
        Notify(TDN_CREATED);
        const int outcome = m_dialog.Run(*this, (m_config.dwFlags & TDF_CALLBACK_TIMER) != 0);
        Notify(TDN_DESTROYED);
        const DialogPage page = m_dialog.Page();
        Give(button, outcome);
        Give(radioButton, page.selectedRadioButton);
        Give(checked, BOOL{page.checked});
        return S_OK;
    }

    template <class Value>
    static void Give(Value *target, Value value)
    {
        if (target != nullptr)
        {
            *target = value;
        }
    }

    static const WCHAR *WindowClass()
    {
        static const bool Registered = [] {
            WNDCLASSEXW description{sizeof(description)};
            description.lpfnWndProc = Procedure;
            description.lpszClassName = u"#32770";
            return RegisterClassExW(&description) != 0;
        }();
        (void)Registered;
        return u"#32770";
    }

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        const auto dialog = openDialogs.Find(window);
        if (message == WM_CLOSE && dialog != nullptr)
        {
            dialog->m_dialog.ClickButton(IDCANCEL);
            return 0;
        }
        if (message > WM_USER && dialog != nullptr)
        {
            return dialog->Receive(message, wParam, lParam);
        }
        return DefWindowProcW(window, message, wParam, lParam);
    }

    HRESULT Notify(UINT notification, WPARAM wParam = 0, LPARAM lParam = 0)
    {
        return m_config.pfCallback != nullptr
                   ? m_config.pfCallback(m_window, notification, wParam, lParam, m_config.lpCallbackData)
                   : S_OK;
    }

    LRESULT Receive(UINT message, WPARAM wParam, LPARAM lParam)
    {
        const int id = static_cast<int>(wParam);
        switch (message)
        {
        case TDM_CLICK_BUTTON:
            m_dialog.ClickButton(id);
            return TRUE;
        case TDM_CLICK_RADIO_BUTTON:
            m_dialog.ClickRadioButton(id);
            return TRUE;
        case TDM_CLICK_VERIFICATION:
            m_dialog.SetCheckBox(wParam != 0);
            return TRUE;
        case TDM_NAVIGATE_PAGE:
            return Navigate(reinterpret_cast<const TASKDIALOGCONFIG *>(lParam));
        default:
            break;
        }
        LRESULT result = 0;
        m_dialog.Change([&](DialogPage &page) { result = Apply(page, message, wParam, lParam); });
        return result;
    }

    LRESULT Apply(DialogPage &page, UINT message, WPARAM wParam, LPARAM lParam)
    {
        const int id = static_cast<int>(wParam);
        DialogProgress &progress = page.progress;
        switch (message)
        {
        case TDM_ENABLE_BUTTON:
            ForButton(page.buttons, id, [&](DialogButton &button) { button.enabled = lParam != 0; });
            return 0;
        case TDM_ENABLE_RADIO_BUTTON:
            ForButton(page.radioButtons, id, [&](DialogRadioButton &button) { button.enabled = lParam != 0; });
            return 0;
        case TDM_SET_BUTTON_ELEVATION_REQUIRED_STATE:
            ForButton(page.buttons, id, [&](DialogButton &button) { button.elevated = lParam != 0; });
            return 0;
        case TDM_SET_ELEMENT_TEXT:
        case TDM_UPDATE_ELEMENT_TEXT:
            SetText(page, wParam, reinterpret_cast<const WCHAR *>(lParam));
            return TRUE;
        case TDM_UPDATE_ICON:
            (wParam == TDIE_ICON_MAIN ? page.icon : page.footerIcon) =
                TaskDialogIcon(reinterpret_cast<const WCHAR *>(lParam));
            return 0;
        case TDM_SET_MARQUEE_PROGRESS_BAR:
            progress.marquee = wParam != 0;
            return 0;
        case TDM_SET_PROGRESS_BAR_MARQUEE:
            progress.running = wParam != 0;
            return TRUE;
        case TDM_SET_PROGRESS_BAR_POS:
            return std::exchange(progress.position, id);
        case TDM_SET_PROGRESS_BAR_STATE:
            return static_cast<LRESULT>(
                std::exchange(progress.state, static_cast<ProgressState>(std::clamp<WPARAM>(wParam, 1, 3))));
        case TDM_SET_PROGRESS_BAR_RANGE:
        {
            const LRESULT before = MAKELRESULT(progress.low, progress.high);
            progress.low = LOWORD(lParam);
            progress.high = HIWORD(lParam);
            return before;
        }
        default:
            return 0;
        }
    }

    template <class Button, class Action>
    static void ForButton(std::vector<Button> &buttons, int id, Action &&action)
    {
        const auto found =
            std::find_if(buttons.begin(), buttons.end(), [id](const auto &b) { return b.id == id; });
        if (found != buttons.end())
        {
            action(*found);
        }
    }

    void SetText(DialogPage &page, WPARAM element, const WCHAR *text)
    {
        std::vector<std::u16string> *const links =
            (m_config.dwFlags & TDF_ENABLE_HYPERLINKS) && element != TDE_MAIN_INSTRUCTION ? &page.links : nullptr;
        std::u16string *const targets[] = {&page.content, &page.expandedText, &page.footer, &page.instruction};
        if (element < std::size(targets))
        {
            *targets[element] = TaskDialogText(m_config.hInstance, text, links);
        }
    }

    LRESULT Navigate(const TASKDIALOGCONFIG *config)
    {
        if (config == nullptr || config->cbSize != sizeof(*config))
        {
            return E_INVALIDARG;
        }
        m_config = *config;
        m_start = Clock::now();
        m_dialog.Change([&](DialogPage &page) { page = PageOf(*config); });
        Notify(TDN_DIALOG_CONSTRUCTED);
        Notify(TDN_NAVIGATED);
        return S_OK;
    }

    TASKDIALOGCONFIG m_config;
    TerminalDialog m_dialog;
    HWND m_window = nullptr;
    Clock::time_point m_start;
};

bool IsValid(const TASKDIALOGCONFIG *config)
{
    return config != nullptr && config->cbSize == sizeof(*config) &&
           (config->cButtons == 0 || config->pButtons != nullptr) &&
           (config->cRadioButtons == 0 || config->pRadioButtons != nullptr);
}
} // namespace

HRESULT WINAPI TaskDialogIndirect(const TASKDIALOGCONFIG *config, int *button, int *radioButton, BOOL *checked)
{
    if (!IsValid(config))
    {
        return E_INVALIDARG;
    }
    return AtBoundary([&] { return TaskDialogWindow::Show(*config, button, radioButton, checked); });
}
