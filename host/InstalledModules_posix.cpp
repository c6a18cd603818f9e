#include "host/InstalledModules_posix.h"

#include "host/FileNames.h"
#include "host/SettingsKeyMaking.h"
#include "host/SystemWords.h"

#include "platform/advapi32/RegistryStore.h"

#include "com/HandleOwner.h"
#include <optional>

namespace fs = std::filesystem;

namespace
{
constexpr const WCHAR *StampsKey = TEXT("SOFTWARE\\TRNQ\\Halvora\\Terminal Host\\Modules");

// A module and one of its classes, by whose entry one sees where the module is registered.
struct Module
{
    const char *file;
    const WCHAR *classKey;
};

// The registrar first: the others' entries are written by it.
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

// Tells one build of a module from the next, whose classes may be others.
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

// The module stays loaded: it is about to be used.
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
        RegistryStoreBatch batch;
        for (const auto &[module, file] : unregistered)
        {
            const HRESULT result = RegisterModule(file);
            if (FAILED(result))
            {
                report.problems.push_back("The module " + ShownPath(file) +
                                          " could not be registered: " + SystemWords(result));
                continue;
            }
            WriteText(HKEY_CURRENT_USER, StampsKey, TextOfPath(module->file).c_str(), StampOf(file));
        }
        if (const LSTATUS status = batch.Commit(); status != ERROR_SUCCESS)
        {
            report.problems.push_back("The modules of the program can't be registered in the profile: " +
                                      SystemWords(HRESULT_FROM_WIN32(status)));
        }
    }
    if (const HRESULT result = MakeSettingsKey(); FAILED(result))
    {
        report.problems.push_back("The settings can't be kept in the profile: " + SystemWords(result));
    }
    return report;
}
