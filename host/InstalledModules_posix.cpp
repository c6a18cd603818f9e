#include "host/InstalledModules_posix.h"

#include "host/FileNames.h"
#include "host/Profile.h"
#include "host/SettingsKeyMaking.h"
#include "host/SystemWords.h"

#include "platform/advapi32/RegistryStore.h"
#include "platform/ole32/ClassServers.h"

#include "com/HandleOwner.h"
#include <optional>

namespace fs = std::filesystem;

namespace
{
constexpr const WCHAR *StampsKey = TEXT("SOFTWARE\\TRNQ\\Halvora\\Terminal Host\\Modules");

// A module, and one of its classes: the entry of that class says whether the module is registered.
struct Module
{
    const char *file;
    const WCHAR *classKey;
};

// The registrar comes first: it writes the entries of the others.
constexpr Module Modules[] = {
    {"atl.so", TEXT("CLSID\\{44EC053A-400F-11D0-9DCD-00A0C90391D3}")},
    {"Halvora.Publishing.Plugin.Flickr.so", TEXT("CLSID\\{46519402-3380-4D48-BC76-63FFAA27165C}")},
    {"Halvora.WebComponents.so", TEXT("CLSID\\{5DC9820B-696D-488D-B09C-73CC4D72C85B}")},
    {"msxml.so", TEXT("CLSID\\{2933BF90-7B36-11D2-B20E-00C04F983E60}")},
    {"windowscodecs.so", TEXT("CLSID\\{CACAF262-9370-4615-A13B-9F5539DA4C0A}")},
};

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

// Empty if there is no such text value.
WideText ReadText(HKEY root, const WideText &path, const WCHAR *name)
{
    RegistryKeyOwner key;
    WCHAR text[4096];
    DWORD type = 0;
    DWORD size = sizeof(text) - sizeof(WCHAR);
    if (RegOpenKeyExW(root, path.c_str(), 0, KEY_READ, key.Put()) != ERROR_SUCCESS ||
        RegQueryValueExW(key.Get(), name, nullptr, &type, reinterpret_cast<BYTE *>(text), &size) !=
            ERROR_SUCCESS ||
        type != REG_SZ)
    {
        return WideText();
    }
    text[size / sizeof(WCHAR)] = 0;
    return WideText(text);
}

LSTATUS WriteText(HKEY root, const WCHAR *path, const WCHAR *name, const WideText &text)
{
    RegistryKeyOwner key;
    const LSTATUS status =
        RegCreateKeyExW(root, path, 0, nullptr, 0, KEY_READ | KEY_WRITE, nullptr, key.Put(), nullptr);
    return status != ERROR_SUCCESS
               ? status
               : RegSetValueExW(key.Get(), name, 0, REG_SZ, reinterpret_cast<const BYTE *>(text.c_str()),
                                static_cast<DWORD>((text.size() + 1) * sizeof(WCHAR)));
}

// Differs between two builds of a module: the later one may have other classes.
WideText StampOf(const fs::path &file)
{
    std::error_code error;
    const auto written = fs::last_write_time(file, error).time_since_epoch().count();
    return TextOfPath(std::to_string(written) + " " + std::to_string(fs::file_size(file, error)));
}

bool IsRegistered(const Module &module, const fs::path &file)
{
    const WideText server =
        ReadText(HKEY_CLASSES_ROOT, WideText(module.classKey) + TEXT("\\InprocServer32"), nullptr);
    return server == TextOfPath(file) &&
           ReadText(HKEY_CURRENT_USER, StampsKey, TextOfPath(module.file).c_str()) == StampOf(file);
}

// The module stays loaded: it is used right after.
HRESULT RegisterModule(const fs::path &file)
{
    const HMODULE module = LoadLibraryW(TextOfPath(file).c_str());
    if (module == nullptr)
    {
        return HRESULT_FROM_WIN32(GetLastError());
    }
    using Registration = HRESULT(WINAPI *)();
    const auto registration =
        reinterpret_cast<Registration>(reinterpret_cast<void *>(GetProcAddress(module, "DllRegisterServer")));
    return registration != nullptr ? registration() : HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND);
}

// The same for every module, so it is said once, and ends the command.
void RequireStore(LSTATUS written)
{
    if (written != ERROR_SUCCESS)
    {
        throw ProfileError("The parts of the program have to be registered in " + ShownPath(RegistryStorePath()) +
                           ", which can't be written: " + SystemWords(HRESULT_FROM_WIN32(written)) +
                           " Call once with the right to write it, or name another folder with --profile DIR.");
    }
}

void RegisterModules(const std::vector<std::pair<const Module *, fs::path>> &modules, RegistrationReport &report)
{
    RegistryStoreBatch batch;
    for (const auto &[module, file] : modules)
    {
        const WideText name = TextOfPath(module->file);
        // Until the module has written its entries, its stamp is that of no build.
        RequireStore(WriteText(HKEY_CURRENT_USER, StampsKey, name.c_str(), WideText()));
        const HRESULT result = RegisterModule(file);
        if (FAILED(result))
        {
            report.problems.push_back("The module " + ShownPath(file) +
                                      " could not be registered: " + SystemWords(result));
            continue;
        }
        WriteText(HKEY_CURRENT_USER, StampsKey, name.c_str(), StampOf(file));
    }
    RequireStore(batch.Commit());
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

RegistrationReport RegisterInstalledModules(const std::vector<fs::path> &folders)
{
    RegistrationReport report;
    std::vector<std::pair<const Module *, fs::path>> unregistered;
    for (const Module &module : Modules)
    {
        const auto file = FindModule(module.file, folders);
        if (!file)
        {
            report.problems.push_back("The module " + std::string(module.file) + " is missing in " +
                                      ShownPath(folders.front()) + "; install Halvora again.");
        }
        else if (!IsRegistered(module, *file))
        {
            unregistered.emplace_back(&module, *file);
        }
    }
    if (!unregistered.empty())
    {
        RegisterModules(unregistered, report);
    }
    LoadClassServersOnlyFrom(folders);
    if (const HRESULT result = MakeSettingsKey(); FAILED(result))
    {
        report.problems.push_back("The settings can't be kept in the profile: " + SystemWords(result));
    }
    return report;
}
