// Whether the picture of a JPEG file is whole, and which bytes of its coded data belong to no block.
//
// The coded data is read code by code as a decoder does, which takes a fraction of decoding it and little memory:
// eight bytes for each block of a progressive picture. Where decoders pass over what no encoder writes and invent
// the rest, this says that the picture is damaged. Not all damage shows: bytes that were replaced by others may
// make codes that have a meaning.
#pragma once

#include "jpegdata/CodedData.h"

#include <atomic>
#include <string>
#include <vector>

enum class PictureState
{
    Whole,
    Damaged,
    Unknown // arithmetic coding, tables that aren't in the file, no JPEG: a decoder has to say; or it was stopped
};

struct PictureSurvey
{
    PictureState state = PictureState::Unknown;
    std::string damage;            // what is wrong, in words; empty unless Damaged
    bool hasEnd = false;           // the end of image is there; a picture may be whole without
    std::vector<ByteRange> unread; // in the coded data, from the file's start, in order
};

// read gives the file from its start on. stop may be null; once it is true, the reading ends soon. Any thread.
PictureSurvey SurveyPicture(ByteReader read, const std::atomic<bool> *stop);
