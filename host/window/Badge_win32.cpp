#include "host/window/Badge_win32.h"

#include <algorithm>

namespace
{
constexpr COLORREF Green = RGB(16, 124, 16);
constexpr COLORREF Blue = RGB(0, 95, 184);
constexpr COLORREF Red = RGB(196, 43, 28);
constexpr COLORREF White = RGB(255, 255, 255);

// A device context to draw into a bitmap.
class Canvas
{
public:
    explicit Canvas(HBITMAP bitmap)
        : m_context(CreateCompatibleDC(nullptr)), m_before(SelectObject(m_context, bitmap))
    {
    }
    ~Canvas()
    {
        GdiFlush();
        SelectObject(m_context, m_before);
        DeleteDC(m_context);
    }
    Canvas(const Canvas &) = delete;
    Canvas &operator=(const Canvas &) = delete;

    HDC Get() const { return m_context; }

    void With(HGDIOBJ pen, HBRUSH brush, const auto &draw) const
    {
        const HGDIOBJ pens = SelectObject(m_context, pen);
        const HGDIOBJ brushes = SelectObject(m_context, brush);
        draw();
        SelectObject(m_context, brushes);
        SelectObject(m_context, pens);
        DeleteObject(pen);
        DeleteObject(brush);
    }

private:
    HDC m_context;
    HGDIOBJ m_before;
};

BitmapOwner NewSquare(int edge)
{
    BITMAPINFO layout{};
    layout.bmiHeader.biSize = sizeof(layout.bmiHeader);
    layout.bmiHeader.biWidth = edge;
    layout.bmiHeader.biHeight = -edge;
    layout.bmiHeader.biPlanes = 1;
    layout.bmiHeader.biBitCount = 32;
    void *bits = nullptr;
    return BitmapOwner(CreateDIBSection(nullptr, &layout, DIB_RGB_COLORS, &bits, nullptr, 0));
}

// GDI leaves the alpha of what it draws at 0, which an image list takes for "not there".
void MakeOpaque(HBITMAP bitmap)
{
    DIBSECTION section{};
    if (GetObjectW(bitmap, sizeof(section), &section) == sizeof(section))
    {
        auto *const pixels = static_cast<DWORD *>(section.dsBm.bmBits);
        const size_t count =
            static_cast<size_t>(section.dsBm.bmWidth) * static_cast<size_t>(section.dsBm.bmHeight);
        std::for_each(pixels, pixels + count, [](DWORD &pixel) { pixel |= 0xFF000000u; });
    }
}
} // namespace

BitmapOwner EmptyFrame(int edge)
{
    BitmapOwner frame = NewSquare(edge);
    {
        const Canvas canvas(frame.Get());
        const RECT all{0, 0, edge, edge};
        FillRect(canvas.Get(), &all, GetSysColorBrush(COLOR_WINDOW));
        const int margin = edge / 8;
        canvas.With(CreatePen(PS_SOLID, 1, RGB(200, 200, 200)), CreateSolidBrush(RGB(244, 244, 244)),
                    [&] { Rectangle(canvas.Get(), margin, margin * 2, edge - margin, edge - margin * 2); });
    }
    MakeOpaque(frame.Get());
    return frame;
}

BitmapOwner CopyOf(HIMAGELIST images, int image, int edge)
{
    BitmapOwner copy = NewSquare(edge);
    {
        const Canvas canvas(copy.Get());
        ImageList_Draw(images, image, canvas.Get(), 0, 0, ILD_NORMAL);
    }
    MakeOpaque(copy.Get());
    return copy;
}

void DrawBadge(HBITMAP bitmap, int edge, Badge badge)
{
    {
        const Canvas canvas(bitmap);
        const int size = edge / 4;
        const int left = edge - size - 2, top = edge - size - 2;
        const int thick = std::max(size / 8, 2);
        canvas.With(CreatePen(PS_SOLID, 2, White),
                    CreateSolidBrush(badge == Badge::Published ? Green
                                     : badge == Badge::Failed  ? Red
                                                               : Blue),
                    [&] { Ellipse(canvas.Get(), left, top, left + size, top + size); });
        const auto at = [&](int x, int y) { return POINT{left + size * x / 16, top + size * y / 16}; };
        canvas.With(CreatePen(PS_SOLID, thick, White), CreateSolidBrush(White), [&] {
            if (badge == Badge::Uploading)
            {
                const POINT shaft[] = {at(8, 12), at(8, 4)}, head[] = {at(5, 7), at(8, 4), at(11, 7)};
                Polyline(canvas.Get(), shaft, 2);
                Polyline(canvas.Get(), head, 3);
            }
            else if (badge == Badge::Published)
            {
                const POINT check[] = {at(4, 8), at(7, 11), at(12, 5)};
                Polyline(canvas.Get(), check, 3);
            }
            else
            {
                const POINT falling[] = {at(5, 5), at(11, 11)}, rising[] = {at(5, 11), at(11, 5)};
                Polyline(canvas.Get(), falling, 2);
                Polyline(canvas.Get(), rising, 2);
            }
        });
    }
    MakeOpaque(bitmap);
}
