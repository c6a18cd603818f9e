// The compressed picture of one JPEG file taken over into another as it is: tables, frame header and
// scans byte for byte, so that every decoder gets the same coefficients from both. It serves all
// codings alike (sequential, progressive, arithmetic; any sampling, colour space, restart interval),
// and needs no memory for the picture.
#pragma once

#include "platform/windowscodecs/jpeg/PixelCoding.h"
#include "platform/windowscodecs/jpeg/StreamBytes.h"

#include <vector>

// Writes a file of head and of what source holds of the picture. Nothing else of source goes over:
// no application segment, no comment, no stray byte between segments, nothing behind the end of
// image. Throws WINCODEC_ERR_BADIMAGE if source ends before its end of image, and what the streams
// answer.
void CopyScans(StreamBytes &source, const std::vector<OutputSegment> &head, IStream *target);
