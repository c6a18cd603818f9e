// The folder that holds what one user of the program keeps: the registry store and the plug-in's
// stream with the account. It is the user's own (mode 0700, its files 0600), or lies where the system
// keeps others out.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

// What went wrong with the profile and what to do, in words for the user.
class ProfileError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class Profile
{
public:
    // $XDG_DATA_HOME/halvora, else ~/.local/share/halvora; %LOCALAPPDATA%\Halvora on Windows. Empty if
    // there is no home.
    static std::filesystem::path DefaultFolder();

    // Makes the folder if it is missing. Throws ProfileError.
    explicit Profile(const std::filesystem::path &folder);

    const std::filesystem::path &Folder() const { return m_folder; }
    std::filesystem::path RegistryFile() const { return m_folder / "registry.reg"; }
    std::filesystem::path InitDataFile() const { return m_folder / "init-data.bin"; }

private:
    std::filesystem::path m_folder; // absolute
};

enum class StoreOutcome
{
    Unchanged, // nothing to store
    Stored,
    KeptNewer // another process stored something else meanwhile, which stays
};

// The stream's content between runs. Processes that share a profile may all have it loaded; what one
// of them changed isn't lost to the end of another's run.
class InitDataStore
{
public:
    explicit InitDataStore(const Profile &profile) : m_profile(profile) {}

    // Reads the file; nothing counts as an empty stream. A file that is no account data is given another
    // name beside it, the content is empty then, and notices says so. Throws ProfileError if the file
    // can't be read, or is damaged and can't be renamed.
    void Load();

    // The plug-in refused the loaded content: as for a damaged file.
    void SetAsideDamaged();

    const std::string &Content() const { return m_content; }
    const std::vector<std::string> &Notices() const { return m_notices; }

    // After a run: stores the content if it changed in the run. Throws ProfileError.
    StoreOutcome Store(const std::string &content);

    // On the user's order: stores the content whatever others did. Throws ProfileError.
    void Overwrite(const std::string &content);

private:
    void Replace(const std::string &content);

    const Profile &m_profile;
    std::string m_content;
    std::vector<std::string> m_notices;
};
