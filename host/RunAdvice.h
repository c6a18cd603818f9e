// What a user can do about the errors that are commonest in a run: the service's refusals, and settings of this
// computer that stand in the way to the service.
#pragma once

#include <chrono>
#include <string>
#include <vector>

// What connections depend on by environment variables; a text is empty if it isn't set.
struct ConnectionSettings
{
    std::string proxy; // "host:port"
    std::string proxyVariable;
    std::string trustFile; // of HALVORA_CA_FILE
};

// The service's code in an error entry of the plug-in, 0 if it has none.
long ServiceCode(const std::string &entry);

// Whether the service refused this one file by that code: others may be taken.
bool IsRefusalOfFile(long code);

// Whether an error entry of the plug-in says that no connection could be made. Nothing was sent then.
bool SaysNoConnection(const std::string &entry);

// How long the service asks to wait before the next request, by an error entry of the plug-in: at most ten
// minutes, 0 where the entry says nothing of it.
std::chrono::seconds RequestedWait(const std::string &entry);

// A line for each kind of error among the plug-in's error entries, in UTF-8.
std::vector<std::string> AdviceFor(const std::vector<std::string> &entries, const ConnectionSettings &settings);
