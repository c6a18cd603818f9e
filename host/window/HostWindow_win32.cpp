#include "host/window/HostWindow_win32.h"

#include "host/FileNames.h"
#include "host/SystemWords.h"
#include "host/TextEncodings.h"
#include "host/window/Shell_win32.h"
#include "host/window/WindowText_win32.h"
#include "host/window/resource.h"

#include "com/Hresult.h"

#include <commctrl.h>
#include <shellapi.h>

namespace
{
constexpr UINT ThumbnailMessage = WM_APP + 1;
constexpr UINT LogMessage = WM_APP + 2;
constexpr UINT ConfigureMessage = WM_APP + 4;

struct Drop
{
    explicit Drop(HDROP handle) : handle(handle) {}
    ~Drop() { DragFinish(handle); }
    Drop(const Drop &) = delete;
    Drop &operator=(const Drop &) = delete;

    HDROP handle;
};
} // namespace

HostWindow::HostWindow(const Profile &profile) : m_profile(profile)
{
    m_store.Load();
    const INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS |
                                                                 ICC_STANDARD_CLASSES | ICC_LINK_CLASS};
    InitCommonControlsEx(&controls);
    WNDCLASSEXW kind{};
    kind.cbSize = sizeof(kind);
    kind.lpfnWndProc = Procedure;
    kind.hInstance = GetModuleHandleW(nullptr);
    kind.hIcon = LoadIconW(kind.hInstance, MAKEINTRESOURCEW(IDI_HOST));
    kind.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    kind.hbrBackground = GetSysColorBrush(COLOR_BTNFACE);
    kind.lpszClassName = L"Halvora.Host";
    RegisterClassExW(&kind);
    if (CreateWindowExW(WS_EX_ACCEPTFILES | WS_EX_CONTROLPARENT, kind.lpszClassName,
                        ResourceText(IDS_TITLE).c_str(), WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN, CW_USEDEFAULT,
                        CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, nullptr, nullptr, kind.hInstance,
                        this) == nullptr)
    {
        ThrowHresult(HRESULT_FROM_WIN32(GetLastError()));
    }
}

HostWindow::~HostWindow()
{
    if (m_window != nullptr)
    {
        DestroyWindow(m_window);
    }
}

LRESULT CALLBACK HostWindow::Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE)
    {
        auto *const host = static_cast<HostWindow *>(reinterpret_cast<CREATESTRUCTW *>(lParam)->lpCreateParams);
        host->m_window = window;
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(host));
    }
    auto *const host = reinterpret_cast<HostWindow *>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (host == nullptr)
    {
        return DefWindowProcW(window, message, wParam, lParam);
    }
    const LRESULT result = host->Handle(message, wParam, lParam);
    if (message == WM_NCDESTROY)
    {
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        host->m_window = nullptr;
    }
    return result;
}

// No exception may pass through the system's stack frames; the log says what went wrong.
void HostWindow::Guarded(const std::function<void()> &act)
{
    try
    {
        act();
    }
    catch (const HresultError &error)
    {
        Tell(LOG_LEVEL_ERROR, IDS_VERB_FAILED, error.Code());
    }
    catch (const std::exception &error)
    {
        if (m_log)
        {
            m_log->Append(LOG_LEVEL_ERROR, error.what());
        }
    }
}

LRESULT HostWindow::Handle(UINT message, WPARAM wParam, LPARAM lParam)
{
    LRESULT result = 0;
    switch (message)
    {
    case WM_CREATE:
        Guarded([&] { OnCreate(); });
        return 0;
    case WM_SIZE:
        if (m_controls && wParam != SIZE_MINIMIZED)
        {
            m_controls->LayOut();
            m_log->FitColumns();
        }
        return 0;
    case WM_GETMINMAXINFO:
        if (m_controls)
        {
            const SIZE smallest = m_controls->SmallestSize();
            reinterpret_cast<MINMAXINFO *>(lParam)->ptMinTrackSize = {smallest.cx, smallest.cy};
        }
        return 0;
    case WM_ACTIVATE:
        if (LOWORD(wParam) == WA_INACTIVE)
        {
            m_focus = GetFocus();
        }
        return DefWindowProcW(m_window, message, wParam, lParam);
    case WM_SETFOCUS:
        SetFocus(IsChild(m_window, m_focus) && IsWindowEnabled(m_focus) ? m_focus : (*m_controls)[IDC_PICTURES]);
        return 0;
    case WM_COMMAND:
        if (HIWORD(wParam) <= 1) // of a button, or an accelerator's
        {
            Guarded([&] { OnCommand(LOWORD(wParam)); });
        }
        return 0;
    case WM_NOTIFY:
        Guarded([&] { result = OnNotify(*reinterpret_cast<NMHDR *>(lParam)); });
        return result;
    case WM_DROPFILES:
        Guarded([&] { OnDrop(reinterpret_cast<HDROP>(wParam)); });
        return 0;
    case ThumbnailMessage:
        m_pictures->ShowThumbnails();
        return 0;
    case LogMessage:
        m_log->Show();
        if (m_run)
        {
            m_pictures->MarkEnds(m_use->Record());
        }
        return 0;
    case RunEndMessage:
        Guarded([&] { OnRunEnd(static_cast<HRESULT>(wParam)); });
        return 0;
    case ConfigureMessage:
        Guarded([&] { Configure(); });
        return 0;
    case WM_CLOSE:
        if (OnClose())
        {
            DestroyWindow(m_window);
        }
        return 0;
    case WM_QUERYENDSESSION:
        return m_phase == RunPhase::Idle;
    case WM_DESTROY:
        OnDestroy();
        return 0;
    default:
        return DefWindowProcW(m_window, message, wParam, lParam);
    }
}

