#include "host/Commands.h"

#include "host/FileList.h"
#include "host/FileNames.h"
#include "host/InitData.h"
#include "host/InstalledModules_posix.h"
#include "host/PlannedRun.h"
#include "host/PluginSession.h"
#include "host/PublishRun.h"
#include "host/PublishingHost.h"
#include "host/RunCourse.h"
#include "host/RunJournal.h"
#include "host/SettingsKey_posix.h"
#include "host/SystemWords.h"
#include "host/Terminal_posix.h"

#include "platform/http/EnvironmentProxy.h"

#include <algorithm>
#include <cstdlib>

namespace
{
// Lines of --porcelain have standard output to themselves.
DisplayOptions OptionsFor(const CommandLine &line)
{
    DisplayOptions options = DetectDisplay();
    options.live = options.live && !line.porcelain;
    options.lowestLevel = line.verbose ? 0 : line.quiet ? 2 : 1;
    return options;
}

// Stores what the run changed in the account. A failure is only a warning: the pictures are published.
void KeepAccount(PluginSession &session, LiveDisplay &display)
{
    try
    {
        if (session.Finish() == StoreOutcome::KeptNewer)
        {
            display.Log(2, "Another halvora stored other account data meanwhile; those were kept.");
        }
    }
    catch (const ProfileError &error)
    {
        display.Log(2, error.what());
    }
    catch (const HresultError &error)
    {
        display.Log(2, "The account data could not be taken from the plug-in: " + SystemWords(error.Code()));
    }
}

// What a run needs besides its pictures.
struct RunTools
{
    const CommandLine &line;
    const JournalAccount &account;
    Journal *journal;
    InitDataStore &store;
    LiveDisplay &display;
    SignalWatch &signals;
};

// Tells what became of an item that is over.
void Report(const RunTools &tools, const RunRecord &record, size_t item)
{
    const ItemEnd end = record.EndOf(item);
    const ServiceIds ids = record.IdsOf(item);
    const std::filesystem::path file = record.Items()[item].TypedFile();
    if (tools.line.porcelain)
    {
        WriteOut(PorcelainLine(PorcelainWord(end), file, ids.photo.empty() ? ids.ticket : ids.photo,
                               record.ReasonOf(item, SystemWordsOrNone), tools.line.endsWithZero ? '\0' : '\n'));
    }
    if (!ids.photo.empty())
    {
        tools.display.Log(0, ShownPath(file) + " is now " +
                                 JournalEntry{.photosUrl = tools.account.photosUrl, .photo = ids.photo}.Page());
    }
    else if (!ids.ticket.empty())
    {
        tools.display.Log(0, ShownPath(file) + " is handed in, with the ticket " + ids.ticket);
    }
}

// Runs the plug-in until every item has been tried, or nothing more is to be had.
RunEnd RunToTheEnd(PluginSession &session, PublishingHost &host, RunRecord &record, const RunTools &tools,
                   CancellablePause &servicePause)
{
    GrowingPause pause;
    for (;;)
    {
        RunEnd end =
            RunPublication(*session.Plugin(), host, tools.display, tools.signals, [&] { servicePause.Cancel(); });
        record.RunEnds();
        const NextRun next =
            end.cancelled || FAILED(end.result) ? NextRun::None : NextRunAfter(record, tools.line.keepTrying);
        if (next == NextRun::None)
        {
            return end;
        }
        if (next == NextRun::AfterPause)
        {
            const size_t item = *record.LastTried();
            record.TryAgain(item);
            end.cancelled = !WaitBetweenRuns(pause.Next(item), tools.display, tools.signals);
            if (end.cancelled)
            {
                return end;
            }
        }
    }
}

RunEnd Publish(RunRecord &record, const RunTools &tools)
{
    const auto host =
        PublishingHost::Make(record, [&](int level, const std::string &, const std::string &message) {
            tools.display.Log(level, record.AsTyped(message));
        });
    const size_t told = tools.store.Notices().size();
    PluginSession session(static_cast<IHalvoraPublishingHost *>(host.Get()), tools.store);
    for (size_t i = told; i < tools.store.Notices().size(); ++i)
    {
        tools.display.Log(2, tools.store.Notices()[i]);
    }
    RunJournal journal(tools.journal, tools.account, record,
                       [&](const std::string &words) { tools.display.Log(2, words); });
    host->NoteFilesBy([&](size_t item, const std::filesystem::path &file) { journal.FileBegins(item, file); });
    record.WatchBy([&](size_t item, bool isOver) {
        journal.ItemChanged(item, isOver);
        const bool isTriedAgain = tools.line.keepTrying && SaysNoConnection(record.LastErrorOf(item));
        if (isOver && !isTriedAgain)
        {
            Report(tools, record, item);
        }
    });
    host->StopBy(tools.line.keepTrying ? 1 : MostFailuresToConnect, [&] { session.Plugin()->Cancel(FALSE); });
    CancellablePause servicePause;
    host->PauseBy([&](std::chrono::seconds pause) {
        tools.display.Log(1, "Flickr asks for a pause: going on in " + std::to_string(pause.count()) +
                                 " seconds. Ctrl-C cancels.");
        servicePause.Wait(pause);
    });
    const RunEnd end = RunToTheEnd(session, *host.Get(), record, tools, servicePause);
    host->RunEnds();
    journal.RunEnds();
    record.WatchBy(nullptr);
    KeepAccount(session, tools.display);
    if (FAILED(end.result))
    {
        record.NoteEntry(4, "The run could not start: " + SystemWords(end.result));
    }
    return end;
}

// Whether the settings let anything be published; says what doesn't.
bool ChecksSettings(const CommandLine &line, LiveDisplay &display)
{
    for (const std::string &problem : UseInstalledModules(ModuleFolders()))
    {
        display.Log(2, problem);
    }
    for (const std::string &warning : SizeWarnings())
    {
        display.Log(2, warning);
    }
    const auto reason = TooSmallSize();
    if (reason && !line.allowSmall)
    {
        Complain(*reason);
        return false;
    }
    return true;
}

ConnectionSettings OfThisProcess()
{
    const ProxyChoice proxy = EnvironmentProxy("https:");
    const char *const trustFile = std::getenv("HALVORA_CA_FILE");
    return {ShownProxy(proxy.server), proxy.variable, trustFile != nullptr ? trustFile : ""};
}

ExitCode RunPlan(PlannedRun plan, const CommandLine &line, InitDataStore &store, LiveDisplay &display)
{
    SignalWatch signals;
    RunRecord record(std::move(plan.pictures));
    const RunTools tools = {line, plan.account, plan.journal.get(), store, display, signals};
    const RunEnd end = record.Items().empty() ? RunEnd{S_OK, false} : Publish(record, tools);
    for (const std::string &notice : plan.journal ? plan.journal->TakeNotices() : std::vector<std::string>())
    {
        display.Log(2, notice);
    }
    const std::vector<size_t> notTried = record.NotTried();
    for (const size_t item : notTried)
    {
        Report(tools, record, item);
    }
    const RunSummary summary = record.Summarize(end.cancelled, SystemWordsOrNone, OfThisProcess());
    display.Print(summary.text, summary.exitCode != ExitCode::Success);
    if (!notTried.empty() && plan.journal)
    {
        display.Print(line.again ? "--porcelain lists the rest for --files-from.\n"
                                 : "The same command publishes the rest: what is published is left out.\n",
                      true);
    }
    return summary.exitCode;
}
} // namespace

