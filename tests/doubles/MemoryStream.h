// A stream in memory that records its calls and can fail at a given one. As streams of some hosts do, it writes
// counts and positions without a look whether there is a place for them.
#pragma once

#include "platform/ole32/StreamBase.h"
#include "tests/doubles/CallRecord.h"

#include <string>
#include <string_view>

class MemoryStream final : public StreamBase<MemoryStream>
{
public:
    explicit MemoryStream(std::string_view content = {}) : Content(content) {}

    std::string Content;    // the bytes
    size_t Room = SIZE_MAX; // bytes that it can hold; what goes beyond isn't written, which is no failure
    size_t Position = 0;
    CallRecord Calls; // "Read 4", "Write 33", "Seek", "SetSize 0", ...

    STDMETHODIMP Read(void *target, ULONG length, ULONG *done) override;
    STDMETHODIMP Write(const void *source, ULONG length, ULONG *done) override;
    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER *position) override;
    STDMETHODIMP SetSize(ULARGE_INTEGER size) override;
    STDMETHODIMP Stat(STATSTG *statistics, DWORD flags) override;
    STDMETHODIMP Commit(DWORD) noexcept override { return Calls.Enter("Commit"); }
};
