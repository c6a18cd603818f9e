#include "host/Commands.h"

#include "host/InitData.h"
#include "host/PluginSettings.h"
#include "com/SafeText.h"
#include "host/SettingsKey_posix.h"
#include "host/SystemWords.h"
#include "host/Terminal_posix.h"
#include "host/TextEncodings.h"

#include <algorithm>
#include <iostream>

namespace
{
void TellNotices(const InitDataStore &store)
{
    for (const std::string &notice : store.Notices())
    {
        Complain(notice);
    }
}

std::string Shown(const std::optional<WideText> &text)
{
    return text && !text->empty() ? OneSafeLine(Utf8FromText(*text)) : "(not known)";
}

std::string DescribeAccount(const AccountData &account)
{
    if (!account.IsAuthorized())
    {
        return "No account is set. Let Halvora publish on one with: halvora authorize\n";
    }
    return "Authorized:    yes\n"
           "Name:          " +
           Shown(account.fullName) + "\n" + "Login name:    " + Shown(account.userName) + "\n" +
           "Type:          " + Shown(account.accountType) + "\n" + "Photos page:   " + Shown(account.photosUrl) +
           "\n" + "Largest file:  " +
           (account.maxFileSize > 0 ? std::to_string(account.maxFileSize) + " bytes" : "(not known)") + "\n";
}

std::string WithoutLineEnd(std::string line)
{
    const auto last = line.find_last_not_of(" \t\r\n");
    line.resize(last == line.npos ? 0 : last + 1);
    return line;
}

// Nothing if the bytes can't be a token.
std::optional<WideText> TokenText(const std::string &bytes)
{
    const bool isPrintable =
        !bytes.empty() && std::all_of(bytes.begin(), bytes.end(), [](char c) { return c > 0x20 && c < 0x7F; });
    return isPrintable ? TextFromUtf8(bytes) : std::nullopt;
}

// The result of --set-token: the token is stored in any case, and Flickr is asked about it.
ExitCode SetToken(std::vector<std::string> words, InitDataStore &store, const Profile &profile)
{
    if (words.size() == 1)
    {
        words.assign(2, std::string());
        std::getline(std::cin, words[0]);
        std::getline(std::cin, words[1]);
    }
    const auto token = TokenText(WithoutLineEnd(words[0]));
    const auto secret = TokenText(WithoutLineEnd(words[1]));
    if (!token || !secret)
    {
        Complain("A token and its secret are two words of printable ASCII characters; nothing was stored.");
        return ExitCode::Usage;
    }
    AccountData account = ParseInitData(store.Content()).value_or(AccountData());
    if (account.token != token)
    {
        // Name, type and limits are those of the old token's account.
        account = AccountData();
    }
    account.token = token;
    account.tokenSecret = secret;
    store.Overwrite(ComposeInitData(account));
    WriteOut("The access token is stored.\n");
    AskAboutAccount(profile);
    return ExitCode::Success;
}
} // namespace

ExitCode RunSettingsCommand(const CommandLine &line)
{
    if (const HRESULT result = MakeSettingsKey(); FAILED(result))
    {
        Complain("The settings can't be kept in the profile: " + SystemWords(result));
    }
    std::vector<std::string> faults;
    const std::vector<SettingAssignment> changes = ParseSettingAssignments(line.assignments, faults);
    if (!faults.empty())
    {
        std::ranges::for_each(faults, Complain);
        Complain("Nothing was stored.");
        return ExitCode::Usage;
    }
    if (const HRESULT result = StoreSettings(changes); FAILED(result))
    {
        Complain("The settings could not be stored: " + SystemWords(result));
        return ExitCode::SomeFailed;
    }
    WriteOut(changes.empty() ? ListSettings() : DescribeChanges(changes));
    for (const std::string &warning : SizeWarnings())
    {
        Complain(warning);
    }
    return ExitCode::Success;
}

ExitCode RunAccountCommand(const CommandLine &line, const Profile &profile)
{
    InitDataStore store(profile);
    store.Load();
    TellNotices(store);
    if (!line.setToken.empty())
    {
        return SetToken(line.setToken, store, profile);
    }
    ExitCode code = ExitCode::Success;
    if (line.refresh && ParseInitData(store.Content()).value_or(AccountData()).IsAuthorized())
    {
        code = AskAboutAccount(profile);
        store.Load();
    }
    WriteOut(DescribeAccount(ParseInitData(store.Content()).value_or(AccountData())));
    return code;
}