void HostWindow::OnCreate()
{
    m_controls.emplace(m_window);
    m_log.emplace((*m_controls)[IDC_LOG], LogMessage);
    m_pictures.emplace((*m_controls)[IDC_PICTURES], m_controls->Scaled(128), ThumbnailMessage);
    const RECT usual = m_controls->UsualPlace();
    SetWindowPos(m_window, nullptr, usual.left, usual.top, usual.right - usual.left, usual.bottom - usual.top,
                 SWP_NOZORDER);
    for (const std::string &notice : m_store.Notices())
    {
        m_log->Append(LOG_LEVEL_WARNING, notice);
    }
    try
    {
        m_journal = std::make_unique<Journal>(m_profile);
    }
    catch (const ProfileError &error)
    {
        m_log->Append(LOG_LEVEL_WARNING, error.what() + std::string(" What is published isn't remembered."));
    }
    TellJournalNotices();
    FindPlugin();
    Guarded([&] { BeginUse({}); });
    ShowPlugin();
    ShowHint();
}

void HostWindow::OnCommand(int id)
{
    const HostCommands commands = CommandsIn(State());
    switch (id)
    {
    case IDC_ADD:
        if (commands.canAdd)
        {
            AddPictures(AskForPictures(m_window));
        }
        break;
    case IDC_REMOVE:
        if (commands.canRemove)
        {
            m_pictures->RemoveSelected();
            UpdateCommands();
            ShowHint();
        }
        break;
    case ID_SELECT_ALL:
        GetFocus() == (*m_controls)[IDC_LOG] ? m_log->SelectAll() : m_pictures->SelectAll();
        break;
    case ID_COPY_LOG:
        CopyToClipboard(m_window, m_log->SelectedText());
        break;
    case IDC_PUBLISH:
        if (commands.canPublish)
        {
            BeginRun();
        }
        else if (commands.mustAuthorize)
        {
            m_verb = L"authorize";
            Configure();
        }
        break;
    case IDC_CANCEL:
        if (commands.canCancel)
        {
            CancelRun();
        }
        break;
    case IDC_DETAILS:
        m_log->ShowDetails(IsDlgButtonChecked(m_window, IDC_DETAILS) == BST_CHECKED);
        break;
    default:
        break;
    }
}

LRESULT HostWindow::OnNotify(NMHDR &header)
{
    switch (header.idFrom)
    {
    case IDC_STATE:
        if (header.code == NM_CLICK || header.code == NM_RETURN)
        {
            // Posted, since the command changes the text, which the control doesn't expect during its notification.
            m_verb = reinterpret_cast<const NMLINK &>(header).item.szID;
            PostMessageW(m_window, ConfigureMessage, 0, 0);
        }
        return 0;
    case IDC_PICTURES:
        if (header.code == LVN_ITEMCHANGED && m_pictures)
        {
            UpdateCommands();
        }
        else if (header.code == LVN_KEYDOWN && reinterpret_cast<const NMLVKEYDOWN &>(header).wVKey == VK_DELETE)
        {
            OnCommand(IDC_REMOVE);
        }
        else if (header.code == NM_CUSTOMDRAW && m_pictures && m_pictures->Count() == 0)
        {
            auto &drawing = reinterpret_cast<NMLVCUSTOMDRAW &>(header);
            if (drawing.nmcd.dwDrawStage == CDDS_POSTPAINT)
            {
                m_pictures->DrawHint(drawing, ResourceText(IDS_DROP_HERE));
            }
            return drawing.nmcd.dwDrawStage == CDDS_PREPAINT ? CDRF_NOTIFYPOSTPAINT : CDRF_DODEFAULT;
        }
        return 0;
    case IDC_LOG:
        if (header.code == LVN_KEYDOWN && reinterpret_cast<const NMLVKEYDOWN &>(header).wVKey == 'C' &&
            GetKeyState(VK_CONTROL) < 0)
        {
            OnCommand(ID_COPY_LOG);
        }
        return header.code == NM_CUSTOMDRAW && m_log ? m_log->Draw(reinterpret_cast<NMLVCUSTOMDRAW &>(header)) : 0;
    default:
        return 0;
    }
}

