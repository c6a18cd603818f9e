// Thumbnails: their making, one after the other, on a thread of its own; the empty frame that stands for a missing one,
// and the badge drawn on one.
#pragma once

#include "com/HandleOwner.h"

#include <windows.h>
#include <commctrl.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <mutex>
#include <thread>
#include <vector>

// Bitmaps here are squares of 32 bits a pixel whose sides have edge pixels.
BitmapOwner EmptyFrame(int edge);
BitmapOwner CopyOf(HIMAGELIST images, int image, int edge);

enum class Badge
{
    Published, // a check mark
    Failed,    // a cross; also if the outcome is unknown
    Uploading  // an arrow that points up
};

// In the corner at the lower right; covers one that is there.
void DrawBadge(HBITMAP bitmap, int edge, Badge badge);

struct Thumbnail
{
    int picture = 0;    // the number that it was asked for with
    BitmapOwner bitmap; // square, 32 bits; null if no file of the picture could be decoded
};

class ThumbnailMaker
{
public:
    // edge: of the square, in pixels. Whenever a thumbnail is ready, the message is posted to the window.
    ThumbnailMaker(int edge, HWND window, UINT message);
    ~ThumbnailMaker();
    ThumbnailMaker(const ThumbnailMaker &) = delete;
    ThumbnailMaker &operator=(const ThumbnailMaker &) = delete;

    // The first of the files that can be decoded gives the thumbnail.
    void Ask(int picture, std::vector<std::filesystem::path> files);

    // What has been made since the last call.
    std::vector<Thumbnail> Take();

private:
    struct Order
    {
        int picture;
        std::vector<std::filesystem::path> files;
    };

    void Work();
    BitmapOwner Make(const Order &order) const;

    const int m_edge;
    const HWND m_window;
    const UINT m_message;
    std::mutex m_lock;
    std::condition_variable m_changed;
    std::deque<Order> m_orders;
    std::vector<Thumbnail> m_ready;
    std::atomic<bool> m_stop = false;
    std::thread m_thread;
};
