// Registration as an installer does it: a copy of the product is loaded, its exports are called, and the registry
// is compared afterwards.
#include "com/BstrOwner.h"
#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/WideText.h"
#include "tests/doubles/CallRecord.h"
#include "tests/doubles/ClassInPlace.h"
#include "tests/host/TemporaryFolder.h"
#include "tests/platform/KnownGaps.h"

#include "HVRPublishToFlickr.h"
#include "RegistrarInterface.h"

#include <gmock/gmock.h>

#include <olectl.h>

#include <filesystem>
#include <iterator>

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

namespace
{
#define CLASS_KEY "CLSID\\{46519402-3380-4D48-BC76-63FFAA27165C}"
#define APPLICATION_ID "{BFB39C79-DF27-42C0-8377-1B8ADA033E84}"
#define LIBRARY_KEY "TypeLib\\{20FB81F4-2558-4961-B33E-75C9A90642E9}"
#define INTERFACE_KEY "Interface\\{BF23F6E1-E0C8-40DB-B874-A0F973F52DB0}"
#define PROG_ID "Halvora.Publishing.Plugin.Flickr"

WideText Wide(const std::string &text)
{
    return WideText(text.begin(), text.end());
}

void MakeKey(HKEY root, const WideText &path)
{
    RegistryKeyOwner made;
    EXPECT_EQ(RegCreateKeyExW(root, path.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, made.Put(), nullptr),
              ERROR_SUCCESS);
}

// The classes of the machine or of the user, seen without the merged view of both.
struct Classes
{
    HKEY root;

    WideText Path(const std::string &key) const { return Wide("Software\\Classes\\" + key); }

    bool Has(const std::string &key) const
    {
        RegistryKeyOwner opened;
        return RegOpenKeyExW(root, Path(key).c_str(), 0, KEY_READ, opened.Put()) == ERROR_SUCCESS;
    }

    // "(none)" without such a value.
    std::string Text(const std::string &key, const std::string &name = "") const
    {
        RegistryKeyOwner opened;
        WCHAR text[1024] = {};
        DWORD size = sizeof(text) - sizeof(WCHAR);
        const bool isRead = RegOpenKeyExW(root, Path(key).c_str(), 0, KEY_READ, opened.Put()) == ERROR_SUCCESS &&
                            RegQueryValueExW(opened.Get(), Wide(name).c_str(), nullptr, nullptr,
                                             reinterpret_cast<BYTE *>(text), &size) == ERROR_SUCCESS;
        return isRead ? Narrow(text) : "(none)";
    }

    // Those of the lines "KEY [NAME] = VALUE" that don't hold.
    Lines Lacking(Lines lines) const
    {
        std::erase_if(lines, [&](const std::string &line) {
            const size_t value = line.find(" = ");
            const size_t name = line.find(" [");
            const bool hasName = name < value;
            return Text(line.substr(0, hasName ? name : value),
                        hasName ? line.substr(name + 2, value - name - 3) : "") == line.substr(value + 3);
        });
        return lines;
    }

    void Make(const std::string &key) const { MakeKey(root, Path(key)); }
    void Remove(const std::string &key) const { RegDeleteTreeW(root, Path(key).c_str()); }
};

const Classes MachineClasses{HKEY_LOCAL_MACHINE};
const Classes UserClasses{HKEY_CURRENT_USER};

constexpr const char *OwnKeys[] = {
    CLASS_KEY,   PROG_ID,      PROG_ID ".1", "AppID\\" APPLICATION_ID, "AppID\\" PROG_ID ".dll",
    LIBRARY_KEY, INTERFACE_KEY};

Lines PresentKeys(const Classes &classes)
{
    Lines present(std::begin(OwnKeys), std::end(OwnKeys));
    std::erase_if(present, [&](const std::string &key) { return !classes.Has(key); });
    return present;
}

// A copy of the product for each test, since the scope that an installation chose stays with the loaded module.
class InstalledCopy
{
public:
    explicit InstalledCopy(bool isDamaged = false)
    {
        const fs::path source = fs::absolute(HALVORA_MODULE);
        const std::string bytes = m_folder.Read(source);
        // With a quote in the path, which a script must not take for the path's end.
        const fs::path file =
            m_folder.Write("halvora's" / source.filename(), isDamaged ? WithDamagedTypeLibrary(bytes) : bytes);
        m_module = LoadLibraryW(file.string<WCHAR>().c_str());
        EXPECT_NE(m_module, nullptr) << GetLastError();
    }

