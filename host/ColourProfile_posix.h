// Colour profiles in pictures (ICC.1).
#pragma once

#include <optional>
#include <string>
#include <string_view>

enum class ColourKind
{
    Gray,
    Screen, // red, green, blue
    Ink     // cyan, magenta, yellow, black
};

// The standard's numbers of the ways to convert colours that the target doesn't have.
enum class ProfileIntent
{
    Perceptual = 0,
    RelativeColorimetric = 1
};

// How colours of this kind are converted by the profile to those of a screen: with the colours that both have kept,
// if the profile can do that. Nothing if it can't be used: it is of another kind, as programs leave it that turn a
// picture gray, or it is damaged.
std::optional<ProfileIntent> IntentFor(std::string_view profile, ColourKind kind);

// The profile of Adobe RGB (1998), for pictures that name it and don't hold it. Empty if there isn't the memory for
// it. Any thread.
const std::string &AdobeRgbProfile();
