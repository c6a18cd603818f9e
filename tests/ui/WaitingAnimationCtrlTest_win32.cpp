// The waiting animation's window, drawn into memory.
#include "core/ThisModule.h"
#include "resources/resource.h"
#include "ui/WaitingAnimationCtrl_win32.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>

namespace
{
constexpr int FrameSize = 16;
constexpr int FrameCount = 8;
using Pixels = std::array<UINT32, FrameSize * FrameSize>;

DWORD now = 0;

DWORD WINAPI Now()
{
    return now;
}

// The parent's answer to WM_CTLCOLORSTATIC; null: no brush.
HBRUSH background = nullptr;

LRESULT CALLBACK ParentProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return message == WM_CTLCOLORSTATIC ? reinterpret_cast<LRESULT>(background)
                                        : DefWindowProcW(window, message, wParam, lParam);
}

class MemoryContext
{
public:
    explicit MemoryContext(UINT32 colour)
    {
        BITMAPINFO description{};
        description.bmiHeader = {sizeof(BITMAPINFOHEADER), FrameSize, -FrameSize, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        m_bitmap = BitmapOwner(CreateDIBSection(nullptr, &description, DIB_RGB_COLORS,
                                                reinterpret_cast<void **>(&m_bits), nullptr, 0));
        m_before = SelectObject(Context, m_bitmap.Get());
        std::fill(m_bits, m_bits + FrameSize * FrameSize, colour);
    }
    ~MemoryContext()
    {
        SelectObject(Context, m_before);
        DeleteDC(Context);
    }

    Pixels Read() const
    {
        Pixels pixels;
        for (size_t i = 0; i < pixels.size(); ++i)
        {
            pixels[i] = m_bits[i] & 0xFFFFFF;
        }
        return pixels;
    }

    const HDC Context = CreateCompatibleDC(nullptr);

private:
    BitmapOwner m_bitmap;
    UINT32 *m_bits = nullptr;
    HGDIOBJ m_before;
};

// The pixels of the module's strip, from the top left.
std::vector<UINT32> Strip()
{
    const HMODULE module = ThisModule();
    const HRSRC found = FindResourceW(module, MAKEINTRESOURCEW(IDB_WAITING), RT_BITMAP);
    const auto *header = static_cast<const BITMAPINFOHEADER *>(LockResource(LoadResource(module, found)));
    EXPECT_EQ(header->biWidth, FrameSize * FrameCount);
    EXPECT_EQ(header->biHeight, FrameSize);
    EXPECT_EQ(header->biBitCount, 32);
    const auto *bits = reinterpret_cast<const UINT32 *>(header + 1);
    std::vector<UINT32> WaitingStrip;
    for (int row = FrameSize - 1; row >= 0; --row)
    {
        WaitingStrip.insert(WaitingStrip.end(), bits + row * FrameSize * FrameCount,
                            bits + (row + 1) * FrameSize * FrameCount);
    }
    return WaitingStrip;
}

UINT32 Over(UINT32 pixel, UINT32 below)
{
    const UINT32 alpha = pixel >> 24;
    UINT32 result = 0;
    for (int shift = 0; shift < 24; shift += 8)
    {
        const UINT32 under = (below >> shift & 0xFF) * (255 - alpha);
        result |= std::min<UINT32>(255, (pixel >> shift & 0xFF) + (under + 127) / 255) << shift;
    }
    return result;
}

// A frame over one colour.
Pixels Expected(UINT32 frame, UINT32 colour)
{
    static const std::vector<UINT32> WaitingStrip = Strip();
    Pixels pixels;
    for (size_t i = 0; i < pixels.size(); ++i)
    {
        const size_t row = i / FrameSize;
        pixels[i] = Over(WaitingStrip[row * FrameSize * FrameCount + frame * FrameSize + i % FrameSize], colour);
    }
    return pixels;
}

// Blending may round either way.
bool IsNearly(const Pixels &left, const Pixels &right)
{
    for (size_t i = 0; i < left.size(); ++i)
    {
        for (int shift = 0; shift < 24; shift += 8)
        {
            const auto one = static_cast<int>(left[i] >> shift & 0xFF);
            const auto other = static_cast<int>(right[i] >> shift & 0xFF);
            if (std::abs(one - other) > 1)
            {
                return false;
            }
        }
    }
    return true;
}

class WaitingAnimationCtrl : public testing::Test
{
protected:
    WaitingAnimationCtrl()
    {
        background = GetSysColorBrush(COLOR_WINDOW);
        WNDCLASSW description{};
        description.lpfnWndProc = ParentProcedure;
        description.hInstance = ThisModule();
        description.lpszClassName = TEXT("AnimationParent");
        RegisterClassW(&description);
        m_parent = CreateWindowExW(0, TEXT("AnimationParent"), nullptr, WS_POPUP, 0, 0, 100, 100, nullptr, nullptr,
                                   ThisModule(), nullptr);
        EXPECT_NE(Control.Create(m_parent), nullptr);
    }
    ~WaitingAnimationCtrl() override { DestroyWindow(m_parent); }

