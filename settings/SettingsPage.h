// One page of the settings sheet without its window: what it loads, which rules it keeps, what it saves.
// It lives for one opening of the sheet. Registry failures are silent in both directions.
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

    // Once, when the page is first brought to the top; a page that never is loads nothing.
    virtual void Load(IPageControls &controls) = 0;

    // The user has clicked a button, which shows its new state already.
    virtual void Click(IPageControls &controls, UINT id);

    // The sheet was confirmed. For pages that were loaded, and for no others, in tab order.
    virtual void Save(IPageControls &controls) = 0;
};

inline void SettingsPage::Click(IPageControls &, UINT) {}
