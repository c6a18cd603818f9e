// `halvora`, the host for the terminal.
#include "host/Commands.h"
#include "host/FileNames.h"
#include "host/SystemWords.h"
#include "host/Terminal_posix.h"

#include "platform/advapi32/RegistryStore.h"

#include "com/Hresult.h"

#include <malloc.h>
#include <objbase.h>

#include <clocale>
#include <csignal>
#include <iostream>

namespace
{
// COM for the main thread.
class Apartment
{
public:
    Apartment() { ThrowIfFailed(CoInitializeEx(nullptr, COINIT_MULTITHREADED)); }
    ~Apartment() { CoUninitialize(); }
    Apartment(const Apartment &) = delete;
    Apartment &operator=(const Apartment &) = delete;
};

void TellRegistryProblem()
{
    if (const auto problem = RegistryStoreProblem())
    {
        Complain("The settings in " + ShownPath(problem->file) + " are damaged. " +
                 (problem->keptAs.empty() ? "They can't be moved away: nothing is stored until they are mended."
                                          : "They were kept as " + ShownPath(problem->keptAs) +
                                                "; all settings have their defaults."));
    }
}

ExitCode Run(const CommandLine &line)
{
    const Profile profile(line.profile.empty() ? Profile::DefaultFolder() : line.profile);
    SetRegistryStorePath(profile.RegistryFile().native());
    const Apartment apartment;
    switch (line.command)
    {
    case Command::Publish:
        return RunPublishCommand(line, profile);
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
    // Decoding runs in many short-lived threads. With a heap for each of them, a run over large pictures holds
    // half as much memory again, and is no faster.
    mallopt(M_ARENA_MAX, 2);
    std::setlocale(LC_CTYPE, "");
    // A reader that went away is no reason to leave a run half done.
    std::signal(SIGPIPE, SIG_IGN);
    const auto parsed = ParseCommandLine(argc, argv);
    if (const auto *end = std::get_if<CommandLineEnd>(&parsed))
    {
        (end->isError ? std::cerr : std::cout) << end->text;
        return static_cast<int>(end->isError ? ExitCode::Usage : ExitCode::AllWentUp);
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
    TellRegistryProblem();
    return static_cast<int>(code);
}
