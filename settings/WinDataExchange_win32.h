// IPageControls over the windows of a dialog. Windows build only.
#pragma once

#include "settings/PageControls.h"

class CWinDataExchange final : public IPageControls
{
public:
    explicit CWinDataExchange(HWND dialog) noexcept : m_dialog(dialog) {}

    void SetCheck(UINT id, UINT32 state) override;
    UINT32 Check(UINT id) override;
    void SetRadio(UINT firstId, UINT32 position) override;
    UINT32 Radio(UINT firstId) override;
    void SetText(UINT id, const WideText &text) override;
    WideText Text(UINT id) override;
    void Enable(UINT id, bool isEnabled) override;
    void AddListEntry(UINT id, const WideText &text, std::optional<UINT32> pixels) override;
    void PutCaretAtEnd(UINT id) override;
    void Focus(UINT id) override;
    void Repaint(UINT id) override;
    void Beep() override;

private:
    HWND Control(UINT id) const noexcept { return GetDlgItem(m_dialog, static_cast<int>(id)); }

    HWND m_dialog;
};
