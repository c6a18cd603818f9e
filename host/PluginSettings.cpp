#include "host/PluginSettings.h"

#include "settings/SettingsStore.h"
#include "settings/StoredSettings.h"

#include "com/HandleOwner.h"

namespace
{
constexpr std::array<TextSwitches::Text, 3> Texts = {
    {{TEXT("WriteTitle"), "titles"}, {TEXT("WriteDescription"), "descriptions"}, {TEXT("WriteTags"), "tags"}}};
}

HRESULT MakeSettingsKey()
{
    RegistryKeyOwner key;
    if (RegOpenKeyExW(HKEY_CURRENT_USER, SettingsKeyPath, 0, KEY_READ, key.Put()) == ERROR_SUCCESS)
    {
        return S_OK;
    }
    return HRESULT_FROM_WIN32(RegCreateKeyExW(HKEY_CURRENT_USER, SettingsKeyPath, 0, nullptr, 0,
                                              KEY_READ | KEY_WRITE, nullptr, key.Put(), nullptr));
}

TextSwitches::TextSwitches()
{
    const SettingsReader reader;
    for (size_t i = 0; i < Texts.size(); ++i)
    {
        m_areSent[i] = reader.Number(Texts[i].setting) != 0;
    }
}

std::vector<TextSwitches::Text> TextSwitches::NoLongerSentSince(const TextSwitches &before) const
{
    std::vector<Text> texts;
    for (size_t i = 0; i < Texts.size(); ++i)
    {
        if (before.m_areSent[i] && !m_areSent[i])
        {
            texts.push_back(Texts[i]);
        }
    }
    return texts;
}
