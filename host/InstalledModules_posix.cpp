#include "host/InstalledModules_posix.h"

#include "host/FileNames.h"
#include "host/PluginSettings.h"
#include "host/Profile.h"
#include "host/SystemWords.h"

#include "platform/advapi32/RegistryStore.h"
#include "platform/ole32/ClassServers.h"

#include "HVRPublishToFlickr.h"
#include "WebComponents.h"

#include <optional>

namespace fs = std::filesystem;

namespace
{
struct Module
{
    const char *file;
    std::vector<CLSID> classes; // none: the platform knows which there are
};

std::vector<Module> Modules()
{
    return {
        {"Halvora.Publishing.Plugin.Flickr.so", {__uuidof(FlickrPublisher)}},
        {"Halvora.WebComponents.so", {CLSID_OAuthWebClient, CLSID_RequestParameters, CLSID_MultipartFormData}},
        {"msxml.so", {}},
        {"windowscodecs.so", {}},
    };
}

std::optional<fs::path> FindModule(const char *name, const std::vector<fs::path> &folders)
{
    std::error_code error;
    for (const fs::path &folder : folders)
    {
        if (fs::is_regular_file(folder / name, error))
        {
            return folder / name;
        }
    }
    return std::nullopt;
}
} // namespace

std::vector<fs::path> ModuleFolders()
{
    const fs::path folder = fs::read_symlink("/proc/self/exe").parent_path();
    const fs::path built = (folder / ".." / "lib").lexically_normal();
    const fs::path installed = built / "halvora" / "modules";
    std::error_code error;
    return {fs::is_directory(installed, error) ? installed : built, folder};
}

std::vector<std::string> UseInstalledModules(const std::vector<fs::path> &folders)
{
    std::vector<std::string> problems;
    std::vector<ClassServer> servers;
    for (const Module &module : Modules())
    {
        const auto file = FindModule(module.file, folders);
        if (!file)
        {
            problems.push_back("The module " + std::string(module.file) + " is missing in " +
                               ShownPath(folders.front()) + "; install Halvora again.");
            continue;
        }
        for (const CLSID &clsid : module.classes)
        {
            servers.push_back({clsid, *file});
        }
    }
    SetClassServers(std::move(servers));
    if (const HRESULT result = MakeSettingsKey(); FAILED(result))
    {
        throw ProfileError("The settings have to be kept in " + ShownPath(RegistryStorePath()) +
                           ", which can't be written: " + SystemWords(result) +
                           " Call once with the right to write it, or name another folder with --profile DIR.");
    }
    return problems;
}
