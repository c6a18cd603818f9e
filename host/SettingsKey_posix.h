// The stored settings as a user reads and writes them. The settings key must exist.
#pragma once

#include "host/SettingAssignment.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

// Below this a picture is a thumbnail that hardly anybody wants to publish.
constexpr INT32 SmallestUsualEdge = 64; // pixels

// A line for each setting: the value that holds, whether that is the default, what is stored instead where the
// plug-in doesn't take it as it is, and what the setting means.
std::string ListSettings();

// A line NAME=VALUE for each change, as ListSettings has it.
std::string DescribeChanges(const std::vector<SettingAssignment> &changes);

// Stores the changes, all in one write of the store. S_OK, or the failure, and then nothing is stored.
HRESULT StoreSettings(const std::vector<SettingAssignment> &changes);

// Numbers are stored as one language writes them and read as another does: "1.024 px" is 1024 pixels in
// German and 1 in English. A warning for each stored size that reads otherwise than it was written.
std::vector<std::string> SizeWarnings();

// The reason not to publish: a maximum size under SmallestUsualEdge that the next run would use.
std::optional<std::string> TooSmallSize();

// Settings that hold for one run and are stored nowhere. While it lives, the process uses a copy of the registry store
// with the changes in it. The copy's folder is removed at the end. Throws ProfileError.
class SettingsForOneRun
{
public:
    explicit SettingsForOneRun(const std::vector<SettingAssignment> &changes);
    ~SettingsForOneRun();
    SettingsForOneRun(const SettingsForOneRun &) = delete;
    SettingsForOneRun &operator=(const SettingsForOneRun &) = delete;

private:
    const std::string m_store;
    std::filesystem::path m_folder;
};
