#include "host/TextSwitches.h"

#include "settings/SettingsStore.h"

namespace
{
constexpr std::array<TextSwitches::Text, 3> Texts = {
    {{TEXT("WriteTitle"), "titles"}, {TEXT("WriteDescription"), "descriptions"}, {TEXT("WriteTags"), "tags"}}};
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
