#include "taskdialog/TaskDialogDocument.h"

#include "com/Hresult.h"
#include "core/TextPieces.h"
#include "taskdialog/TaskDialogWords.h"
#include "taskdialog/XmlDocument.h"

#include <cstddef>
#include <cstring>

namespace
{
std::span<const BYTE> FindResourceBytes(UINT id, const WCHAR *type, HMODULE module)
{
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(id), type);
    const HGLOBAL resource = found != nullptr ? LoadResource(module, found) : nullptr;
    const void *const bytes = resource != nullptr ? LockResource(resource) : nullptr;
    return bytes != nullptr ? std::span(static_cast<const BYTE *>(bytes), SizeofResource(module, found))
                            : std::span<const BYTE>();
}

constexpr size_t NoIcon = 0;

// An element's text and icon, with the fields of the record that receive them. Offsets, because the record is
// packed and its pointer members may be unaligned.
struct TextPart
{
    const WCHAR *expression;
    size_t text;
    size_t icon;
};

const TextPart TextParts[] = {
    {TEXT("/task_dialog/title"), offsetof(TASKDIALOGCONFIG, pszWindowTitle), NoIcon},
    {TEXT("/task_dialog/main_text"), offsetof(TASKDIALOGCONFIG, pszMainInstruction),
     offsetof(TASKDIALOGCONFIG, pszMainIcon)},
    {TEXT("/task_dialog/content"), offsetof(TASKDIALOGCONFIG, pszContent), NoIcon},
    {TEXT("/task_dialog/footer"), offsetof(TASKDIALOGCONFIG, pszFooter),
     offsetof(TASKDIALOGCONFIG, pszFooterIcon)},
    {TEXT("/task_dialog/expanded_text"), offsetof(TASKDIALOGCONFIG, pszExpandedInformation), NoIcon},
    {TEXT("/task_dialog/expando/text[@state='collapsed']"), offsetof(TASKDIALOGCONFIG, pszCollapsedControlText),
     NoIcon},
    {TEXT("/task_dialog/expando/text[@state='expanded']"), offsetof(TASKDIALOGCONFIG, pszExpandedControlText),
     NoIcon},
    {TEXT("/task_dialog/checkbox"), offsetof(TASKDIALOGCONFIG, pszVerificationText), NoIcon},
};

void SetPointer(TASKDIALOGCONFIG &config, size_t offset, const WCHAR *pointer)
{
    std::memcpy(reinterpret_cast<BYTE *>(&config) + offset, &pointer, sizeof(pointer));
}

bool StartsWithDigit(WideView text)
{
    return !text.empty() && text[0] >= TEXT('0') && text[0] <= TEXT('9');
}

const WCHAR *Keep(TaskDialogDocument &document, WideText text)
{
    return document.strings.emplace_back(std::move(text)).c_str();
}

void RequireVersion(IXMLDOMNode *xml)
{
    const ComPtr<IXMLDOMNode> root = SelectNode(xml, TEXT("/task_dialog[@version]"));
    if (!root || Int32OfText(AttributeText(root.Get(), TEXT("@version")).value_or(WideText())) != 1)
    {
        ThrowHresult(E_FAIL);
    }
}

void ReadTexts(IXMLDOMNode *xml, TaskDialogDocument &document)
{
    for (const TextPart &part : TextParts)
    {
        const std::optional<WideText> text = ElementText(xml, part.expression);
        if (!text)
        {
            continue;
        }
        SetPointer(document.config, part.text, Keep(document, *text));
        if (part.icon != NoIcon)
        {
            const ComPtr<IXMLDOMNode> element = SelectNode(xml, part.expression);
            const std::optional<WideText> word = AttributeText(element.Get(), TEXT("@icon"));
            SetPointer(document.config, part.icon, word ? IconOfWord(*word) : nullptr);
        }
    }
}

void ReadDefaultButton(IXMLDOMNode *xml, TASKDIALOGCONFIG &config)
{
    const std::optional<WideText> text = AttributeText(xml, TEXT("/task_dialog/buttons/@default"));
    if (text)
    {
        const INT32 number = StartsWithDigit(*text) ? Int32OfText(*text) : 0;
        config.nDefaultButton = number != 0 ? number : ButtonIdOfWord(*text);
    }
}

void ReadButton(IXMLDOMNode *element, TaskDialogDocument &document)
{
    const WideText id = AttributeText(element, TEXT("@id")).value_or(WideText());
    if (!StartsWithDigit(id))
    {
        document.config.dwCommonButtons |= CommonButtonOfWord(id);
        return;
    }
    const INT32 number = Int32OfText(id);
    std::optional<WideText> text = number != 0 ? ElementText(element, TEXT("text[@line=1]")) : std::nullopt;
    if (!text)
    {
        return;
    }
    if (const std::optional<WideText> note = ElementText(element, TEXT("text[@line=2]")))
    {
        *text += TEXT('\n') + *note;
    }
    document.customButtons.push_back({number, Keep(document, std::move(*text))});
    if (AttributeText(element, TEXT("@icon")) == TEXT("shield"))
    {
        document.shieldButtonIds.push_back(number);
    }
}

