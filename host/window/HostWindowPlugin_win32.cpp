// How the window uses the plug-in: between runs, in its dialogs, and in a run.
#include "host/window/HostWindow_win32.h"

#include "host/PluginSettings.h"
#include "host/PublishedBefore.h"
#include "host/RunCourse.h"
#include "host/SystemWords.h"
#include "host/window/WindowText_win32.h"
#include "host/window/resource.h"

#include "com/BstrOwner.h"
#include "com/ComPtr.h"
#include "com/Hresult.h"

#include <comcat.h>

#include <algorithm>

namespace
{
constexpr CATID PublishingPlugins = {0x5EE4545B, 0x143B, 0x4F11, {0xB9, 0xB3, 0xF9, 0x19, 0x65, 0x3E, 0xB6, 0x2F}};

// The registered classes of the category of publishing plug-ins, in the system's order. An empty list also
// if the system can't say.
std::vector<CLSID> RegisteredPlugins()
{
    std::vector<CLSID> classes;
    ComPtr<ICatInformation> categories;
    ComPtr<IEnumCLSID> found;
    CATID wanted = PublishingPlugins;
    if (FAILED(CoCreateInstance(CLSID_StdComponentCategoriesMgr, nullptr, CLSCTX_INPROC_SERVER,
                                __uuidof(ICatInformation), categories.PutVoid())) ||
        FAILED(categories->EnumClassesOfCategories(1, &wanted, 0, nullptr, found.Put())))
    {
        return classes;
    }
    CLSID one;
    ULONG count = 0;
    while (found->Next(1, &one, &count) == S_OK && count == 1)
    {
        classes.push_back(one);
    }
    return classes;
}

template <class Getter>
std::wstring TextFrom(Getter get)
{
    BstrOwner text;
    return SUCCEEDED(get(text.Put())) && text.Get() != nullptr ? std::wstring(text.Get()) : std::wstring();
}
} // namespace

// Takes the first one that is registered: the window shows one plug-in.
void HostWindow::FindPlugin()
{
    const std::vector<CLSID> plugins = RegisteredPlugins();
    if (!plugins.empty())
    {
        m_plugin = plugins.front();
    }
    if (const HRESULT made = MakeSettingsKey(); FAILED(made))
    {
        Tell(LOG_LEVEL_WARNING, IDS_VERB_FAILED, made);
    }
}

void HostWindow::BeginUse(ItemCollection pictures)
{
    if (m_plugin)
    {
        m_use = std::make_unique<PluginUse>(
            *m_plugin, m_store, std::move(pictures), m_journal.get(),
            [this](int level, const std::string &, const std::string &text) { m_log->Append(level, text); });
    }
}

void HostWindow::EndUse(Storing storing)
{
    const std::unique_ptr<PluginUse> use = std::move(m_use);
    try
    {
        if (use && use->Finish(storing) == StoreOutcome::KeptNewer)
        {
            Tell(LOG_LEVEL_WARNING, IDS_KEPT_NEWER);
        }
    }
    catch (const ProfileError &error)
    {
        m_log->Append(LOG_LEVEL_WARNING, error.what());
    }
    catch (const HresultError &error)
    {
        Tell(LOG_LEVEL_WARNING, IDS_NOT_STORED, error.Code());
    }
}

// Shows the plug-in's icon, name, version and state line as they are now.
void HostWindow::ShowPlugin()
{
    // Links in a text that is set while the control is disabled stay disabled.
    m_controls->Enable(IDC_STATE, true);
    if (!m_use)
    {
        m_controls->SetText(IDC_PLUGIN_NAME, ResourceText(IDS_NO_PLUGIN));
        m_controls->SetText(IDC_STATE, ResourceText(IDS_NO_PLUGIN_LINE));
        m_isAuthorized = false;
    }
    else
    {
        IHalvoraPublishingPlugin &plugin = m_use->Plugin();
        HICON icon = nullptr;
        if (SUCCEEDED(plugin.GetIcon(&icon)))
        {
            SendMessageW((*m_controls)[IDC_PLUGIN_ICON], STM_SETICON, reinterpret_cast<WPARAM>(icon), 0);
        }
        const auto text = [&](auto get) { return TextFrom([&](BSTR *out) { return (plugin.*get)(out); }); };
        m_controls->SetText(IDC_PLUGIN_NAME, text(&IHalvoraPublishingPlugin::GetDisplayName));
        m_controls->SetText(IDC_PLUGIN_VERSION, text(&IHalvoraPublishingPlugin::GetVersionInformation));
        m_controls->SetText(IDC_STATE, text(&IHalvoraPublishingPlugin::GetDisplayState));
        m_isAuthorized = plugin.CanPublish(m_window, FALSE) == S_OK;
    }
    UpdateCommands();
    m_controls->LayOut();
}

