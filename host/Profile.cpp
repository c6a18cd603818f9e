#include "host/Profile.h"

#include "com/WholeFile.h"
#include "host/FileNames.h"
#include "host/InitData.h"

namespace fs = std::filesystem;

namespace
{
// Six texts of at most 1 MiB and a few bytes; no longer file is the plug-in's.
constexpr size_t LongestInitData = 7 << 20;

std::string Failure(const std::string &what, const std::system_error &error, const std::string &advice)
{
    return what + ": " + FileErrorWords(error.code()) + ". " + advice;
}

// As ssh does with its keys: what others could have written is refused before any of it is read.
void RefuseForeign(const fs::path &path, const std::string &kind)
{
    if (const std::string access = ForeignAccess(path); !access.empty())
    {
        throw ProfileError(
            "The " + kind + " " + ShownPath(path) + " " + access +
            ", who could direct your pictures elsewhere; it isn't used. Make it yours alone (chown, "
            "chmod go-w), or name another folder with --profile DIR.");
    }
}
} // namespace

Profile::Profile(const fs::path &folder)
{
    if (folder.empty())
    {
        throw ProfileError("There is no home folder to keep the profile in. Name a folder with --profile DIR.");
    }
    try
    {
        m_folder = fs::absolute(folder);
        if (!m_folder.has_filename())
        {
            m_folder = m_folder.parent_path();
        }
        MakePrivateFolder(m_folder);
    }
    catch (const std::system_error &error)
    {
        throw ProfileError(Failure("The profile folder " + ShownPath(folder) + " can't be made", error,
                                   "Make it yourself or name another with --profile DIR."));
    }
    RefuseForeign(m_folder, "profile folder");
    RefuseForeign(RegistryFile(), "settings file");
    RefuseForeign(InitDataFile(), "account file");
    RefuseForeign(JournalFile(), "journal");
}

void InitDataStore::Load()
{
    const fs::path file = m_profile.InitDataFile();
    try
    {
        m_content.clear();
        if (const auto bytes = ReadWholeFile(file, LongestInitData))
        {
            if (auto content = ParseInitDataFile(*bytes))
            {
                m_content = *std::move(content);
                return;
            }
            SetAsideDamaged();
        }
    }
    catch (const std::system_error &error)
    {
        if (error.code() != std::errc::file_too_large)
        {
            throw ProfileError(Failure("The account data in " + ShownPath(file) + " can't be read", error,
                                       "Check the permissions of the file and its folder."));
        }
        SetAsideDamaged();
    }
}

void InitDataStore::SetAsideDamaged()
{
    const fs::path file = m_profile.InitDataFile();
    m_content.clear();
    try
    {
        const FileLock lock(m_profile.LockFile());
        const fs::path aside = SetFileAside(file, ".damaged");
        m_notices.push_back("The account data in " + ShownPath(file) + " is damaged. It was kept as " +
                            ShownPath(aside.filename()) + "; the account has to be set again.");
    }
    catch (const std::system_error &error)
    {
        throw ProfileError(
            Failure("The account data in " + ShownPath(file) + " is damaged and can't be kept under another name",
                    error, "Move the file away yourself, or name another folder with --profile DIR."));
    }
}

template <class Act>
auto InitDataStore::WhileLocked(const Act &act)
{
    try
    {
        const FileLock lock(m_profile.LockFile());
        return act();
    }
    catch (const std::system_error &error)
    {
        throw ProfileError(Failure("The account data can't be kept in " + ShownPath(m_profile.InitDataFile()),
                                   error, "What was there before is still there."));
    }
}

StoreOutcome InitDataStore::Store(const std::string &content)
{
    if (content == m_content)
    {
        return StoreOutcome::Unchanged;
    }
    return WhileLocked([&] {
        const auto file = ReadWholeFile(m_profile.InitDataFile(), LongestInitData);
        const std::string present = file ? ParseInitDataFile(*file).value_or(*file) : std::string();
        if (present == content || present != m_content)
        {
            return present == content ? StoreOutcome::Unchanged : StoreOutcome::KeptNewer;
        }
        Replace(content);
        return StoreOutcome::Stored;
    });
}

void InitDataStore::Overwrite(const std::string &content)
{
    WhileLocked([&] { Replace(content); });
}

void InitDataStore::Replace(const std::string &content)
{
    FileReplacement replacement(m_profile.InitDataFile(), ComposeInitDataFile(content));
    replacement.Commit();
    m_content = content;
}
