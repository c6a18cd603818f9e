// ICU's headers come first: the Windows headers make them take the system for Windows.
#include <unicode/uchar.h>

#include "platform/advapi32/RegistryTree.h"

#include <algorithm>

namespace
{
constexpr WCHAR Separator = u'\\';

bool IsBlank(const RegistryLine &line)
{
    return !line.isValue && line.text.find_first_not_of(" \t") == std::string::npos;
}

bool IsForeignSection(const RegistryLine &line)
{
    const size_t start = line.text.find_first_not_of(" \t");
    return !line.isValue && start != std::string::npos && line.text[start] == '[';
}
} // namespace

WideText FoldRegistryName(WideView name)
{
    WideText folded(name);
    for (WCHAR &unit : folded)
    {
        // Unit by unit, as Windows does: a letter whose capital takes more units stays as it is.
        const UChar32 upper = u_toupper(unit);
        unit = upper <= 0xFFFF ? static_cast<WCHAR>(upper) : unit;
    }
    return folded;
}

WideView TakeFirstName(WideView &path)
{
    const size_t end = std::min(path.find(Separator), path.size());
    const WideView name = path.substr(0, end);
    path.remove_prefix(std::min(end + 1, path.size()));
    return name;
}

const RegistryLine *RegistryKey::FindValue(WideView valueName) const
{
    const WideText folded = FoldRegistryName(valueName);
    const auto found = std::find_if(lines.begin(), lines.end(), [&](const RegistryLine &line) {
        return line.isValue && line.name.size() == folded.size() && FoldRegistryName(line.name) == folded;
    });
    return found == lines.end() ? nullptr : &*found;
}

RegistryLine *RegistryKey::FindValue(WideView valueName)
{
    return const_cast<RegistryLine *>(static_cast<const RegistryKey *>(this)->FindValue(valueName));
}

size_t RegistryKey::CountValues() const
{
    return std::count_if(lines.begin(), lines.end(), [](const auto &line) { return line.isValue; });
}

void RegistryKey::SetValue(WideView valueName, DWORD type, std::vector<BYTE> data)
{
    RegistryLine *line = FindValue(valueName);
    if (line == nullptr)
    {
        // Before the lines after the last value: blank ones, or a section that was not understood.
        auto end = std::find_if(lines.begin(), lines.end(), IsForeignSection);
        while (end != lines.begin() && IsBlank(*(end - 1)))
        {
            --end;
        }
        line = &*lines.insert(end, RegistryLine{true, WideText(valueName)});
    }
    line->type = type;
    line->data = std::move(data);
    line->text.clear();
}

bool RegistryKey::DeleteValue(WideView valueName)
{
    const RegistryLine *line = FindValue(valueName);
    if (line == nullptr)
    {
        return false;
    }
    lines.erase(lines.begin() + (line - lines.data()));
    return true;
}

RegistryTree::RegistryTree()
{
    // These exist before anything is written to them, and have no sections in the file.
    for (const WideView path :
         {WideView(TEXT("HKEY_CURRENT_USER")), WideView(TEXT("HKEY_LOCAL_MACHINE\\Software\\Classes"))})
    {
        Make(path).position = 0;
    }
    lastPosition = 0;
}

const RegistryKey *RegistryTree::Find(WideView path) const
{
    const RegistryKey *key = &root;
    while (!path.empty())
    {
        const auto child = key->children.find(FoldRegistryName(TakeFirstName(path)));
        if (child == key->children.end())
        {
            return nullptr;
        }
        key = child->second.get();
    }
    return key;
}

RegistryKey *RegistryTree::Find(WideView path)
{
    return const_cast<RegistryKey *>(static_cast<const RegistryTree *>(this)->Find(path));
}

RegistryKey &RegistryTree::Make(WideView path)
{
    RegistryKey *key = &root;
    while (!path.empty())
    {
        const WideView name = TakeFirstName(path);
        auto &child = key->children[FoldRegistryName(name)];
        if (child == nullptr)
        {
            child = std::make_unique<RegistryKey>();
            child->name = name;
        }
        key = child.get();
    }
    key->position = key->position ? key->position : ++lastPosition;
    return *key;
}

void RegistryTree::Delete(WideView path)
{
    const size_t end = path.rfind(Separator);
    if (end == WideView::npos)
    {
        return;
    }
    if (RegistryKey *parent = Find(path.substr(0, end)))
    {
        parent->children.erase(FoldRegistryName(path.substr(end + 1)));
        // Keep the parent: it may have existed only implicitly, through this child's section.
        parent->position = parent->position ? parent->position : ++lastPosition;
    }
}
