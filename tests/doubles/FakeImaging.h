// The imaging component, as far as telling the container of a file goes, put in place for as long as
// this lives. It knows a file by its first bytes, and leaves the stream behind them: "\xFF\xD8" JPEG,
// "GIF8", "\x89PNG", and "BM", an image that the service doesn't take; anything else has no decoder.
#pragma once

#include "tests/doubles/ClassInPlace.h"

class FakeImaging
{
public:
    FakeImaging();

    HRESULT CreationResult = S_OK;
    HRESULT FormatResult = S_OK;

private:
    ClassInPlace m_factory;
};
