// Settings that hold for one run and are stored nowhere.
#pragma once

#include "host/SettingAssignment.h"

#include <filesystem>
#include <vector>

// While it lives, the process uses a copy of the registry store with the changes in it. The copy's folder is
// removed at the end. Throws ProfileError.
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
