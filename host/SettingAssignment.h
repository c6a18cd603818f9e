// A user's NAME=VALUE, or NAME alone, for one of the stored settings.
#pragma once

#include "settings/StoredSettings.h"

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

// A name alone: nothing is to be changed.
struct SettingQuestion
{
};

// One checked change. Without a value the setting goes back to its default.
struct SettingAssignment
{
    const StoredSetting *setting = nullptr;
    std::variant<std::monostate, UINT32, WideText, SettingQuestion> value;
};

// The change, or what is wrong with the text and what would be right. Names may be written in any case. Numbers
// are decimal, or the word that the setting's meaning has for the number; where only 0 and 1 are allowed, on/off,
// yes/no and true/false too. Output sizes become
// the plug-in's display form, in the user's locale; one of which the plug-in would not read every character, or
// that it could not read back, is refused.
std::variant<SettingAssignment, std::string> ParseSettingAssignment(std::string_view text);

// All of them; what is wrong with those that are is added to faults.
std::vector<SettingAssignment> ParseSettingAssignments(const std::vector<std::string> &texts,
                                                       std::vector<std::string> &faults);