    Pixels Draw(DWORD at, UINT32 below = 0)
    {
        now = at;
        const MemoryContext memory(below);
        SendMessageW(Control.Window(), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(memory.Context), PRF_CLIENT);
        return memory.Read();
    }

    CWaitingAnimationCtrl Control{Now};
    HWND m_parent = nullptr;
};

UINT32 ColourOf(int systemColour)
{
    const COLORREF colour = GetSysColor(systemColour);
    return UINT32{GetRValue(colour)} << 16 | UINT32{GetGValue(colour)} << 8 | GetBValue(colour);
}
} // namespace

TEST(WaitingStrip, IsPremultipliedAndItsFramesDiffer)
{
    for (const UINT32 pixel : Strip())
    {
        for (int shift = 0; shift < 24; shift += 8)
        {
            EXPECT_LE(pixel >> shift & 0xFF, pixel >> 24);
        }
    }
    for (UINT32 frame = 0; frame < FrameCount; ++frame)
    {
        EXPECT_FALSE(IsNearly(Expected(frame, 0xFFFFFF), Expected((frame + 1) % FrameCount, 0xFFFFFF)));
        EXPECT_FALSE(IsNearly(Expected(frame, 0xFFFFFF), Expected(frame, 0))) << "something of the ground shows";
    }
}

TEST_F(WaitingAnimationCtrl, IsAsLargeAsOneFrame)
{
    RECT client{};
    GetClientRect(Control.Window(), &client);
    EXPECT_EQ(client.right, FrameSize);
    EXPECT_EQ(client.bottom, FrameSize);
    EXPECT_EQ(SendMessageW(Control.Window(), WM_ERASEBKGND, 0, 0), 1);
}

TEST_F(WaitingAnimationCtrl, DrawsTheFrameOfTheMomentOverTheParentsGround)
{
    const UINT32 ground = ColourOf(COLOR_WINDOW);
    EXPECT_TRUE(IsNearly(Draw(1000), Expected(0, ground)));
    EXPECT_TRUE(IsNearly(Draw(1500), Expected(0, ground))) << "not started";
    Control.Start();
    EXPECT_TRUE(IsNearly(Draw(2000), Expected(0, ground)));
    EXPECT_TRUE(IsNearly(Draw(2130), Expected(1, ground)));
    EXPECT_TRUE(IsNearly(Draw(2640), Expected(5, ground)));
    Control.Start();
    EXPECT_TRUE(IsNearly(Draw(2880), Expected(7, ground))) << "a second start changes nothing";
    Control.Stop();
    EXPECT_TRUE(IsNearly(Draw(3300), Expected(0, ground)));
    Control.Start();
    EXPECT_TRUE(IsNearly(Draw(3800), Expected(0, ground)));
}

TEST_F(WaitingAnimationCtrl, WithoutAGroundItBlendsOverWhatIsThere)
{
    background = nullptr;
    EXPECT_TRUE(IsNearly(Draw(1000, 0x204060), Expected(0, 0x204060)));
    const MemoryContext memory(0xFFFFFF);
    for (int paint = 0; paint < 2; ++paint)
    {
        SendMessageW(Control.Window(), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(memory.Context), PRF_CLIENT);
    }
    EXPECT_FALSE(IsNearly(memory.Read(), Expected(0, 0xFFFFFF))) << "the old frame stays under the new one";
}

TEST_F(WaitingAnimationCtrl, ItsTimerRunsFromStartToStop)
{
    EXPECT_FALSE(KillTimer(Control.Window(), 777));
    Control.Start();
    EXPECT_TRUE(KillTimer(Control.Window(), 777));
    Control.Stop();
    Control.Start();
    Control.Stop();
    EXPECT_FALSE(KillTimer(Control.Window(), 777));
}
