#include "host/window/ThumbnailMaker_win32.h"

#include "host/PictureDecoding.h"

#include <algorithm>

namespace
{
constexpr DWORD FrameColour = 0xFFC8C8C8;

// 32 bits a pixel, rows from the top, filled with the background.
BitmapOwner MakeSquare(int edge, DWORD *&pixels)
{
    BITMAPINFO layout{};
    layout.bmiHeader.biSize = sizeof(layout.bmiHeader);
    layout.bmiHeader.biWidth = edge;
    layout.bmiHeader.biHeight = -edge;
    layout.bmiHeader.biPlanes = 1;
    layout.bmiHeader.biBitCount = 32;
    layout.bmiHeader.biCompression = BI_RGB;
    void *bits = nullptr;
    BitmapOwner square(CreateDIBSection(nullptr, &layout, DIB_RGB_COLORS, &bits, nullptr, 0));
    pixels = static_cast<DWORD *>(bits);
    if (square)
    {
        const COLORREF back = GetSysColor(COLOR_WINDOW);
        std::fill_n(pixels, static_cast<size_t>(edge) * edge,
                    0xFF000000u | GetRValue(back) << 16 | GetGValue(back) << 8 | GetBValue(back));
    }
    return square;
}

BitmapOwner InTheMiddle(const DecodedPicture &picture, int edge)
{
    DWORD *pixels = nullptr;
    BitmapOwner square = MakeSquare(edge, pixels);
    const int width = static_cast<int>(picture.width), height = static_cast<int>(picture.height);
    if (!square || width > edge || height > edge)
    {
        return {};
    }
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