ExitCode RunPublishCommand(const CommandLine &line, const Profile &profile)
{
    std::vector<std::string> faults;
    const std::vector<SettingAssignment> changes = ParseSettingAssignments(line.assignments, faults);
    // Until a run begins no thread is made, and Ctrl-C ends the process.
    LiveDisplay display(OptionsFor(line), line.porcelain ? WriteFaults : WriteOut, WriteFaults);
    ItemCollection pictures = CollectNamed(line, faults, display);
    if (!faults.empty())
    {
        std::ranges::for_each(faults, Complain);
        return ExitCode::Usage;
    }
    std::optional<SettingsForOneRun> settings;
    if (!changes.empty())
    {
        settings.emplace(changes);
    }
    InitDataStore store(profile);
    store.Load();
    for (const std::string &notice : store.Notices())
    {
        display.Log(2, notice);
    }
    TellOfOtherFiles(pictures, [&](int level, const std::string &text) { display.Log(level, text); });
    const auto account = ParseInitData(store.Content());
    if (!account || !account->IsAuthorized())
    {
        Complain("No Flickr account yet. Give Halvora your permission with: halvora authorize");
        return ExitCode::SomeFailed;
    }
    if (!ChecksSettings(line, display))
    {
        return ExitCode::SomeFailed;
    }
    PlannedRun plan = PlanRun(std::move(pictures), line, profile, *account, display);
    ReportLeftOut(plan.pictures, line);
    return line.dryRun ? RunDry(plan, line, display) : RunPlan(std::move(plan), line, store, display);
}
