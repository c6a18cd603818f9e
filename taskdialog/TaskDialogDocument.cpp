#include "taskdialog/TaskDialogDocument.h"

#include "com/Hresult.h"
#include "taskdialog/TaskDialogLoader.h"

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