void ReadButtons(IXMLDOMNode *xml, TaskDialogDocument &document)
{
    ReadDefaultButton(xml, document.config);
    for (const auto &element : SelectAllNodes(xml, TEXT("/task_dialog/buttons/button[@id]")))
    {
        ReadButton(element.Get(), document);
    }
    if (!document.customButtons.empty())
    {
        document.config.cButtons = static_cast<UINT>(document.customButtons.size());
        document.config.pButtons = document.customButtons.data();
    }
}

void ReadDefaultRadioButton(IXMLDOMNode *xml, TASKDIALOGCONFIG &config)
{
    const WideText text = AttributeText(xml, TEXT("/task_dialog/radio_buttons/@default")).value_or(WideText());
    if (StartsWithDigit(text))
    {
        config.nDefaultRadioButton = Int32OfText(text);
    }
    else if (text == TEXT("none"))
    {
        config.dwFlags |= TDF_NO_DEFAULT_RADIO_BUTTON;
    }
}

void ReadRadioButtons(IXMLDOMNode *xml, TaskDialogDocument &document)
{
    ReadDefaultRadioButton(xml, document.config);
    for (const auto &element : SelectAllNodes(xml, TEXT("/task_dialog/radio_buttons/button[@id]")))
    {
        const INT32 number = Int32OfText(AttributeText(element.Get(), TEXT("@id")).value_or(WideText()));
        const std::optional<WideText> text = number != 0 ? ElementText(element.Get(), TEXT("text")) : std::nullopt;
        if (text)
        {
            document.radioButtons.push_back({number, Keep(document, *text)});
        }
    }
    if (!document.radioButtons.empty())
    {
        document.config.cRadioButtons = static_cast<UINT>(document.radioButtons.size());
        document.config.pRadioButtons = document.radioButtons.data();
    }
}

void ReadFlags(IXMLDOMNode *xml, TaskDialogDocument &document)
{
    const ComPtr<IXMLDOMNode> flags = SelectNode(xml, TEXT("/task_dialog/flags"));
    if (!flags)
    {
        return;
    }
    const auto attribute = [&](const WCHAR *name) {
        return AttributeText(flags.Get(), name).value_or(WideText());
    };
    // Only blanks separate words; words joined by a tab or line end are one unknown word.
    const WideText words = ElementText(xml, TEXT("/task_dialog/flags")).value_or(WideText());
    for (const WideView word : SplitText(words, TEXT(' ')))
    {
        document.config.dwFlags |= FlagOfWord(word);
    }
    document.config.dwFlags |= Int32OfText(attribute(TEXT("@extra")));
    document.config.cxWidth = UInt32OfText(attribute(TEXT("@dialog_width")));
    document.marqueeTime = Int64OfText(attribute(TEXT("@marquee_time")));
}

// Fills document, which must be empty. Throws a failed HRESULT if the bytes are no task dialog document of
// version 1, E_OUTOFMEMORY, or the failure of the XML parser; document may be half filled then.
void LoadTaskDialog(std::span<const BYTE> bytes, TaskDialogDocument &document)
{
    const ComPtr<IXMLDOMNode> xml = ParseXmlBytes(bytes);
    RequireVersion(xml.Get());
    ReadTexts(xml.Get(), document);
    ReadButtons(xml.Get(), document);
    ReadRadioButtons(xml.Get(), document);
    ReadFlags(xml.Get(), document);
}
} // namespace

bool TaskDialogDocument::LoadFromResource(UINT resourceId, const WCHAR *resourceType, HMODULE module) noexcept
{
    return LoadDocument(FindResourceBytes(resourceId, resourceType, module));
}

bool TaskDialogDocument::LoadDocument(std::span<const BYTE> bytes) noexcept
{
    Clear();
    const HRESULT result = AtBoundary([&] {
        LoadTaskDialog(bytes, *this);
        return S_OK;
    });
    if (FAILED(result))
    {
        Clear();
        return false;
    }
    config.pfCallback = HandleNotification;
    config.lpCallbackData = reinterpret_cast<LONG_PTR>(this);
    loaded = true;
    return true;
}

void TaskDialogDocument::Clear() noexcept
{
    loaded = false;
    config = {};
    config.cbSize = sizeof(config);
    strings.clear();
    customButtons.clear();
    radioButtons.clear();
    shieldButtonIds.clear();
    marqueeTime = 0;
}

HRESULT CALLBACK TaskDialogDocument::HandleNotification(HWND window, UINT notification, WPARAM wParam,
                                                        LPARAM lParam, LONG_PTR data) noexcept
{
    auto *const document = reinterpret_cast<TaskDialogDocument *>(data);
    if (document == nullptr)
    {
        return S_OK;
    }
    if (notification == TDN_DIALOG_CONSTRUCTED)
    {
        document->dialogWindow = window;
        for (const INT32 button : document->shieldButtonIds)
        {
            SendMessageW(window, TDM_SET_BUTTON_ELEVATION_REQUIRED_STATE, static_cast<WPARAM>(button), TRUE);
        }
        if (document->marqueeTime > 0)
        {
            SendMessageW(window, TDM_SET_PROGRESS_BAR_MARQUEE, TRUE, static_cast<LPARAM>(document->marqueeTime));
        }
    }
    else if (notification == TDN_DESTROYED)
    {
        document->dialogWindow = nullptr;
    }
    return document->clientCallback != nullptr
               ? document->clientCallback(window, notification, wParam, lParam, document->clientData)
               : S_OK;
}