void HostWindow::OnDrop(HDROP handle)
{
    const Drop drop(handle);
    std::vector<std::filesystem::path> paths;
    const UINT count = DragQueryFileW(drop.handle, 0xFFFFFFFF, nullptr, 0);
    for (UINT i = 0; i < count; ++i)
    {
        std::wstring path(DragQueryFileW(drop.handle, i, nullptr, 0) + 1, L'\0');
        path.resize(DragQueryFileW(drop.handle, i, path.data(), static_cast<UINT>(path.size())));
        paths.emplace_back(path);
    }
    if (CommandsIn(State()).canAdd)
    {
        AddPictures(paths);
    }
    else
    {
        Tell(LOG_LEVEL_WARNING, IDS_NOT_NOW);
    }
}

void HostWindow::AddPictures(const std::vector<std::filesystem::path> &paths)
{
    if (paths.empty())
    {
        return;
    }
    // A large folder takes its time; the cursor changes back with the next move.
    SetCursor(LoadCursorW(nullptr, IDC_WAIT));
    const ItemCollection collection = CollectItems(paths, true);
    TellOfOtherFiles(collection, [&](int level, const std::string &text) { m_log->Append(level, text); });
    m_pictures->Add(collection.items);
    MarkPublishedBefore();
    UpdateCommands();
    ShowHint();
}

// A run isn't cut short: the window closes when it has ended.
bool HostWindow::OnClose()
{
    if (m_isConfiguring)
    {
        return false;
    }
    if (m_phase == RunPhase::Idle)
    {
        return true;
    }
    if (Asks(IDS_CLOSE_QUESTION))
    {
        if (m_phase == RunPhase::Idle) // it ended while the question stood
        {
            return true;
        }
        m_closesAfterRun = true;
        m_phase = RunPhase::Stopping;
        m_use->Cancel(true);
        UpdateCommands();
    }
    return false;
}

bool HostWindow::Asks(unsigned question, const std::wstring &number) const
{
    return MessageBoxW(m_window, ResourceText(question, number).c_str(), ResourceText(IDS_TITLE).c_str(),
                       MB_YESNO | MB_ICONQUESTION) == IDYES;
}

void HostWindow::OnDestroy()
{
    EndUse(Storing::UnlessNewer);
    m_pictures.reset();
    PostQuitMessage(0);
}

HostState HostWindow::State() const
{
    HostState state;
    state.hasPlugin = m_use != nullptr;
    state.isAuthorized = m_isAuthorized;
    state.pictures = m_pictures->Count();
    state.selected = m_pictures->SelectedCount();
    state.waiting = m_pictures->WaitingCount();
    state.phase = m_phase;
    return state;
}

void HostWindow::UpdateCommands()
{
    const HostCommands commands = CommandsIn(State());
    m_controls->Enable(IDC_ADD, commands.canAdd && !m_isConfiguring);
    m_controls->Enable(IDC_REMOVE, commands.canRemove && !m_isConfiguring);
    m_controls->SetText(IDC_PUBLISH, ResourceText(commands.mustAuthorize ? IDS_AUTHORIZE : IDS_PUBLISH));
    m_controls->Enable(IDC_PUBLISH, (commands.canPublish || commands.mustAuthorize) && !m_isConfiguring);
    m_controls->Enable(IDC_STATE, commands.canConfigure && !m_isConfiguring);
    m_controls->SetText(IDC_CANCEL, ResourceText(commands.isCancelAbrupt ? IDS_STOP_NOW : IDS_CANCEL));
    m_controls->Enable(IDC_CANCEL, commands.canCancel);
}

void HostWindow::ShowHint()
{
    const HostState state = State();
    if (state.phase == RunPhase::Idle)
    {
        m_controls->SetText(IDC_STATUS, ResourceText(HintIn(state), std::to_wstring(state.waiting)));
    }
}

void HostWindow::Tell(int level, unsigned text)
{
    if (m_log)
    {
        m_log->Append(level, Utf8FromText(ResourceText(text)));
    }
}

void HostWindow::Tell(int level, unsigned text, HRESULT code)
{
    if (m_log)
    {
        m_log->Append(level, Utf8FromText(ResourceText(text, WideOf(SystemWords(code)))));
    }
}
