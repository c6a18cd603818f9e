// The command line of the program.
#pragma once

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

enum class Command
{
    Publish,
    History,
    Status,
    Settings,
    Account,
    Authorize
};

// What becomes of pictures of which an earlier run may have published, and nobody knows.
enum class UnknownChoice
{
    Ask, // or leave them out where nobody can be asked
    Skip,
    Send
};

struct CommandLine
{
    Command command = Command::Status;
    std::filesystem::path profile;            // empty: the default
    std::vector<std::filesystem::path> paths; // of publish, and of history
    bool recursive = false;
    bool quiet = false;
    bool verbose = false;
    bool allowSmall = false; // of publish: maximum sizes that are hardly meant
    bool again = false;      // of publish: also what is on the account already
    UnknownChoice unknown = UnknownChoice::Ask;
    bool dryRun = false;
    bool porcelain = false;
    bool keepTrying = false;
    std::string filesFrom;                // of publish: a file, or "-" for standard input; empty: none
    bool endsWithZero = false;            // lines of lists, in place of line feeds
    bool json = false;                    // of history
    size_t count = 0;                     // of history: so many entries; 0: all
    std::vector<std::string> assignments; // of settings, and of publish --set; NAME=VALUE
    std::vector<std::string> setToken;    // of account: token and secret, or "-" for standard input
    bool refresh = false;                 // of account and history: ask the service
};

// A command line that is answered by a text alone: help, the version, or what is wrong with it.
struct CommandLineEnd
{
    bool isError = false;
    std::string text;
};

std::variant<CommandLine, CommandLineEnd> ParseCommandLine(int argc, const char *const *argv);
