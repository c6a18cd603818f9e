#include "host/Commands.h"

#include "host/InitData.h"
#include "host/InstalledModules_posix.h"
#include "host/PluginSession.h"
#include "host/PluginVerb.h"
#include "host/PublishingHost.h"
#include "host/SafeLine.h"
#include "host/SystemWords.h"
#include "host/Terminal_posix.h"
#include "host/TextEncodings.h"

#include "com/Hresult.h"

namespace
{
AccountData AccountIn(const InitDataStore &store)
{
    return ParseInitData(store.Content()).value_or(AccountData());
}

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

// What came of it, and what to do next. The plug-in's own words of a failure were shown before.
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
        return ExitCode::AllWentUp;
    }
    if (after.IsAuthorized() && after.token != before.token)
    {
        Complain("The authorization is stored, but Flickr did not tell about the account. If publishing is "
                 "refused, call again: halvora authorize");
        return ExitCode::SomeFailed;
    }
    const bool isLost = before.IsAuthorized() && !after.IsAuthorized();
    Complain("Halvora could not be authorized: " + SystemWords(result) +
             (isLost ? " The earlier authorization is gone; to publish, call again: halvora authorize"
                     : " To try again: halvora authorize"));
    return ExitCode::SomeFailed;
}
} // namespace

ExitCode RunAuthorizeCommand(const Profile &profile)
{
    InitDataStore store(profile);
    store.Load();
    const AccountData before = AccountIn(store);
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
    const HRESULT result = RunVerb(*session.Plugin(), TEXT("authorize"));
    session.Finish(StoringAfter(TEXT("authorize"), result));
    return TellOutcome(result, before, AccountIn(store));
}
