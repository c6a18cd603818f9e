// The command line of the program.
#pragma once

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

enum class Command
{
    Publish,
    Status,
    Settings,
    Account,
    Authorize
};

struct CommandLine
{
    Command command = Command::Status;
    std::filesystem::path profile;            // empty: the default
    std::vector<std::filesystem::path> paths; // of publish
    bool recursive = false;
    bool quiet = false;
    bool verbose = false;
    bool allowSmall = false;              // of publish: maximum sizes that are hardly meant
    std::vector<std::string> assignments; // of settings, NAME=VALUE
    std::vector<std::string> setToken;    // of account: token and secret, or "-" for standard input
    bool refresh = false;                 // of account: ask the service
};

// A command line that is answered by a text alone: help, the version, or what is wrong with it.
struct CommandLineEnd
{
    bool isError = false;
    std::string text;
};

std::variant<CommandLine, CommandLineEnd> ParseCommandLine(int argc, const char *const *argv);
