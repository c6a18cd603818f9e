#include "terminal/DialogAnswer.h"

#include "terminal/TerminalText.h"

#include <algorithm>

namespace
{
std::u16string_view WithoutBlanks(std::u16string_view text)
{
    const size_t start = text.find_first_not_of(u' ');
    return start == text.npos ? std::u16string_view()
                              : text.substr(start, text.find_last_not_of(u' ') - start + 1);
}

// The button with the typed number, counted from 1.
const DialogButton *Numbered(const DialogPage &page, std::u16string_view typed)
{
    for (size_t i = 0; i < page.Buttons.size(); ++i)
    {
        const std::string number = std::to_string(i + 1);
        if (std::ranges::equal(number, typed))
        {
            return &page.Buttons[i];
        }
    }
    return nullptr;
}

// The button whose text is the name, otherwise the only one whose text begins with it.
const DialogButton *Named(const DialogPage &page, std::u16string_view name)
{
    const DialogButton *beginning = nullptr;
    bool isAmbiguous = false;
    for (const DialogButton &button : page.Buttons)
    {
        if (!BeginsWithIgnoringCase(button.Text, name))
        {
            continue;
        }
        if (BeginsWithIgnoringCase(name, button.Text))
        {
            return &button;
        }
        isAmbiguous = beginning != nullptr;
        beginning = &button;
    }
    return isAmbiguous ? nullptr : beginning;
}
} // namespace

DialogAnswer ReadAnswer(const DialogPage &page, std::u16string_view typed)
{
    const std::u16string_view answer = WithoutBlanks(typed);
    if (answer.empty())
    {
        const auto found = std::ranges::find(page.Buttons, page.DefaultButton, &DialogButton::Id);
        return {found == page.Buttons.end() ? nullptr : &*found};
    }
    if (!page.ExpandedText.empty() && (answer == u"+" || answer == u"-"))
    {
        return {nullptr, true};
    }
    const DialogButton *const numbered = Numbered(page, answer);
    return {numbered != nullptr ? numbered : Named(page, answer)};
}
