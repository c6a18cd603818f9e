// Draws the settings sheet on a terminal around the page on top: tabs above, the link to the user's photos and the
// buttons below; and knows what a click hits.
#pragma once

#include "com/WideText.h"
#include "terminal/SheetScreen.h"
#include "terminal/TerminalPage.h"

#include <cstddef>
#include <vector>

// In the order of the tab key.
enum class SheetPlace
{
    Tabs,
    Page,
    Link,
    Ok,
    Cancel
};

// What is shown beside the page.
struct SheetPicture
{
    std::vector<WideText> Titles; // of the tabs
    size_t Top = 0;               // the tab of the page on top
    SheetPlace Focus = SheetPlace::Page;
    bool HasLink = false;
    bool IsWaiting = false; // for the service or the browser
};

// A place that answers clicks.
struct SheetTarget
{
    SheetPlace What;
    size_t Tab;
    ScreenArea Area;
};

class SheetView
{
public:
    explicit SheetView(ISheetScreen &screen) : m_screen(screen) {}

    void Draw(const SheetPicture &picture, TerminalPage &page);

    // In cells of the screen as last drawn; null if it is on none of the places.
    const SheetTarget *TargetAt(int column, int row) const;

    // Rows that the page had in the last drawing, at least 1.
    int PageRows() const { return m_pageRows; }

private:
    void DrawRule(int row);
    void DrawFrame();
    void DrawTabs();
    void DrawTab(size_t index, int column, const WideText &text);
    int DrawKeys(int row);
    int DrawFoot(int row);
    void DrawButton(SheetPlace place, int column, int row, const WideText &text, Look look);

    ISheetScreen &m_screen;
    SheetPicture m_picture;
    ScreenArea m_sheet{};
    std::vector<SheetTarget> m_targets;
    int m_pageRows = 1;
};
