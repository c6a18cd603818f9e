#include "platform/advapi32/RegistryContent.h"

#include "platform/user32/CaseMapping.h"

#include <algorithm>

namespace
{
template <class Values>
auto FindNamed(Values &values, WideView name)
{
    const WideText folded = FoldRegistryName(name);
    return std::ranges::find_if(values, [&](const auto &value) { return FoldRegistryName(value.name) == folded; });
}
} // namespace

WideText FoldRegistryName(WideView name)
{
    WideText folded(name);
    std::ranges::transform(folded, folded.begin(), UpperCase);
    return folded;
}

const RegistryValue *RegistryKey::FindValue(WideView name) const
{
    const auto found = FindNamed(values, name);
    return found == values.end() ? nullptr : &*found;
}

void RegistryKey::SetValue(RegistryValue value)
{
    if (const auto found = FindNamed(values, value.name); found != values.end())
    {
        found->type = value.type;
        found->data = std::move(value.data);
        return;
    }
    values.push_back(std::move(value));
}

bool RegistryKey::DeleteValue(WideView name)
{
    const auto found = FindNamed(values, name);
    if (found == values.end())
    {
        return false;
    }
    values.erase(found);
    return true;
}

bool RegistryContent::HasBelow(WideView path) const
{
    const WideText start = FoldRegistryName(path) + u'\\';
    const auto next = m_keys.lower_bound(start);
    return next != m_keys.end() && next->first.starts_with(start);
}

bool RegistryContent::Has(WideView path) const
{
    return path.empty() || Find(path) != nullptr || HasBelow(path);
}

const RegistryKey *RegistryContent::Find(WideView path) const
{
    const auto found = m_keys.find(FoldRegistryName(path));
    return found == m_keys.end() ? nullptr : &found->second;
}

RegistryKey &RegistryContent::Make(WideView path)
{
    return m_keys.try_emplace(FoldRegistryName(path), RegistryKey{WideText(path), {}}).first->second;
}

void RegistryContent::Delete(WideView path)
{
    m_keys.erase(FoldRegistryName(path));
}