    ~InstalledCopy()
    {
        EXPECT_EQ(Call("DllCanUnloadNow"), S_OK);
        FreeLibrary(m_module);
    }

    HRESULT Call(const char *name) const
    {
        return reinterpret_cast<HRESULT(STDAPICALLTYPE *)()>(Exported(name))();
    }
    HRESULT Install(bool install, const WCHAR *commandLine) const
    {
        return reinterpret_cast<HRESULT(STDAPICALLTYPE *)(BOOL, LPCWSTR)>(Exported("DllInstall"))(install,
                                                                                                  commandLine);
    }
    WideText Path() const
    {
        WCHAR path[1024] = {};
        GetModuleFileNameW(m_module, path, 1024);
        return path;
    }

private:
    void *Exported(const char *name) const { return reinterpret_cast<void *>(GetProcAddress(m_module, name)); }

    static std::string WithDamagedTypeLibrary(std::string bytes)
    {
        const std::string signature("MSFT\x02\x00\x01\x00", 8);
        size_t found = bytes.find(signature);
        EXPECT_NE(found, std::string::npos);
        for (; found != std::string::npos; found = bytes.find(signature, found))
        {
            bytes.replace(found, 4, "XXXX");
        }
        return bytes;
    }

    TemporaryFolder m_folder;
    HMODULE m_module = nullptr;
};

class Registration : public testing::Test
{
protected:
    void SetUp() override { RemoveAll(); }
    void TearDown() override { RemoveAll(); }

    static void RemoveAll()
    {
        for (const Classes &classes : {MachineClasses, UserClasses})
        {
            for (const char *key : OwnKeys)
            {
                classes.Remove(key);
            }
        }
    }
};

// In place of the system's registrar: records each script's call, and fails at the second.
class FailingRegistrar final : public ComObject<FailingRegistrar, IRegistrar>
{
public:
    explicit FailingRegistrar(Lines &seen) : m_seen(seen) {}

    STDMETHODIMP ResourceRegister(LPCOLESTR, UINT id, LPCOLESTR) noexcept override
    {
        MakeKey(HKEY_CLASSES_ROOT, TEXT("Halvora.Test.Mark"));
        m_seen.push_back("apply " + std::to_string(id) +
                         (UserClasses.Has("Halvora.Test.Mark") ? " user" : " machine") +
                         (GetThreadLocale() == 0x407 ? " own locale" : ""));
        return id == 102 ? E_ACCESSDENIED : S_OK;
    }
    STDMETHODIMP ResourceUnregister(LPCOLESTR, UINT id, LPCOLESTR) noexcept override
    {
        m_seen.push_back("revert " + std::to_string(id));
        return id == 102 ? E_ACCESSDENIED : S_OK;
    }
    STDMETHODIMP AddReplacement(LPCOLESTR, LPCOLESTR) noexcept override { return S_OK; }
    STDMETHODIMP ClearReplacements() noexcept override { return S_OK; }
    STDMETHODIMP ResourceRegisterSz(LPCOLESTR, LPCOLESTR, LPCOLESTR) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP ResourceUnregisterSz(LPCOLESTR, LPCOLESTR, LPCOLESTR) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP FileRegister(LPCOLESTR) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP FileUnregister(LPCOLESTR) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP StringRegister(LPCOLESTR) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP StringUnregister(LPCOLESTR) noexcept override { return E_NOTIMPL; }

private:
    Lines &m_seen;
};
} // namespace

