#include "host/Commands.h"

#include "host/InitData.h"
#include "host/InstalledModules_posix.h"
#include "host/SettingsKeyMaking.h"
#include "host/PluginSession.h"
#include "host/PluginVerb.h"
#include "host/PublishingHost.h"
#include "host/SettingsKey_posix.h"
#include "host/SystemWords.h"
#include "host/Terminal_posix.h"

#include "com/Hresult.h"

ExitCode RunSheetCommand(const Profile &profile)
{
    if (const HRESULT result = MakeSettingsKey(); FAILED(result))
    {
        Complain("The settings can't be kept in the profile: " + SystemWords(result));
    }
    InitDataStore store(profile);
    store.Load();
    for (const std::string &problem : RegisterInstalledModules(ModuleFolders()).problems)
    {
        Complain(problem);
    }
    RunRecord record{ItemCollection()};
    const auto host = PublishingHost::Make(record, [](int, const std::string &, const std::string &) {});
    PluginSession session(static_cast<IHalvoraPublishingHost *>(host.Get()), store);
    for (const std::string &notice : store.Notices())
    {
        Complain(notice);
    }
    const HRESULT result = RunVerb(*session.Plugin(), TEXT("settings"));
    session.Finish(StoringAfter(TEXT("settings"), result));
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
    return ExitCode::AllWentUp;
}
