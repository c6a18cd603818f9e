// `halvora`, the host for the terminal.
#include "host/Apartment.h"
#include "host/Commands.h"
#include "host/FileNames.h"
#include "host/SystemWords.h"
#include "host/Terminal_posix.h"

#include "platform/advapi32/RegistryStore.h"

#include "com/Hresult.h"

#include <malloc.h>

#include <clocale>
#include <csignal>
#include <iostream>
#include <system_error>

namespace
{
constexpr char WhatToDo[] = " Look at the settings and choose them again with: halvora settings";

std::string WordsOf(const RegistryProblem &problem)
{
    const std::string file = ShownPath(problem.file);
    if (problem.readResult != ERROR_SUCCESS)
    {
        return "The settings in " + file +
               " can't be read: " + SystemWords(HRESULT_FROM_WIN32(problem.readResult)) +
               " Check that it is a file, and its owner and permissions.";
    }
    return "The settings in " + file + " are damaged. " +
           (problem.keptAs.empty()
                ? "They can't be moved away; move the file yourself."
                : "They were kept as " + ShownPath(problem.keptAs) + "; all settings have their defaults now." +
                      WhatToDo +
                      " (If you changed the file by hand, delete its line \"; checked\" and move it back.)");
}

// Whoever chose that strangers see no picture, or no position, must not publish by the defaults because of a fault
// of the disk. A damaged store ends each command with nothing done, and publishing stays barred until the settings
// were looked at, which makes a new store. The account is a file of its own.
void RequireSettings(Command command, const Profile &profile)
{
    if (command == Command::Account || command == Command::History)
    {
        return;
    }
    if (const auto problem = RegistryStoreProblem())
    {
        throw ProfileError(WordsOf(*problem) + " Nothing was done.");
    }
    std::filesystem::path kept = profile.RegistryFile();
    kept += ".damaged-1";
    if (command != Command::Settings && !exists(profile.RegistryFile()) && exists(kept))
    {
        throw ProfileError("The settings were damaged, and were kept as " + ShownPath(kept) +
                           "; nothing was done by the defaults." + WhatToDo);
    }
}

ExitCode Run(const CommandLine &line)
{
    const Profile profile(line.profile.empty() ? Profile::DefaultFolder() : line.profile);
    SetRegistryStorePath(profile.RegistryFile().native());
    RequireSettings(line.command, profile);
    const Apartment apartment;
    switch (line.command)
    {
    case Command::Publish:
        return RunPublishCommand(line, profile);
    case Command::History:
        return RunHistoryCommand(line, profile);
    case Command::Status:
        return RunStatusCommand(profile);
    case Command::Settings:
        return line.assignments.empty() && IsUserAtTerminal() ? RunSheetCommand(profile)
                                                              : RunSettingsCommand(line);
    case Command::Authorize:
        return RunAuthorizeCommand(profile);
    default:
        return RunAccountCommand(line, profile);
    }
}
} // namespace

int main(int argc, char **argv)
{
    // Pictures are decoded in many short-lived threads. With a heap for each of them, a run over large pictures
    // takes half as much memory again, and is no faster.
    mallopt(M_ARENA_MAX, 2);
    std::setlocale(LC_CTYPE, "");
    // A run is not broken off because the reader of its output has gone.
    std::signal(SIGPIPE, SIG_IGN);
    const auto parsed = ParseCommandLine(argc, argv);
    if (const auto *end = std::get_if<CommandLineEnd>(&parsed))
    {
        (end->isError ? std::cerr : std::cout) << end->text;
        return static_cast<int>(end->isError ? ExitCode::Usage : ExitCode::Success);
    }
    ExitCode code = ExitCode::SomeFailed;
    try
    {
        code = Run(std::get<CommandLine>(parsed));
    }
    catch (const HresultError &error)
    {
        Complain("The plug-in could not be used: " + SystemWords(error.Code()));
    }
    catch (const std::exception &error)
    {
        Complain(error.what());
    }
    if (const auto problem = RegistryStoreProblem())
    {
        Complain(WordsOf(*problem)); // during the command
    }
    const bool publishes = std::get<CommandLine>(parsed).command == Command::Publish;
    if (OutputError() != 0 && !publishes) // the outcome of a run is that of its pictures
    {
        Complain("Standard output can't be written: " + std::generic_category().message(OutputError()) + ".");
        code = ExitCode::SomeFailed;
    }
    return static_cast<int>(code);
}
