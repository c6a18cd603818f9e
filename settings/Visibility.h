// Who may see a published picture: one choice of five on the page "Photos", stored as the three numbers that the
// service takes. The stored numbers are sent as they are, so that a user may store combinations that the page
// doesn't offer.
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

// index must be below VisibilityChoices. "Anyone" is stored with all three numbers at 1.
VisibilityNumbers NumbersOfVisibility(UINT32 index) noexcept;

// Any number other than 0 means yes; if IsPublic does, the other two are ignored.
UINT32 VisibilityOfNumbers(const VisibilityNumbers &numbers) noexcept;
