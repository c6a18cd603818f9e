#include "platform/terminal/DialogAnswer.h"

#include "platform/terminal/DialogDrawing.h"
#include "platform/terminal/TerminalText.h"

#include <algorithm>
#include <optional>

namespace
{
std::u16string_view WithoutBlanks(std::u16string_view text)
{
    const size_t start = text.find_first_not_of(u' ');
    return start == text.npos ? std::u16string_view()
                              : text.substr(start, text.find_last_not_of(u' ') - start + 1);
}

// The index that a typed number from 1 to count means.
std::optional<size_t> Numbered(std::u16string_view text, size_t count)
{
    size_t number = 0;
    for (const char16_t unit : text)
    {
        if (unit < u'0' || unit > u'9' || number > count)
        {
            return std::nullopt;
        }
        number = number * 10 + static_cast<size_t>(unit - u'0');
    }
    return number >= 1 && number <= count ? std::optional(number - 1) : std::nullopt;
}

bool SameIgnoringCase(std::u16string_view a, std::u16string_view b)
{
    return BeginsWithIgnoringCase(a, b) && BeginsWithIgnoringCase(b, a);
}

// The item whose text is the name, otherwise the only item whose text begins with it.
template <class Item>
std::optional<size_t> Named(const std::vector<Item> &items, std::u16string_view name)
{
    std::optional<size_t> beginning;
    bool ambiguous = false;
    for (size_t i = 0; i < items.size(); ++i)
    {
        if (SameIgnoringCase(items[i].text, name))
        {
            return i;
        }
        if (BeginsWithIgnoringCase(items[i].text, name))
        {
            ambiguous = beginning.has_value();
            beginning = i;
        }
    }
    return ambiguous ? std::nullopt : beginning;
}

std::optional<size_t> DefaultButton(const DialogPage &page)
{
    const auto found = std::find_if(page.buttons.begin(), page.buttons.end(),
                                    [&](const auto &button) { return button.id == page.defaultButton; });
    return found == page.buttons.end() ? std::nullopt : std::optional<size_t>(found - page.buttons.begin());
}

std::optional<size_t> RadioButtonOfKey(const DialogPage &page, std::u16string_view typed)
{
    for (size_t i = 0; i < page.radioButtons.size(); ++i)
    {
        const char key = RadioButtonKey(i);
        if (key != '\0' && SameIgnoringCase(typed, std::u16string(1, static_cast<char16_t>(key))))
        {
            return i;
        }
    }
    return std::nullopt;
}
} // namespace

DialogAnswer ReadAnswer(const DialogPage &page, std::u16string_view typed)
{
    const std::u16string_view answer = WithoutBlanks(typed);
    if (answer.empty())
    {
        const auto button = DefaultButton(page);
        return button ? DialogAnswer{AnswerKind::Button, *button} : DialogAnswer{};
    }
    if (const auto button = Numbered(answer, page.buttons.size()))
    {
        return {AnswerKind::Button, *button};
    }
    if (const auto radioButton = RadioButtonOfKey(page, answer))
    {
        return {AnswerKind::RadioButton, *radioButton};
    }
    if (!page.checkBox.empty() && SameIgnoringCase(answer, u"x"))
    {
        return {AnswerKind::CheckBox, 0};
    }
    if (!page.expandedText.empty() && (answer == u"+" || answer == u"-"))
    {
        return {AnswerKind::Expando, 0};
    }
    const bool isLink = SameIgnoringCase(answer.substr(0, 1), u"l");
    if (const auto link = isLink ? Numbered(answer.substr(1), page.links.size()) : std::nullopt)
    {
        return {AnswerKind::Link, *link};
    }
    if (const auto button = Named(page.buttons, answer))
    {
        return {AnswerKind::Button, *button};
    }
    const auto radioButton = Named(page.radioButtons, answer);
    return radioButton ? DialogAnswer{AnswerKind::RadioButton, *radioButton} : DialogAnswer{};
}
