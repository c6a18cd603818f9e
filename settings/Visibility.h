// Who may see a published photo: one choice of five, stored as three numbers.
#pragma once

#include <windows.h>

struct VisibilityNumbers
{
    UINT32 IsPublic;
    UINT32 IsFriend;
    UINT32 IsFamily;
};

// 0 anyone, 1 family and friends, 2 friends, 3 family, 4 only the user.
constexpr UINT32 VisibilityChoices = 5;

// index is below VisibilityChoices. Anyone is stored with all three numbers set.
VisibilityNumbers NumbersOfVisibility(UINT32 index) noexcept;

// Numbers other than 0 all mean yes; where IsPublic does, the other two don't matter.
UINT32 VisibilityOfNumbers(const VisibilityNumbers &numbers) noexcept;
