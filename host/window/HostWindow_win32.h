// The window of the host: a list of pictures, the plug-in that publishes them, and the log.
#pragma once

#include "host/Journal.h"
#include "host/Profile.h"
#include "host/window/HostCommands.h"
#include "host/window/HostControls_win32.h"
#include "host/window/LogView_win32.h"
#include "host/window/PictureList_win32.h"
#include "host/window/PluginUse_win32.h"

#include <windows.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class HostWindow
{
public:
    // Makes the window, not yet shown. The account is read from and kept in the profile. Throws
    // ProfileError, or the HRESULT of a window that can't be made.
    explicit HostWindow(const Profile &profile);
    ~HostWindow();
    HostWindow(const HostWindow &) = delete;
    HostWindow &operator=(const HostWindow &) = delete;

    HWND Get() const { return m_window; }

    // Takes folders with everything in them. Files that can't be published are named in the log.
    void AddPictures(const std::vector<std::filesystem::path> &paths);

private:
    static constexpr UINT RunEndMessage = WM_APP + 3;

    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam);
    void Guarded(const std::function<void()> &act);
    void OnCreate();
    void OnCommand(int id);
    LRESULT OnNotify(NMHDR &header);
    void OnDrop(HDROP drop);
    bool OnClose();
    void OnDestroy();

    void FindPlugin();
    void ShowPlugin();
    void BeginUse(ItemCollection pictures);
    void EndUse(Storing storing);
    void Configure();
    void TellOutcome(const std::wstring &verb, HRESULT result);

    void TellJournalNotices();
    // Marks the pictures that the journal knows.
    void MarkPublishedBefore();
    bool Asks(unsigned question, const std::wstring &number = {}) const;
    void BeginRun();
    void StartThread();
    void CancelRun();
    void OnRunEnd(HRESULT result);

    HostState State() const;
    void UpdateCommands();
    void ShowHint();
    void Tell(int level, unsigned text);
    void Tell(int level, unsigned text, HRESULT code);

    const Profile m_profile;
    InitDataStore m_store{m_profile};
    std::unique_ptr<Journal> m_journal; // null if it can't be used
    HWND m_window = nullptr;
    HWND m_focus = nullptr; // the control that had it when the window was left
    std::optional<HostControls> m_controls;
    std::optional<LogView> m_log;
    std::optional<PictureList> m_pictures;
    std::optional<CLSID> m_plugin;
    std::unique_ptr<PluginUse> m_use; // between runs, or the run's
    std::unique_ptr<RunThread> m_run;
    RunPhase m_phase = RunPhase::Idle;
    std::wstring m_verb; // of the link that was followed last
    bool m_isAuthorized = false;
    bool m_isConfiguring = false;
    bool m_closesAfterRun = false;
};
