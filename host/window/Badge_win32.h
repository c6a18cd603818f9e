// The empty frame that stands for a missing thumbnail, and the badge drawn on a thumbnail.
#pragma once

#include "com/HandleOwner.h"

#include <windows.h>
#include <commctrl.h>

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
