#include "plugin/InitDataStream.h"

#include "account/AccountRecord.h"
#include "com/BstrOwner.h"
#include "com/Hresult.h"

namespace
{
constexpr signed char FormatMarker = 1;
constexpr UINT32 TerminatorSize = sizeof(WCHAR);
constexpr UINT32 LargestString = 0x100000;

constexpr BstrOwner AccountRecord::*StoredTexts[] = {
    &AccountRecord::OAuthToken, &AccountRecord::OAuthTokenSecret, &AccountRecord::UserName,
    &AccountRecord::FullName,   &AccountRecord::PhotosUrl,        &AccountRecord::AccountType,
};

// COM allows null for a count or position that isn't wanted, but a host's own stream may write there unchecked:
// every call of this file has a variable for it.
HRESULT MoveTo(IStream *stream, UINT64 position) noexcept
{
    LARGE_INTEGER target;
    target.QuadPart = static_cast<INT64>(position);
    ULARGE_INTEGER reached{};
    return stream->Seek(target, STREAM_SEEK_SET, &reached);
}

// Reads all of size, or throws: E_FAIL if the stream ends before.
void ReadExactly(IStream *stream, void *data, UINT32 size)
{
    ULONG read = 0;
    ThrowIfFailed(stream->Read(data, size, &read));
    if (read != size)
    {
        ThrowHresult(E_FAIL);
    }
}

void WriteExactly(IStream *stream, const void *data, UINT32 size)
{
    ULONG written = 0;
    ThrowIfFailed(stream->Write(data, size, &written));
    if (written != size)
    {
        ThrowHresult(STG_E_MEDIUMFULL);
    }
}

// Moves the stream back to where a string starts, unless Forget says that the whole string was read.
class PositionKeeper
{
public:
    explicit PositionKeeper(IStream *stream) noexcept : m_stream(stream)
    {
        m_isKnown = SUCCEEDED(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_CUR, &m_position));
    }
    ~PositionKeeper()
    {
        if (m_isKnown)
        {
            MoveTo(m_stream, m_position.QuadPart);
        }
    }
    PositionKeeper(const PositionKeeper &) = delete;
    PositionKeeper &operator=(const PositionKeeper &) = delete;

    void Forget() noexcept { m_isKnown = false; }

private:
    IStream *m_stream;
    ULARGE_INTEGER m_position{};
    bool m_isKnown;
};

BstrOwner ReadText(IStream *stream)
{
    PositionKeeper position(stream);
    UINT32 size = 0;
    ReadExactly(stream, &size, sizeof size);
    BstrOwner text;
    if (size == 1)
    {
        ThrowHresult(E_FAIL);
    }
    if (size > LargestString)
    {
        ThrowHresult(E_ACCESSDENIED);
    }
    if (size > 0)
    {
        const UINT32 textSize = size - TerminatorSize;
        WideText units((textSize + 1) / sizeof(WCHAR), 0);
        ReadExactly(stream, units.data(), textSize);
        WCHAR terminator = 0;
        ReadExactly(stream, &terminator, sizeof terminator);
        if (terminator != 0)
        {
            ThrowHresult(E_FAIL);
        }
        // Half a unit at the end is dropped.
        text = BstrOwner(WideView(units).substr(0, textSize / sizeof(WCHAR)));
    }
    position.Forget();
    return text;
}

void WriteText(IStream *stream, const BstrOwner &text)
{
    if (text.Get() == nullptr)
    {
        const UINT32 none = 0;
        WriteExactly(stream, &none, sizeof none);
        return;
    }
    const WideText copy(text.Text());
    const auto size = static_cast<UINT32>((copy.size() + 1) * sizeof(WCHAR));
    WriteExactly(stream, &size, sizeof size);
    WriteExactly(stream, copy.c_str(), size);
}
} // namespace

void ReadInitData(IStream *stream, AccountRecord &account)
{
    signed char marker = 0;
    ULONG read = 0;
    ThrowIfFailed(stream->Read(&marker, sizeof marker, &read));
    if (marker < 1)
    {
        account.MaxFileSize = 0;
        return;
    }
    for (const auto field : StoredTexts)
    {
        BstrOwner &text = account.*field;
        text.Reset();
        text = ReadText(stream);
    }
    INT64 maxFileSize = 0;
    read = 0;
    stream->Read(&maxFileSize, sizeof maxFileSize, &read);
    if (read < sizeof maxFileSize)
    {
        ThrowHresult(HRESULT_FROM_WIN32(ERROR_INVALID_DATA));
    }
    account.MaxFileSize = maxFileSize;
}

void WriteInitData(IStream *stream, const AccountRecord &account)
{
    ThrowIfFailed(MoveTo(stream, 0));
    ThrowIfFailed(stream->SetSize(ULARGE_INTEGER{}));
    WriteExactly(stream, &FormatMarker, sizeof FormatMarker);
    for (const auto field : StoredTexts)
    {
        WriteText(stream, account.*field);
    }
    WriteExactly(stream, &account.MaxFileSize, sizeof account.MaxFileSize);
}