// Runs the verb of the link that was clicked. The plug-in shows dialogs, so this may take long.
void HostWindow::Configure()
{
    if (!CommandsIn(State()).canConfigure || m_isConfiguring)
    {
        return;
    }
    std::wstring verb = m_verb, parameters;
    m_isConfiguring = true;
    UpdateCommands();
    const TextSwitches before;
    const HRESULT result = m_use->Plugin().Configure(m_window, verb.data(), parameters.data());
    m_isConfiguring = false;
    EndUse(StoringAfter(verb, result));
    Guarded([&] { BeginUse({}); });
    TellOutcome(verb, result);
    for (const TextSwitches::Text &text : TextSwitches().NoLongerSentSince(before))
    {
        m_log->Append(LOG_LEVEL_WARNING, std::string("From now on, ") + text.words +
                                             " are no longer sent. To send them, switch them on in the settings.");
    }
    ShowPlugin();
    ShowHint();
}

void HostWindow::TellOutcome(const std::wstring &verb, HRESULT result)
{
    if (lstrcmpiW(verb.c_str(), L"authorize") == 0)
    {
        if (FAILED(result))
        {
            Tell(LOG_LEVEL_ERROR, IDS_AUTHORIZATION_FAILED, result);
        }
        else if (result == S_OK)
        {
            Tell(LOG_LEVEL_INFO, IDS_AUTHORIZED);
        }
    }
    else if (FAILED(result))
    {
        Tell(LOG_LEVEL_ERROR, IDS_VERB_FAILED, result);
    }
    else if (result == S_FALSE)
    {
        Tell(LOG_LEVEL_INFO, IDS_REVOKED);
    }
}

void HostWindow::TellJournalNotices()
{
    for (const std::string &notice : m_journal ? m_journal->TakeNotices() : std::vector<std::string>())
    {
        m_log->Append(LOG_LEVEL_WARNING, notice);
    }
}

void HostWindow::MarkPublishedBefore()
{
    if (!m_journal)
    {
        return;
    }
    const auto account = JournalAccount::Of(ParseInitData(m_store.Content()).value_or(AccountData()));
    m_journal->Recognize(account);
    m_pictures->MarkKnown([&](const PictureItem &item) -> std::optional<ItemEnd> {
        const auto entry = FindPublished({item}, *m_journal, account, [] { return true; })[0];
        if (!entry)
        {
            return std::nullopt;
        }
        return entry->outcome == JournalOutcome::Unknown ? ItemEnd::Unknown : ItemEnd::Published;
    });
}

void HostWindow::BeginRun()
{
    MarkPublishedBefore();
    const size_t unknown = m_pictures->CountOf(ItemEnd::Unknown);
    const bool sendsUnknown = unknown != 0 && Asks(IDS_UNKNOWN_QUESTION, std::to_wstring(unknown));
    const bool again = unknown == 0 && m_pictures->WaitingCount() == 0 && Asks(IDS_AGAIN_QUESTION);
    ItemCollection pictures;
    pictures.items = m_pictures->BeginRun([&](ItemEnd end) {
        return again || end == ItemEnd::NotTried || end == ItemEnd::Failed ||
               (sendsUnknown && end == ItemEnd::Unknown);
    });
    if (pictures.items.empty())
    {
        ShowHint();
        return;
    }
    EndUse(Storing::UnlessNewer);
    Guarded([&] { BeginUse(std::move(pictures)); });
    if (!m_use)
    {
        ShowPlugin();
        return;
    }
    StartThread();
    m_phase = RunPhase::Running;
    ShutdownBlockReasonCreate(m_window, ResourceText(IDS_PUBLISHING).c_str());
    UpdateCommands();
}

void HostWindow::StartThread()
{
    m_run = std::make_unique<RunThread>(*m_use, (*m_controls)[IDC_PROGRESS], (*m_controls)[IDC_STATUS], m_window,
                                        RunEndMessage);
}

void HostWindow::CancelRun()
{
    m_use->Cancel(CommandsIn(State()).isCancelAbrupt);
    m_phase = AfterCancel(m_phase);
    if (m_phase == RunPhase::Finishing)
    {
        Tell(LOG_LEVEL_INFO, IDS_FINISHING);
    }
    UpdateCommands();
}

void HostWindow::OnRunEnd(HRESULT result)
{
    m_run.reset();
    if (m_phase == RunPhase::Running && SUCCEEDED(result))
    {
        m_use->Record().RunEnds();
        if (NextRunAfter(m_use->Record(), false) == NextRun::Rest)
        {
            StartThread();
            return;
        }
    }
    ShutdownBlockReasonDestroy(m_window);
    const bool wasCancelled = m_phase != RunPhase::Running;
    m_phase = RunPhase::Idle;
    if (FAILED(result))
    {
        Tell(LOG_LEVEL_FATAL, IDS_NOT_STARTED, result);
    }
    m_use->RunEnds();
    TellJournalNotices();
    m_pictures->MarkEnds(m_use->Record());
    const std::string summary = m_use->Record().Summarize(wasCancelled, SystemWordsOrNone).text;
    for (size_t begin = 0; begin < summary.size();)
    {
        const size_t end = std::min(summary.find('\n', begin), summary.size());
        m_log->Append(LOG_LEVEL_INFO, summary.substr(begin, end - begin));
        begin = end + 1;
    }
    EndUse(Storing::UnlessNewer);
    Guarded([&] { BeginUse({}); });
    ShowPlugin();
    if (m_closesAfterRun)
    {
        DestroyWindow(m_window);
    }
}
