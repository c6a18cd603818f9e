#include "platform/advapi32/OpenKeys.h"

#include <map>
#include <mutex>

namespace
{
constexpr size_t LongestName = 255;

struct OpenKey
{
    KeyPlace place;
    REGSAM access;
};

std::mutex tableLock;

std::map<HKEY, OpenKey> &Table()
{
    static auto *table = new std::map<HKEY, OpenKey>;
    return *table;
}

// The keys that predefined keys stand for in this process.
std::map<HKEY, OpenKey> &Mappings()
{
    static auto *mappings = new std::map<HKEY, OpenKey>;
    return *mappings;
}

const KeyPlace *PredefinedPlace(HKEY key)
{
    struct Predefined
    {
        HKEY key;
        KeyPlace place;
    };
    static const auto *const All = new std::vector<Predefined>{
        {HKEY_CLASSES_ROOT,
         KeyPlace({TEXT("HKEY_CURRENT_USER\\Software\\Classes"), TEXT("HKEY_LOCAL_MACHINE\\Software\\Classes")})},
        {HKEY_CURRENT_USER, KeyPlace({TEXT("HKEY_CURRENT_USER")})},
        {HKEY_LOCAL_MACHINE, KeyPlace({TEXT("HKEY_LOCAL_MACHINE")})},
    };
    for (const Predefined &predefined : *All)
    {
        if (predefined.key == key)
        {
            return &predefined.place;
        }
    }
    return nullptr;
}

REGSAM SpecificRights(REGSAM access)
{
    static constexpr struct
    {
        REGSAM generic;
        REGSAM specific;
    } rights[] = {{GENERIC_READ, KEY_READ},
                  {GENERIC_WRITE, KEY_WRITE},
                  {GENERIC_EXECUTE, KEY_EXECUTE},
                  {GENERIC_ALL | MAXIMUM_ALLOWED, KEY_ALL_ACCESS}};
    for (const auto &right : rights)
    {
        access |= access & right.generic ? right.specific : 0;
    }
    return access;
}

// Several backslashes in a row, or at the end, count as one or none.
LSTATUS NormalizeSubkey(WideView subkey, WideText &path)
{
    if (!subkey.empty() && subkey[0] == u'\\')
    {
        return ERROR_BAD_PATHNAME;
    }
    while (!subkey.empty())
    {
        const WideView name = TakeFirstName(subkey);
        if (name.size() > LongestName)
        {
            return ERROR_INVALID_PARAMETER;
        }
        if (!name.empty())
        {
            path += path.empty() ? TEXT("") : TEXT("\\");
            path += name;
        }
    }
    return ERROR_SUCCESS;
}
} // namespace

KeyPlace KeyPlace::Below(WideView subkey) const
{
    std::vector<WideText> paths = m_paths;
    for (WideText &path : paths)
    {
        path += subkey.empty() ? WideText() : TEXT("\\") + WideText(subkey);
    }
    return KeyPlace(std::move(paths));
}

std::vector<const RegistryKey *> KeyPlace::FindAll(const RegistryTree &tree) const
{
    std::vector<const RegistryKey *> keys;
    for (const WideText &path : m_paths)
    {
        if (const RegistryKey *key = tree.Find(path))
        {
            keys.push_back(key);
        }
    }
    return keys;
}

const WideText &KeyPlace::Path(const RegistryTree &tree) const
{
    for (const WideText &path : m_paths)
    {
        if (tree.Find(path) != nullptr)
        {
            return path;
        }
    }
    return m_paths.back();
}

const RegistryKey *KeyPlace::Find(const RegistryTree &tree) const
{
    return tree.Find(Path(tree));
}

RegistryKey *KeyPlace::Find(RegistryTree &tree) const
{
    return tree.Find(Path(tree));
}

HKEY OpenHandle(KeyPlace place, REGSAM access)
{
    const std::lock_guard guard(tableLock);
    static ULONG_PTR last = 0x100;
    // A value is never used again, so that a closed handle is recognised.
    const auto key = reinterpret_cast<HKEY>(last += 4);
    Table().emplace(key, OpenKey{std::move(place), SpecificRights(access)});
    return key;
}

LSTATUS CloseHandleOf(HKEY key)
{
    const std::lock_guard guard(tableLock);
    return PredefinedPlace(key) || Table().erase(key) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE;
}

LSTATUS MapPredefinedKey(HKEY key, HKEY target)
{
    if (PredefinedPlace(key) == nullptr)
    {
        return ERROR_INVALID_HANDLE;
    }
    const std::lock_guard guard(tableLock);
    if (target == nullptr)
    {
        Mappings().erase(key);
        return ERROR_SUCCESS;
    }
    const auto found = Table().find(target);
    if (found == Table().end())
    {
        return ERROR_INVALID_HANDLE;
    }
    Mappings().insert_or_assign(key, found->second);
    return ERROR_SUCCESS;
}

LSTATUS LocateKey(HKEY key, LPCWSTR subkey, REGSAM needed, KeyPlace &place)
{
    const std::lock_guard guard(tableLock);
    const auto mapped = Mappings().find(key);
    const KeyPlace *base = mapped == Mappings().end() ? PredefinedPlace(key) : nullptr;
    if (base == nullptr)
    {
        const auto found = mapped == Mappings().end() ? Table().find(key) : mapped;
        if (found == Table().end())
        {
            return ERROR_INVALID_HANDLE;
        }
        if ((found->second.access & needed) != needed)
        {
            return ERROR_ACCESS_DENIED;
        }
        base = &found->second.place;
    }
    WideText path;
    const LSTATUS result = NormalizeSubkey(subkey ? WideView(subkey) : WideView(), path);
    place = base->Below(path);
    return result;
}
