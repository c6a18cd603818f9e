// The folder of the files that the program keeps for one user: the registry store, the plug-in's stream with the
// account, and the journal of what was published. Nobody else may change them: they decide on whose account and for
// whose eyes pictures are published. A folder that is made here has mode 0700, its files 0600; on Windows it lies
// where the system keeps others out.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

// A fault of the profile, with what to do about it, in words for the user.
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

    // Makes the folder if it is missing. Throws ProfileError, also for a folder or a file in it that belongs to
    // somebody else or that others may write.
    explicit Profile(const std::filesystem::path &folder);

    const std::filesystem::path &Folder() const { return m_folder; }
    std::filesystem::path RegistryFile() const { return m_folder / "registry.reg"; }
    std::filesystem::path InitDataFile() const { return m_folder / "init-data.bin"; }
    std::filesystem::path JournalFile() const { return m_folder / "journal.db"; }
    std::filesystem::path LockFile() const { return m_folder / "lock"; } // of the account

private:
    std::filesystem::path m_folder; // absolute
};

enum class StoreOutcome
{
    Unchanged, // there was nothing to store
    Stored,
    KeptNewer // another process stored something else meanwhile; that was kept
};

// The stream's content between runs. Processes that share a profile may all have it loaded; the end of one's
// run doesn't overwrite what another has changed meanwhile.
class InitDataStore
{
public:
    explicit InitDataStore(const Profile &profile) : m_profile(profile) {}

    // Reads the file; without one the content is empty. A damaged file is renamed, the content is then empty,
    // and a notice says so. Throws ProfileError if the file can't be read, or is damaged and can't be renamed.
    void Load();

    // Does for content that the plug-in has refused what Load does for a damaged file.
    void SetAsideDamaged();

    const std::string &Content() const { return m_content; }
    const std::vector<std::string> &Notices() const { return m_notices; }

    // After a run: stores the content if it changed in the run. Throws ProfileError.
    StoreOutcome Store(const std::string &content);

    // Stores the content whatever other processes stored: the user has just ordered it. Throws ProfileError.
    void Overwrite(const std::string &content);

private:
    template <class Act>
    auto WhileLocked(const Act &act);
    void Replace(const std::string &content);

    const Profile &m_profile;
    std::string m_content;
    std::vector<std::string> m_notices;
};
