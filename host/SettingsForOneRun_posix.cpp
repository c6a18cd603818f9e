#include "host/SettingsForOneRun_posix.h"

#include "host/Profile.h"
#include "host/SettingsKeyMaking.h"
#include "host/SettingsKey_posix.h"
#include "host/SystemWords.h"

#include "platform/advapi32/RegistryStore.h"

#include <cstdlib>

namespace fs = std::filesystem;

SettingsForOneRun::SettingsForOneRun(const std::vector<SettingAssignment> &changes) : m_store(RegistryStorePath())
{
    std::string folder = (fs::temp_directory_path() / "halvora-XXXXXX").native();
    if (::mkdtemp(folder.data()) == nullptr)
    {
        throw ProfileError("No folder could be made in " + fs::temp_directory_path().native() +
                           " for the settings of this run. Check that it can be written to.");
    }
    m_folder = folder;
    std::error_code error;
    fs::copy_file(m_store, m_folder / "registry.reg", error); // not there: all settings have their defaults
    SetRegistryStorePath(m_folder / "registry.reg");
    HRESULT result = MakeSettingsKey();
    result = SUCCEEDED(result) ? StoreSettings(changes) : result;
    if (FAILED(result))
    {
        SetRegistryStorePath(m_store);
        fs::remove_all(m_folder, error);
        throw ProfileError("The settings of this run can't be kept in " + folder + ": " + SystemWords(result));
    }
}

SettingsForOneRun::~SettingsForOneRun()
{
    SetRegistryStorePath(m_store);
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}
