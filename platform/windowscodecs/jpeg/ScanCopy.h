// Copies the compressed picture of one JPEG file into another, without decoding it.
//
// A JPEG file is a row of segments, each with a marker that says its kind, and behind each scan's header
// stands entropy-coded data. What decoding needs (tables, restart interval, frame and scan headers, that
// data) is copied byte for byte; application segments and comments are not, and the caller's head takes
// their place. The end of the data is found without decoding it: an encoder puts a zero behind each 0xFF
// of the data (T.81, B.1.1.5), so an 0xFF with anything else behind it that is no restart marker begins
// the next segment.
//
// So every decoder gets the same coefficients from both files, whatever the coding (sequential,
// progressive, arithmetic; any sampling, colour space, restart interval), and the copy needs no memory for
// the picture.
#pragma once

#include "jpegdata/CodedData.h"
#include "platform/windowscodecs/jpeg/PixelCoding.h"
#include "platform/windowscodecs/jpeg/StreamBytes.h"

#include <vector>

// Writes a file of head and of the picture in source, which must be whole. Nothing else of source is copied: no
// application segment, no comment, no stray byte between segments, nothing of the ranges in unread, which lie in
// its coded data, nothing behind the end of image; an end of image that is missing is added. Throws what the streams
// answer.
void CopyScans(StreamBytes &source, const std::vector<OutputSegment> &head, const std::vector<ByteRange> &unread,
               IStream *target);