TEST_F(Registration, WritesEveryEntryForItsScopeAndTakesItBack)
{
    const struct
    {
        const WCHAR *commandLine; // null: DllRegisterServer
        const Classes &own;
        const Classes &other;
    } scopes[] = {{nullptr, MachineClasses, UserClasses},
                  {TEXT("USER"), UserClasses, MachineClasses},
                  {TEXT("users"), MachineClasses, UserClasses}};
    for (const auto &scope : scopes)
    {
        const InstalledCopy copy;
        const std::string module = Narrow(copy.Path());
        ASSERT_EQ(scope.commandLine ? copy.Install(true, scope.commandLine) : copy.Call("DllRegisterServer"),
                  S_OK);
        const Lines entries = {
            "AppID\\" APPLICATION_ID " = " PROG_ID,
            "AppID\\" PROG_ID ".dll [AppID] = " APPLICATION_ID,
            PROG_ID ".1 = Halvora Publish to Flickr Class",
            PROG_ID ".1\\CLSID = {46519402-3380-4D48-BC76-63FFAA27165C}",
            PROG_ID " = Halvora Publish to Flickr Class",
            PROG_ID "\\CLSID = {46519402-3380-4D48-BC76-63FFAA27165C}",
            PROG_ID "\\CurVer = " PROG_ID ".1",
            CLASS_KEY " = Halvora Publish to Flickr Class",
            CLASS_KEY "\\ProgID = " PROG_ID ".1",
            CLASS_KEY "\\VersionIndependentProgID = " PROG_ID,
            CLASS_KEY "\\InprocServer32 = " + module,
            CLASS_KEY "\\InprocServer32 [ThreadingModel] = Both",
            CLASS_KEY "\\TypeLib = {20FB81F4-2558-4961-B33E-75C9A90642E9}",
        };
        const Lines libraryEntries = {
            LIBRARY_KEY "\\1.0 = Halvora Publish to Flickr 1.0 Type Library",
            LIBRARY_KEY "\\1.0\\409\\win64 = " + module,
            LIBRARY_KEY "\\1.0\\FLAGS = " + std::string(UnderWine ? "8" : "0"), // Wine adds that it has a file
            INTERFACE_KEY " = IHalvoraPublishingPlugin",
            INTERFACE_KEY "\\TypeLib = {20FB81F4-2558-4961-B33E-75C9A90642E9}",
            INTERFACE_KEY "\\TypeLib [Version] = 1.0",
        };
        // Wine registers a user's type library for the machine.
        const Classes &libraryOwner = UnderWine ? MachineClasses : scope.own;
        EXPECT_EQ(scope.own.Lacking(entries), Lines());
        EXPECT_EQ(libraryOwner.Lacking(libraryEntries), Lines());
        EXPECT_TRUE(scope.own.Has(CLASS_KEY "\\Programmable"));
        EXPECT_TRUE(scope.own.Has(CLASS_KEY "\\Implemented Categories\\{5EE4545B-143B-4f11-B9B3-F919653EB62F}"));
        const bool isLibraryAstray = &libraryOwner != &scope.own;
        EXPECT_THAT(PresentKeys(scope.other), isLibraryAstray ? testing::ElementsAre(LIBRARY_KEY, INTERFACE_KEY)
                                                              : testing::Matcher<Lines>(testing::IsEmpty()));

        EXPECT_EQ(scope.commandLine ? copy.Install(false, scope.commandLine) : copy.Call("DllUnregisterServer"),
                  S_OK);
        EXPECT_THAT(PresentKeys(scope.own), testing::IsEmpty());
        EXPECT_THAT(PresentKeys(scope.other), testing::IsEmpty());
        EXPECT_TRUE(scope.own.Has("CLSID") && scope.own.Has("AppID"));
        EXPECT_EQ(copy.Call("DllUnregisterServer"), S_OK) << "nothing is left to remove";
    }
}

TEST_F(Registration, TheScopeOfAnInstallationHoldsForTheProcess)
{
    const InstalledCopy copy;
    EXPECT_EQ(copy.Install(true, TEXT("user")), S_OK);
    EXPECT_EQ(copy.Call("DllUnregisterServer"), S_OK);
    EXPECT_THAT(PresentKeys(UserClasses), testing::IsEmpty());
}

TEST_F(Registration, AnUnreadableTypeLibraryUndoesAnInstallationButNotARegistration)
{
    const InstalledCopy copy(true);
    EXPECT_EQ(copy.Install(true, nullptr), TYPE_E_CANTLOADLIBRARY);
    EXPECT_THAT(PresentKeys(MachineClasses), testing::IsEmpty());
    EXPECT_EQ(copy.Call("DllRegisterServer"), TYPE_E_CANTLOADLIBRARY);
    EXPECT_EQ(MachineClasses.Text(CLASS_KEY "\\InprocServer32"), Narrow(copy.Path()));
    EXPECT_EQ(copy.Install(true, TEXT("user")), TYPE_E_CANTLOADLIBRARY);
    EXPECT_THAT(PresentKeys(UserClasses), testing::IsEmpty());
    EXPECT_TRUE(MachineClasses.Has(CLASS_KEY)) << "the user's installation leaves the machine's alone";
}

