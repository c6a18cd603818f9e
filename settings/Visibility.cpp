#include "settings/Visibility.h"

namespace
{
constexpr VisibilityNumbers Choices[VisibilityChoices] = {
    {1, 1, 1}, {0, 1, 1}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0},
};
} // namespace

VisibilityNumbers NumbersOfVisibility(UINT32 index) noexcept
{
    return Choices[index];
}

UINT32 VisibilityOfNumbers(const VisibilityNumbers &numbers) noexcept
{
    if (numbers.IsPublic != 0)
    {
        return 0;
    }
    UINT32 index = 1;
    while (Choices[index].IsFriend != (numbers.IsFriend != 0) ||
           Choices[index].IsFamily != (numbers.IsFamily != 0))
    {
        ++index;
    }
    return index;
}
