// What a host of either build has to do with the plug-in's settings.
#pragma once

#include <windows.h>

#include <array>
#include <string>
#include <vector>

// Makes the key of the settings, which the plug-in itself never makes, where it is missing.
HRESULT MakeSettingsKey();

// Which of a picture's texts are sent along with it: title, description and tags.
//
// Until the settings sheet's first OK all three are sent, though the sheet shows them as off; OK stores what it
// shows. A host that compares the switches before and after can tell the user what has changed.
class TextSwitches
{
public:
    // As they are in the settings now.
    TextSwitches();

    struct Text
    {
        const WCHAR *setting;
        const char *words; // as in "titles are no longer sent"
    };

    // The texts that were sent before and aren't sent now.
    std::vector<Text> NoLongerSentSince(const TextSwitches &before) const;

private:
    std::array<bool, 3> m_areSent{};
};
