// The commands of the program, each from a parsed command line to an exit code. They print to
// standard output, and what keeps them from their work to standard error.
#pragma once

#include "host/CommandLine.h"
#include "host/Journal.h"
#include "host/Profile.h"
#include "host/RunRecord.h"

#include <string>
#include <vector>

// The registry store must be that of the profile, and COM initialized. All may throw ProfileError and
// HresultError.
ExitCode RunPublishCommand(const CommandLine &line, const Profile &profile);
ExitCode RunHistoryCommand(const CommandLine &line, const Profile &profile);
ExitCode RunStatusCommand(const Profile &profile);
ExitCode RunSettingsCommand(const CommandLine &line);
ExitCode RunSheetCommand(const Profile &profile); // settings, for a user at a terminal
ExitCode RunAccountCommand(const CommandLine &line, const Profile &profile);
ExitCode RunAuthorizeCommand(const Profile &profile);

// Asks the service whether it accepts the account's token, stores the account's limits as it tells them, and prints
// what it said. A part of account.
ExitCode AskAboutAccount(const Profile &profile);

// Asks about the pictures that were handed in, by the ticket that the service gave for each in the journal, and enters
// what the service says. A picture that it refused is taken out, so that the next run sends it again. Returns in words
// what could not be found out, and which pictures were refused. A part of history.
std::vector<std::string> RefreshTickets(Journal &journal, const AccountData &account);