TEST_F(Registration, LeavesWhatOthersWrote)
{
    const InstalledCopy copy;
    MachineClasses.Make("AppID\\Halvora.Test.Foreign");
    MachineClasses.Make(CLASS_KEY "\\Left by another version");
    ASSERT_EQ(copy.Call("DllRegisterServer"), S_OK);
    EXPECT_FALSE(MachineClasses.Has(CLASS_KEY "\\Left by another version")) << "the class begins anew";
    EXPECT_EQ(copy.Call("DllUnregisterServer"), S_OK);
    EXPECT_TRUE(MachineClasses.Has("AppID\\Halvora.Test.Foreign"));
    MachineClasses.Remove("AppID\\Halvora.Test.Foreign");
}

TEST_F(Registration, AFailingScriptLeavesLocaleAndMappingAsTheyWere)
{
    const LCID before = GetThreadLocale();
    SetThreadLocale(0x407);
    Lines seen;
    {
        const InstalledCopy copy;
        const ClassInPlace registrar(CLSID_Registrar, [&](REFIID iid, void **object) {
            return FailingRegistrar::CreateInstance(nullptr, iid, object, seen);
        });
        EXPECT_EQ(copy.Install(true, TEXT("User")), E_ACCESSDENIED);
        EXPECT_EQ(copy.Call("DllUnregisterServer"), E_ACCESSDENIED) << "though the last step succeeds";
    }
    EXPECT_EQ(seen,
              (Lines{"apply 100 user", "apply 102 user", "revert 102", "revert 100", "revert 102", "revert 100"}));
    EXPECT_EQ(GetThreadLocale(), 0x407u);
    SetThreadLocale(before);
    UserClasses.Remove("Halvora.Test.Mark");
    EXPECT_FALSE(MachineClasses.Has("Halvora.Test.Mark"));
    MakeKey(HKEY_CLASSES_ROOT, TEXT("Halvora.Test.Mark"));
    EXPECT_TRUE(MachineClasses.Has("Halvora.Test.Mark")) << "the classes are the machine's again";
    MachineClasses.Remove("Halvora.Test.Mark");
}

TEST_F(Registration, TheTypeLibraryTellsClassInterfaceAndSet)
{
    const InstalledCopy copy;
    ComPtr<ITypeLib> library;
    ASSERT_EQ(LoadTypeLibEx(copy.Path().c_str(), REGKIND_NONE, library.Put()), S_OK);
    TLIBATTR *attributes = nullptr;
    ASSERT_EQ(library->GetLibAttr(&attributes), S_OK);
    EXPECT_TRUE(attributes->guid == LIBID_HVRPublishToFlickrLib);
    EXPECT_EQ(attributes->wMajorVerNum, 1);
    EXPECT_EQ(attributes->wMinorVerNum, 0);
    EXPECT_EQ(attributes->lcid, 0x409u);
    EXPECT_EQ(attributes->syskind, SYS_WIN64);
    library->ReleaseTLibAttr(attributes);
    Lines types;
    for (INT i = -1; i < static_cast<INT>(library->GetTypeInfoCount()); ++i)
    {
        BstrOwner name;
        BstrOwner help;
        ASSERT_EQ(library->GetDocumentation(i, name.Put(), help.Put(), nullptr, nullptr), S_OK);
        types.push_back(Narrow(name.View()) + ": " + Narrow(help.View()));
    }
    EXPECT_THAT(types, testing::ElementsAre("HVRPublishToFlickrLib: Halvora Publish to Flickr 1.0 Type Library",
                                            "tagHVRPUBLISHINGCAPABILITIES: ",
                                            "IHalvoraPublishingPlugin: IHalvoraPublishingPlugin Interface",
                                            "FlickrPublisher: Halvora FlickrPublisher Class"));
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(library->GetTypeInfoOfGuid(__uuidof(IHalvoraPublishingPlugin), info.Put()), S_OK);
    DISPID expected = 0;
    for (const char *name : {"Initialize", "Terminate", "GetCapabilities", "GetIcon", "GetDisplayName",
                             "GetDescription", "GetAuthorInformation", "GetVersionInformation", "GetDisplayState",
                             "Configure", "Publish", "CanPublish", "Cancel"})
    {
        WideText wide = Wide(name);
        LPOLESTR text = wide.data();
        DISPID id = 0;
        EXPECT_EQ(info->GetIDsOfNames(&text, 1, &id), S_OK) << name;
        EXPECT_EQ(id, ++expected) << name;
    }
}
