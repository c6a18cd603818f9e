// The logic of one page of the settings sheet, without its window: loading, enabling, saving. An object serves
// one opening of the sheet. Registry failures are silent in both directions.
#pragma once

#include "settings/PageControls.h"

class SettingsPage
{
public:
    SettingsPage() = default;
    SettingsPage(const SettingsPage &) = delete;
    SettingsPage &operator=(const SettingsPage &) = delete;
    virtual ~SettingsPage() = default;

    // The dialog template with the page's title and controls (settings/PageTemplate.h reads it).
    virtual UINT Template() const noexcept = 0;

    // Called once, when the page first comes to the top; a page that never does loads nothing.
    virtual void Load(IPageControls &controls) = 0;

    // Called after the user clicked a button, which already shows its new state.
    virtual void Click(IPageControls &controls, UINT id);

    // Called when the sheet is closed with OK, in tab order, only for pages that were loaded.
    virtual void Save(IPageControls &controls) = 0;
};

inline void SettingsPage::Click(IPageControls &, UINT) {}
