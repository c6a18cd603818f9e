// The controls of the host's window, and their layout.
#pragma once

#include <windows.h>

#include <string>

class HostControls
{
public:
    // Makes them as children of the window, for its dots per inch.
    explicit HostControls(HWND window);
    ~HostControls();
    HostControls(const HostControls &) = delete;
    HostControls &operator=(const HostControls &) = delete;

    HWND operator[](int id) const { return GetDlgItem(m_window, id); }

    // Doesn't redraw if the text is the same.
    void SetText(int id, const std::wstring &text) const;
    void Enable(int id, bool enabled) const;

    // For the window's present size.
    void LayOut() const;

    // Of the whole window.
    SIZE SmallestSize() const;
    // Its first place: no larger than its screen's work area, and wholly inside it.
    RECT UsualPlace() const;

    // Pixels for so many units of 1/96 inch.
    int Scaled(int units) const { return MulDiv(units, m_dotsPerInch, 96); }

private:
    HWND Make(int id, const wchar_t *kind, unsigned text, DWORD style, DWORD extended = 0);
    int ButtonWidth(int id) const;
    SIZE Framed(int width, int height) const;

    const HWND m_window;
    int m_dotsPerInch;
    HFONT m_font;
    HFONT m_boldFont;
};
