#include "platform/atl/Registrar.h"

#include "com/ClassFactory.h"
#include "com/ComObject.h"
#include "com/HandleOwner.h"
#include "platform/atl/ScriptApplication.h"
#include "platform/kernel32/PathText.h"
#include "platform/kernel32/Utf8.h"

#include "RegistrarInterface.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace
{
using Operation = void (*)(const std::vector<ScriptRoot> &);

struct ModulePolicy
{
    using Handle = HMODULE;
    static Handle Empty() noexcept { return nullptr; }
    static void Free(Handle handle) noexcept { FreeLibrary(handle); }
};
using ModuleOwner = HandleOwner<ModulePolicy>;

[[noreturn]] void ThrowLastError()
{
    ThrowHresult(HRESULT_FROM_WIN32(GetLastError()));
}

// A script is text in bytes; one that begins with a byte order mark is UTF-16.
WideText TextOfBytes(const char *bytes, size_t size)
{
    if (size >= 2 && bytes[0] == '\xFF' && bytes[1] == '\xFE')
    {
        WideText text(size / sizeof(WCHAR) - 1, 0);
        std::copy_n(bytes + sizeof(WCHAR), text.size() * sizeof(WCHAR), reinterpret_cast<char *>(text.data()));
        return text;
    }
    WideText text = FromUtf8(std::string_view(bytes, size));
    text.resize(std::min(text.size(), text.find(WCHAR{0})));
    return text;
}

WideText ScriptOfResource(const WCHAR *file, const WCHAR *name, const WCHAR *type)
{
    // A program isn't loaded like a module, but may have scripts too.
    ModuleOwner module;
    if (!GetModuleHandleExW(0, file, module.Put()))
    {
        module = ModuleOwner(LoadLibraryW(file));
    }
    const HRSRC found = module ? FindResourceW(module.Get(), name, type) : nullptr;
    if (found == nullptr)
    {
        ThrowLastError();
    }
    const HGLOBAL loaded = LoadResource(module.Get(), found);
    return TextOfBytes(static_cast<const char *>(LockResource(loaded)), SizeofResource(module.Get(), found));
}

WideText ScriptOfFile(const WCHAR *file)
{
    std::ifstream stream(PathToBytes(file), std::ios::binary);
    if (!stream)
    {
        ThrowHresult(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND));
    }
    const std::string bytes(std::istreambuf_iterator<char>(stream), {});
    return TextOfBytes(bytes.data(), bytes.size());
}

class CRegistrar final : public ComObject<CRegistrar, IRegistrar>
{
public:
    STDMETHODIMP AddReplacement(LPCOLESTR key, LPCOLESTR item) noexcept override
    {
        if (key == nullptr || item == nullptr)
        {
            return E_INVALIDARG;
        }
        return AtBoundary([&] {
            m_replacements[UpperCaseName(key)] = item;
            return S_OK;
        });
    }

    STDMETHODIMP ClearReplacements() noexcept override
    {
        m_replacements.clear();
        return S_OK;
    }

    STDMETHODIMP ResourceRegisterSz(LPCOLESTR file, LPCOLESTR name, LPCOLESTR type) noexcept override
    {
        return RunResource(file, name, type, ApplyScript);
    }
    STDMETHODIMP ResourceUnregisterSz(LPCOLESTR file, LPCOLESTR name, LPCOLESTR type) noexcept override
    {
        return RunResource(file, name, type, RevertScript);
    }
    STDMETHODIMP ResourceRegister(LPCOLESTR file, UINT id, LPCOLESTR type) noexcept override
    {
        return RunResource(file, MAKEINTRESOURCEW(id), type, ApplyScript);
    }
    STDMETHODIMP ResourceUnregister(LPCOLESTR file, UINT id, LPCOLESTR type) noexcept override
    {
        return RunResource(file, MAKEINTRESOURCEW(id), type, RevertScript);
    }

    STDMETHODIMP FileRegister(LPCOLESTR file) noexcept override { return RunFile(file, ApplyScript); }
    STDMETHODIMP FileUnregister(LPCOLESTR file) noexcept override { return RunFile(file, RevertScript); }
    STDMETHODIMP StringRegister(LPCOLESTR script) noexcept override { return RunText(script, ApplyScript); }
    STDMETHODIMP StringUnregister(LPCOLESTR script) noexcept override { return RunText(script, RevertScript); }

private:
    HRESULT RunResource(LPCOLESTR file, LPCOLESTR name, LPCOLESTR type, Operation operation) noexcept
    {
        if (file == nullptr || name == nullptr || type == nullptr)
        {
            return E_INVALIDARG;
        }
        return Run([&] { return ScriptOfResource(file, name, type); }, operation);
    }

    HRESULT RunFile(LPCOLESTR file, Operation operation) noexcept
    {
        return file == nullptr ? E_INVALIDARG : Run([&] { return ScriptOfFile(file); }, operation);
    }

    HRESULT RunText(LPCOLESTR script, Operation operation) noexcept
    {
        return script == nullptr ? E_INVALIDARG : Run([&] { return WideText(script); }, operation);
    }

    template <class Script>
    HRESULT Run(Script script, Operation operation) noexcept
    {
        return AtBoundary([&] {
            operation(ReadRegistryScript(script(), m_replacements));
            return S_OK;
        });
    }

    ScriptReplacements m_replacements;
};
} // namespace

IClassFactory *RegistrarFactory()
{
    static ClassFactory<CRegistrar> factory;
    return &factory;
}
