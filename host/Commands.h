// The commands of the program, each from a parsed command line to an exit code. They print to
// standard output, and what stops them to standard error.
#pragma once

#include "host/CommandLine.h"
#include "host/Profile.h"
#include "host/RunRecord.h"

// The registry store must be that of the profile, and COM initialized. May throw ProfileError and
// HresultError.
ExitCode RunPublishCommand(const CommandLine &line, const Profile &profile);
ExitCode RunStatusCommand(const Profile &profile);
ExitCode RunSettingsCommand(const CommandLine &line);
ExitCode RunSheetCommand(const Profile &profile); // settings, before a user at a terminal
ExitCode RunAccountCommand(const CommandLine &line, const Profile &profile);
ExitCode RunAuthorizeCommand(const Profile &profile);

// The words for a user who must act, on standard error.
void Complain(const std::string &words);
