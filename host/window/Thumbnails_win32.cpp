#include "host/window/Thumbnails_win32.h"

#include "host/PictureDecoding.h"

#include <algorithm>

namespace
{
constexpr COLORREF Green = RGB(16, 124, 16);
constexpr COLORREF Blue = RGB(0, 95, 184);
constexpr COLORREF Red = RGB(196, 43, 28);
constexpr COLORREF White = RGB(255, 255, 255);
constexpr DWORD FrameColour = 0xFFC8C8C8;

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

// 32 bits a pixel, rows from the top; pixels get its memory.
BitmapOwner NewSquare(int edge, void *&pixels)
{
    BITMAPINFO layout{};
    layout.bmiHeader.biSize = sizeof(layout.bmiHeader);
    layout.bmiHeader.biWidth = edge;
    layout.bmiHeader.biHeight = -edge;
    layout.bmiHeader.biPlanes = 1;
    layout.bmiHeader.biBitCount = 32;
    layout.bmiHeader.biCompression = BI_RGB;
    return BitmapOwner(CreateDIBSection(nullptr, &layout, DIB_RGB_COLORS, &pixels, nullptr, 0));
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

BitmapOwner InTheMiddle(const DecodedPicture &picture, int edge)
{
    void *bits = nullptr;
    BitmapOwner square = NewSquare(edge, bits);
    const int width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
    if (!square || width > edge || height > edge)
    {
        return {};
    }
    auto *const pixels = static_cast<DWORD *>(bits);
    const COLORREF back = GetSysColor(COLOR_WINDOW);
    std::fill_n(pixels, static_cast<size_t>(edge) * edge,
                0xFF000000u | GetRValue(back) << 16 | GetGValue(back) << 8 | GetBValue(back));
    DWORD *line = pixels + static_cast<size_t>((edge - height) / 2) * edge + (edge - width) / 2;
    const BYTE *from = picture.pixels.data();
    for (int y = 0; y < height; ++y, line += edge)
    {
        for (int x = 0; x < width; ++x, from += 3)
        {
            // A frame, or white pictures would not be seen.
            const bool isFrame = x == 0 || y == 0 || x == width - 1 || y == height - 1;
            line[x] = isFrame ? FrameColour : 0xFF000000u | DWORD{from[2]} << 16 | DWORD{from[1]} << 8 | from[0];
        }
    }
    return square;
}
} // namespace

BitmapOwner EmptyFrame(int edge)
{
    void *pixels = nullptr;
    BitmapOwner frame = NewSquare(edge, pixels);
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
    void *pixels = nullptr;
    BitmapOwner copy = NewSquare(edge, pixels);
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

ThumbnailMaker::ThumbnailMaker(int edge, HWND window, UINT message)
    : m_edge(edge), m_window(window), m_message(message), m_thread([this] { Work(); })
{
}

ThumbnailMaker::~ThumbnailMaker()
{
    {
        const std::lock_guard guard(m_lock);
        m_stop = true;
    }
    m_changed.notify_all();
    m_thread.join();
}

void ThumbnailMaker::Ask(int picture, std::vector<std::filesystem::path> files)
{
    {
        const std::lock_guard guard(m_lock);
        m_orders.push_back({picture, std::move(files)});
    }
    m_changed.notify_all();
}

std::vector<Thumbnail> ThumbnailMaker::Take()
{
    const std::lock_guard guard(m_lock);
    return std::exchange(m_ready, {});
}

void ThumbnailMaker::Work()
{
    SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_BELOW_NORMAL);
    for (;;)
    {
        std::unique_lock guard(m_lock);
        m_changed.wait(guard, [this] { return m_stop || !m_orders.empty(); });
        if (m_stop)
        {
            return;
        }
        const Order order = std::move(m_orders.front());
        m_orders.pop_front();
        guard.unlock();
        Thumbnail made{order.picture, Make(order)};
        guard.lock();
        m_ready.push_back(std::move(made));
        guard.unlock();
        PostMessageW(m_window, m_message, 0, 0);
    }
}

BitmapOwner ThumbnailMaker::Make(const Order &order) const
{
    for (const auto &file : order.files)
    {
        try
        {
            return InTheMiddle(DecodePicture(file, static_cast<UINT>(m_edge), &m_stop), m_edge);
        }
        catch (const std::exception &)
        {
            // A publish says why; here the thumbnail is only missing.
        }
    }
    return {};
}
