#include "host/Commands.h"

#include "host/FileNames.h"
#include "host/InitData.h"
#include "host/InstalledModules_posix.h"
#include "host/PluginSession.h"
#include "host/PublishingHost.h"
#include "host/PublishRun.h"
#include "host/SettingsKey_posix.h"
#include "host/SystemWords.h"
#include "host/Terminal_posix.h"

#include <atomic>
#include <thread>

namespace
{
DisplayOptions OptionsFor(const CommandLine &line)
{
    DisplayOptions options = DetectDisplay();
    options.lowestLevel = line.verbose ? 0 : line.quiet ? 2 : 1;
    return options;
}

void TellWhatIsKnown(const ItemCollection &collection, LiveDisplay &display)
{
    for (const RefusedFile &refused : collection.refused)
    {
        display.Log(3, ShownPath(refused.path) + " " + refused.reason + ".");
    }
    for (const auto &folder : collection.empty)
    {
        display.Log(2, ShownPath(folder) + " contains no pictures (hidden files are skipped).");
    }
    for (const auto &path : collection.passedOver)
    {
        display.Log(1, ShownPath(path) + " belongs to a picture and isn't published by itself.");
    }
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

bool MayPublish(InitDataStore &store)
{
    const auto account = ParseInitData(store.Content());
    if (account && account->IsAuthorized())
    {
        return true;
    }
    Complain("No Flickr account yet. Give Halvora your permission with: halvora authorize");
    return false;
}

RunEnd Publish(RunRecord &record, InitDataStore &store, LiveDisplay &display, SignalWatch &signals)
{
    const auto host =
        PublishingHost::Make(record, [&](int level, const std::string &, const std::string &message) {
            display.Log(level, record.AsTyped(message));
        });
    const size_t told = store.Notices().size();
    PluginSession session(static_cast<IHalvoraPublishingHost *>(host.Get()), store);
    for (size_t i = told; i < store.Notices().size(); ++i)
    {
        display.Log(2, store.Notices()[i]);
    }
    std::atomic<bool> isCancelled = false;
    host->PauseBy([&](std::chrono::seconds pause) {
        display.Log(1, "Flickr asks for a pause: going on in " + std::to_string(pause.count()) +
                           " seconds. Ctrl-C cancels.");
        const auto end = std::chrono::steady_clock::now() + pause;
        while (!isCancelled && std::chrono::steady_clock::now() < end)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
        }
    });
    const RunEnd end = RunPublication(*session.Plugin(), display, signals, [&] { isCancelled = true; });
    host->RunEnds();
    record.RunEnds();
    KeepAccount(session, display);
    if (FAILED(end.result))
    {
        record.NoteEntry(4, "The run could not start: " + SystemWords(end.result));
    }
    return end;
}
} // namespace

ExitCode RunPublishCommand(const CommandLine &line, const Profile &profile)
{
    ItemCollection collection = CollectItems(line.paths, line.recursive);
    if (!collection.folders.empty())
    {
        for (const auto &folder : collection.folders)
        {
            Complain(ShownPath(folder) + " is a folder; give --recursive to publish what is in it.");
        }
        return ExitCode::Usage;
    }
    SignalWatch signals;
    LiveDisplay display(OptionsFor(line), WriteOut, WriteFaults);
    InitDataStore store(profile);
    store.Load();
    for (const std::string &notice : store.Notices())
    {
        display.Log(2, notice);
    }
    TellWhatIsKnown(collection, display);
    if (!MayPublish(store))
    {
        return ExitCode::SomeFailed;
    }
    for (const std::string &problem : UseInstalledModules(ModuleFolders()))
    {
        display.Log(2, problem);
    }
    for (const std::string &warning : SizeWarnings())
    {
        display.Log(2, warning);
    }
    if (const auto reason = TooSmallSize(); reason && !line.allowSmall)
    {
        Complain(*reason);
        return ExitCode::SomeFailed;
    }
    RunRecord record(std::move(collection));
    const RunEnd end = record.Items().empty() ? RunEnd{S_OK, false} : Publish(record, store, display, signals);
    const RunSummary summary = record.Summarize(end.cancelled, SystemWordsOrNone, ProcessVariable);
    display.Print(summary.text, summary.exitCode != ExitCode::Success);
    return summary.exitCode;
}
