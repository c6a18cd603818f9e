#include "host/CommandLine.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <numeric>
#include <sstream>
#include <string_view>

namespace
{
void DescribePublish(CLI::App &app, CommandLine &line)
{
    CLI::App *const publish = app.add_subcommand("publish", "Upload pictures to your Flickr account");
    publish->add_option("PATH", line.paths,
                        "Pictures, and with --recursive folders. Files in one folder that differ only in their "
                        "extension are one picture.");
    publish->add_flag("-r,--recursive", line.recursive, "Upload what is in folders and their subfolders too");
    publish
        ->add_option("--files-from", line.filesFrom,
                     "Upload the files that FILE names, a line each (\"-\": standard input). Of what --porcelain "
                     "wrote, those that aren't published")
        ->type_name("FILE");
    publish->add_flag("-0,--null", line.endsWithZero,
                      "Lines of --files-from and --porcelain end with a zero byte");
    CLI::Option *const quiet =
        publish->add_flag("-q,--quiet", line.quiet, "Show only warnings, errors and the summary");
    publish->add_flag("-v,--verbose", line.verbose, "Show details too, such as each photo's page")
        ->excludes(quiet);
    publish->add_flag("--porcelain", line.porcelain,
                      "Write a line for each picture to standard output, fields separated by tabs: outcome, file, "
                      "photo id or ticket, reason");
    publish->add_flag("-n,--dry-run", line.dryRun, "Show what would be uploaded, and why the rest would not");
    publish->add_flag("--again", line.again, "Upload also what is on the account already");
    publish
        ->add_option_function<std::string>(
            "--unknown",
            [&line](const std::string &choice) {
                if (choice != "skip" && choice != "send")
                {
                    throw CLI::ValidationError("--unknown", "takes skip or send, not " + choice);
                }
                line.unknown = choice == "send" ? UnknownChoice::Send : UnknownChoice::Skip;
            },
            "Pictures that an earlier run may or may not have published: skip or send them, without asking")
        ->type_name("skip|send");
    publish->add_flag("--keep-trying", line.keepTrying,
                      "While Flickr can't be reached, wait and try again instead of stopping after five failures");
    publish->add_option("--set", line.assignments, "A setting for this run alone")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    publish->add_flag("--allow-small", line.allowSmall,
                      "Upload even if the settings would make pictures less than 64 pixels long");
    publish->footer("What the same account has already, unchanged or under another name, is left out: a run that "
                    "was broken off is taken up by the same command.\n\n"
                    "Press Ctrl-C once to stop after the current picture, twice to abort it, three times to quit "
                    "at once.\n\nExit codes: 0 all pictures were published, 1 some were not, 2 usage error, "
                    "3 cancelled.");
}

void DescribeHistory(CLI::App &app, CommandLine &line)
{
    CLI::App *const history = app.add_subcommand("history", "List what was published, newest first");
    history->add_option("FILE", line.paths, "Show only the uploads of these files, or of the same bytes");
    history->add_option("-n,--count", line.count, "Show so many at most")->type_name("COUNT");
    history->add_flag("--json", line.json, "Write JSON, with sizes and checksums");
    history->add_flag("--refresh", line.refresh, "Ask Flickr first what became of pictures that were handed in");
    history->footer(
        "Exit codes: 0 done, 1 a file was never published, or Flickr could not be asked, 2 usage error.");
}

void DescribeOthers(CLI::App &app, CommandLine &line)
{
    app.add_subcommand("authorize", "Ask for your permission to upload to Flickr, in your web browser")
        ->footer("Exit codes: 0 authorized, 1 failed, 2 usage error, 3 cancelled.");

    app.add_subcommand("status", "Show what the next publish will do, or what it still needs");

    CLI::App *const settings =
        app.add_subcommand("settings", "Open the settings sheet, or list or change settings");
    settings->add_option(
        "NAME=VALUE", line.assignments,
        "Changes to store; NAME= goes back to the default, NAME alone shows what it is. Nothing is stored unless "
        "every change is right. With nothing named: in a terminal the settings sheet, which also "
        "shows and forgets the account; otherwise a list of all settings.");

    CLI::App *const account = app.add_subcommand("account", "Show the account, or set its access token");
    account
        ->add_option("--set-token", line.setToken,
                     "Store an access token and its secret. Other users of this computer can see a command "
                     "line while it runs: better give \"-\" and the two on standard input, a line each.")
        ->expected(1, 2)
        ->type_name("TOKEN SECRET | -");
    account->add_flag("--refresh", line.refresh,
                      "Ask Flickr whether it accepts the token, and for the account's limits");
}

// How many letters must be inserted, removed or replaced to turn one word into the other (the Levenshtein distance).
size_t LettersBetween(std::string_view from, std::string_view to)
{
    std::vector<size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < from.size(); ++i)
    {
        size_t diagonal = row[0]++;
        for (size_t j = 0; j < to.size(); ++j)
        {
            const size_t replaced = diagonal + (from[i] != to[j] ? 1 : 0);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

std::string VersionText()
{
    std::string text = "halvora " HALVORA_VERSION;
#ifdef HALVORA_HAS_DEMONSTRATION_KEY
    text += "\nBuilt with the demonstration key, which only flickr-loopback knows: it can't upload to Flickr.";
#endif
    return text;
}

constexpr std::pair<const char *, Command> Commands[] = {
    {"publish", Command::Publish},   {"history", Command::History}, {"status", Command::Status},
    {"settings", Command::Settings}, {"account", Command::Account}, {"authorize", Command::Authorize}};

// What to say of a first word that is no command; empty if it is one, or an option.
std::string FaultOfCommand(std::string_view word)
{
    const auto isClose = [&](const auto &command) { return LettersBetween(word, command.first) <= 2; };
    if (word.empty() || word.front() == '-' ||
        std::ranges::any_of(Commands, [&](const auto &command) { return word == command.first; }))
    {
        return "";
    }
    const auto close = std::ranges::find_if(Commands, isClose);
    return "There is no command \"" + std::string(word) + "\"; " +
           (close != std::end(Commands) ? "did you mean \"" + std::string(close->first) + "\"?"
                                        : "halvora --help lists them all.") +
           "\n";
}

// "help" and "version" as commands, which users of other programs try: the options that mean the same.
std::vector<std::string> WithUsualCommands(std::vector<std::string> arguments)
{
    if (!arguments.empty() && arguments[0] == "version")
    {
        arguments[0] = "--version";
    }
    else if (!arguments.empty() && arguments[0] == "help")
    {
        arguments.erase(arguments.begin());
        arguments.push_back("--help");
    }
    return arguments;
}
} // namespace

std::variant<CommandLine, CommandLineEnd> ParseCommandLine(int argc, const char *const *argv)
{
    std::vector<std::string> arguments = WithUsualCommands({argv + std::min(argc, 1), argv + argc});
    const size_t first = !arguments.empty() && arguments[0] == "--profile" ? 2 : 0;
    if (const std::string fault = first < arguments.size() ? FaultOfCommand(arguments[first]) : ""; !fault.empty())
    {
        return CommandLineEnd{true, fault};
    }
    CommandLine line;
    CLI::App app("Uploads pictures to Flickr from the terminal.", "halvora");
    app.fallthrough();
    app.set_version_flag("--version", VersionText());
    app.add_option("--profile", line.profile,
                   "Folder of the account and the settings (default: $XDG_DATA_HOME/halvora, else "
                   "~/.local/share/halvora)")
        ->type_name("DIR");
    app.require_subcommand(1);
    DescribePublish(app, line);
    DescribeHistory(app, line);
    DescribeOthers(app, line);
    try
    {
        std::ranges::reverse(arguments); // the library takes them from the end
        app.parse(arguments);
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
    for (const auto &[name, command] : Commands)
    {
        if (app.got_subcommand(name))
        {
            line.command = command;
        }
    }
    if (line.command == Command::Publish && line.paths.empty() && line.filesFrom.empty())
    {
        return CommandLineEnd{true,
                              "publish needs pictures: name files, folders with --recursive, or a list of them "
                              "with --files-from.\n"};
    }
    return line;
}
