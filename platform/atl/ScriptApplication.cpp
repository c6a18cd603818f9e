#include "platform/atl/ScriptApplication.h"

#include "com/HandleOwner.h"
#include "com/Hresult.h"

namespace
{
void ThrowIfError(LSTATUS status)
{
    ThrowIfFailed(HRESULT_FROM_WIN32(static_cast<DWORD>(status)));
}

void ThrowUnlessGone(LSTATUS status)
{
    if (status != ERROR_FILE_NOT_FOUND)
    {
        ThrowIfError(status);
    }
}

void SetValue(HKEY key, const WCHAR *name, const ScriptValue &value)
{
    ThrowIfError(
        RegSetValueExW(key, name, 0, value.type, value.data.data(), static_cast<DWORD>(value.data.size())));
}

void Apply(HKEY parent, const ScriptKey &wanted)
{
    const WCHAR *const name = wanted.name.c_str();
    if (wanted.action == ScriptAction::Delete || wanted.action == ScriptAction::ForceRemove)
    {
        ThrowUnlessGone(RegDeleteTreeW(parent, name));
    }
    if (wanted.action == ScriptAction::Delete)
    {
        return;
    }
    RegistryKeyOwner key;
    ThrowIfError(RegCreateKeyExW(parent, name, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_READ | KEY_WRITE, nullptr,
                                 key.Put(), nullptr));
    if (wanted.value)
    {
        SetValue(key.Get(), nullptr, *wanted.value);
    }
    for (const ScriptKey::NamedValue &named : wanted.values)
    {
        SetValue(key.Get(), named.name.c_str(), named.value);
    }
    for (const ScriptKey &child : wanted.keys)
    {
        Apply(key.Get(), child);
    }
}

bool HasSubkeys(HKEY key)
{
    DWORD count = 0;
    ThrowIfError(RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr, nullptr,
                                  nullptr, nullptr, nullptr));
    return count != 0;
}

void Revert(HKEY parent, const ScriptKey &wanted)
{
    const WCHAR *const name = wanted.name.c_str();
    if (wanted.action == ScriptAction::Delete)
    {
        return;
    }
    if (wanted.action == ScriptAction::ForceRemove)
    {
        return ThrowUnlessGone(RegDeleteTreeW(parent, name));
    }
    RegistryKeyOwner key;
    const LSTATUS opened = RegOpenKeyExW(parent, name, 0, KEY_READ | KEY_WRITE, key.Put());
    if (opened == ERROR_FILE_NOT_FOUND)
    {
        return;
    }
    ThrowIfError(opened);
    for (auto child = wanted.keys.rbegin(); child != wanted.keys.rend(); ++child)
    {
        Revert(key.Get(), *child);
    }
    for (const ScriptKey::NamedValue &named : wanted.values)
    {
        if (!named.isLeft)
        {
            ThrowUnlessGone(RegDeleteValueW(key.Get(), named.name.c_str()));
        }
    }
    if (wanted.action == ScriptAction::NoRemove || HasSubkeys(key.Get()))
    {
        return;
    }
    key.Reset();
    ThrowUnlessGone(RegDeleteKeyW(parent, name));
}
} // namespace

void RevertScript(const std::vector<ScriptRoot> &roots)
{
    for (auto root = roots.rbegin(); root != roots.rend(); ++root)
    {
        for (auto key = root->keys.rbegin(); key != root->keys.rend(); ++key)
        {
            Revert(root->root, *key);
        }
    }
}

void ApplyScript(const std::vector<ScriptRoot> &roots)
{
    const HRESULT result = AtBoundary([&] {
        for (const ScriptRoot &root : roots)
        {
            for (const ScriptKey &key : root.keys)
            {
                Apply(root.root, key);
            }
        }
        return S_OK;
    });
    if (FAILED(result))
    {
        AtBoundary([&] {
            RevertScript(roots);
            return S_OK;
        });
        ThrowHresult(result);
    }
}
