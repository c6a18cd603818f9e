#include "host/CommandLine.h"

#include <CLI/CLI.hpp>

#include <sstream>

namespace
{
void DescribePublish(CLI::App &app, CommandLine &line)
{
    CLI::App *const publish = app.add_subcommand("publish", "Publish pictures to the user's Flickr account");
    publish
        ->add_option("PATH", line.paths,
                     "Pictures, and with --recursive folders. Files of one folder that differ only in their "
                     "extension are one picture.")
        ->required();
    publish->add_flag("-r,--recursive", line.recursive, "Publish what is in folders and their subfolders too");
    CLI::Option *const quiet =
        publish->add_flag("-q,--quiet", line.quiet, "Show warnings, errors and the summary alone");
    publish->add_flag("-v,--verbose", line.verbose, "Show details too")->excludes(quiet);
    publish->add_flag("--allow-small", line.allowSmall,
                      "Publish even if the settings would make pictures less than 64 pixels long");
    publish->footer("Press Ctrl-C once to stop after the current picture, twice to abort it, three times to quit "
                    "at once.\n\nExit codes: 0 all pictures were published, 1 some were not, 2 usage error, "
                    "3 cancelled.");
}

void DescribeOthers(CLI::App &app, CommandLine &line)
{
    app.add_subcommand("authorize", "Let Halvora publish to a Flickr account, by way of the web browser")
        ->footer("Exit codes: 0 authorized, 1 failed, 2 usage error, 3 cancelled.");

    app.add_subcommand("status", "Show what the next publish will do, or what it still needs");

    CLI::App *const settings =
        app.add_subcommand("settings", "Show the settings in a sheet, list them, or change some");
    settings->add_option("NAME=VALUE", line.assignments,
                         "Changes to store; NAME= alone goes back to the default. Nothing is stored unless "
                         "every change is right. Without changes: in a terminal a sheet to look at and "
                         "edit the settings, which can also show and forget the account; otherwise their list.");

    CLI::App *const account = app.add_subcommand("account", "Show the account, or set its access token");
    account
        ->add_option("--set-token", line.setToken,
                     "Store an access token and its secret. Other users of this computer can see a command "
                     "line while it runs: better give \"-\" and the two on standard input, a line each.")
        ->expected(1, 2)
        ->type_name("TOKEN SECRET | -");
}
} // namespace

std::variant<CommandLine, CommandLineEnd> ParseCommandLine(int argc, const char *const *argv)
{
    CommandLine line;
    CLI::App app("Publishes pictures to Flickr from the terminal.", "halvora");
    app.set_version_flag("--version", "halvora " HALVORA_VERSION);
    app.add_option("--profile", line.profile,
                   "Folder of the account and the settings (default: $XDG_DATA_HOME/halvora, else "
                   "~/.local/share/halvora)")
        ->type_name("DIR");
    app.require_subcommand(1);
    DescribePublish(app, line);
    DescribeOthers(app, line);
    try
    {
        app.parse(argc, argv);
    }
    catch (const CLI::ParseError &error)
    {
        std::ostringstream out;
        std::ostringstream faults;
        const int code = app.exit(error, out, faults);
        return CommandLineEnd{code != 0, out.str() + faults.str()};
    }
    if (line.setToken.size() == 1 && line.setToken[0] != "-")
    {
        return CommandLineEnd{true, "--set-token takes a token and its secret, or - to read them from standard "
                                    "input.\n"};
    }
    static constexpr std::pair<const char *, Command> Commands[] = {{"publish", Command::Publish},
                                                                    {"status", Command::Status},
                                                                    {"settings", Command::Settings},
                                                                    {"account", Command::Account},
                                                                    {"authorize", Command::Authorize}};
    for (const auto &[name, command] : Commands)
    {
        if (app.got_subcommand(name))
        {
            line.command = command;
        }
    }
    return line;
}
