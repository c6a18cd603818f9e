// The commands that are the plug-in's own: its state line, and the verbs that a click on a link of that
// line calls in a host with windows.
#include "host/Commands.h"

#include "host/InitData.h"
#include "host/InstalledModules_posix.h"
#include "host/LinkText.h"
#include "host/PluginSession.h"
#include "host/PublishingHost.h"
#include "com/SafeText.h"
#include "host/SettingsKey_posix.h"
#include "host/SystemWords.h"
#include "host/Terminal_posix.h"
#include "host/TextEncodings.h"
#include "host/PluginSettings.h"

#include "com/BstrOwner.h"
#include "com/Hresult.h"

#include <algorithm>

namespace
{
// The window that the plug-in's dialogs belong to. In a terminal nothing of it is seen.
class ParentWindow
{
public:
    ParentWindow()
        : m_window(CreateWindowExW(0, TEXT("Static"), TEXT("Halvora"), 0, 0, 0, 0, 0, nullptr, nullptr, nullptr,
                                   nullptr))
    {
        if (m_window == nullptr)
        {
            ThrowHresult(HRESULT_FROM_WIN32(GetLastError()));
        }
    }
    ~ParentWindow() { DestroyWindow(m_window); }
    ParentWindow(const ParentWindow &) = delete;
    ParentWindow &operator=(const ParentWindow &) = delete;

    HWND Get() const { return m_window; }

private:
    HWND m_window;
};

// The plug-in with the profile's account, in a host that has no pictures.
class OpenedPlugin
{
public:
    explicit OpenedPlugin(const Profile &profile)
        : m_store(profile),
          m_before(LoadAccount()),
          m_record(ItemCollection()),
          m_host(PublishingHost::Make(m_record, [](int, const std::string &, const std::string &) {})),
          m_session(static_cast<IHalvoraPublishingHost *>(m_host.Get()), m_store)
    {
        for (const std::string &notice : m_store.Notices())
        {
            Complain(notice);
        }
    }

    IHalvoraPublishingPlugin &Get() const { return *m_session.Plugin(); }

    const AccountData &Before() const { return m_before; }
    AccountData Now() const { return ParseInitData(m_store.Content()).value_or(AccountData()); }

    // Calls Configure without parameters, stores what the verb did to the account, and returns its result.
    HRESULT Run(WideText verb)
    {
        HRESULT result;
        {
            const ParentWindow parent;
            WideText noParameters;
            result = Get().Configure(parent.Get(), verb.data(), noParameters.data());
        }
        m_session.Finish(StoringAfter(verb, result));
        return result;
    }

    void Store() { m_session.Finish(); }

private:
    AccountData LoadAccount()
    {
        m_store.Load();
        for (const std::string &problem : UseInstalledModules(ModuleFolders()))
        {
            Complain(problem);
        }
        return Now();
    }

    InitDataStore m_store;
    AccountData m_before;
    RunRecord m_record;
    ComPtr<PublishingHost> m_host;
    PluginSession m_session;
};

std::string NameOf(const AccountData &account)
{
    for (const auto &name : {account.fullName, account.userName})
    {
        if (name && !name->empty())
        {
            return " of " + OneSafeLine(Utf8FromText(*name));
        }
    }
    return "";
}

// The outcome, and what to do next. The plug-in has shown its own words of a failure before.
ExitCode TellOutcome(HRESULT result, const AccountData &before, const AccountData &after)
{
    if (result == S_FALSE)
    {
        WriteOut("Cancelled; the account stays as it was.\n");
        return ExitCode::Cancelled;
    }
    if (SUCCEEDED(result))
    {
        WriteOut("Halvora may now publish on the Flickr account" + NameOf(after) + ".\n");
        return ExitCode::Success;
    }
    if (after.IsAuthorized() && after.token != before.token)
    {
        Complain("The authorization is stored, but Flickr sent no account data. If publishing is "
                 "refused, call again: halvora authorize");
        return ExitCode::SomeFailed;
    }
    const bool isLost = before.IsAuthorized() && !after.IsAuthorized();
    Complain("Halvora could not be authorized: " + SystemWords(result) +
             (isLost ? " The earlier authorization is gone; to publish, call again: halvora authorize"
                     : " To try again: halvora authorize"));
    return ExitCode::SomeFailed;
}

void TellTextsNoLongerSent(const TextSwitches &before)
{
    for (const TextSwitches::Text &text : TextSwitches().NoLongerSentSince(before))
    {
        Complain(std::string("From now on, ") + text.words +
                 " are no longer sent. To send them: halvora settings " + Utf8FromText(text.setting) + "=1");
    }
}

void TellSizeWarnings()
{
    for (const std::string &warning : SizeWarnings())
    {
        Complain(warning);
    }
}
} // namespace

ExitCode RunStatusCommand(const Profile &profile)
{
    OpenedPlugin plugin(profile);
    BstrOwner line;
    ThrowIfFailed(plugin.Get().GetDisplayState(line.Put()));
    WriteOut(OneSafeLine(LinksAsText(Utf8FromText(line.View()))) + "\n");
    TellSizeWarnings();
    return ExitCode::Success;
}

ExitCode RunAuthorizeCommand(const Profile &profile)
{
    if (!HasTerminal())
    {
        Complain("authorize asks its questions in a terminal, and there is none here. Run it in one, or store an "
                 "access token with: halvora account --set-token -");
        return ExitCode::SomeFailed;
    }
    OpenedPlugin plugin(profile);
    const HRESULT result = plugin.Run(TEXT("authorize"));
    return TellOutcome(result, plugin.Before(), plugin.Now());
}

ExitCode AskAboutAccount(const Profile &profile)
{
    OpenedPlugin plugin(profile);
    HRESULT result;
    {
        const ParentWindow parent;
        result = plugin.Get().CanPublish(parent.Get(), TRUE);
    }
    plugin.Store();
    if (result == S_OK)
    {
        WriteOut("Flickr accepts the access token.\n");
        return ExitCode::Success;
    }
    // The plug-in doesn't tell which.
    Complain(
        "Flickr did not confirm the access token: it rejects it, can't be reached, or takes no more uploads this "
        "month. To try again: halvora account --refresh");
    return ExitCode::SomeFailed;
}

ExitCode RunSheetCommand(const Profile &profile)
{
    OpenedPlugin plugin(profile);
    const TextSwitches before;
    const HRESULT result = plugin.Run(TEXT("settings"));
    if (FAILED(result))
    {
        Complain("The settings could not be shown: " + SystemWords(result));
        return ExitCode::SomeFailed;
    }
    if (result == S_FALSE)
    {
        WriteOut("The authorization is forgotten here; Flickr's account page still lists it and can withdraw it. "
                 "To publish again: halvora authorize\n");
    }
    TellTextsNoLongerSent(before);
    TellSizeWarnings();
    return ExitCode::Success;
}
