// The empty frame that stands for a missing thumbnail, and the badge drawn on a thumbnail.
#pragma once

#include "com/HandleOwner.h"

#include <windows.h>
#include <commctrl.h>

// Bitmaps here are squares of 32 bits a pixel whose sides have edge pixels.
BitmapOwner EmptyFrame(int edge);
BitmapOwner CopyOf(HIMAGELIST images, int image, int edge);

// In the corner at the lower right: a check mark for a published picture, a cross for one that failed.
void DrawBadge(HBITMAP bitmap, int edge, bool isPublished);
