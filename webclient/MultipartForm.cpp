#include "webclient/MultipartForm.h"

#include "com/BstrOwner.h"
#include "com/TextConversion.h"
#include "webclient/RandomText.h"
#include "webclient/RequestUrl.h"

#include <shlwapi.h>

#include <algorithm>
#include <cstring>

namespace
{
// A name inside the quotes of Content-Disposition, as browsers write it.
std::string QuotedName(std::string_view name)
{
    std::string result;
    for (const char c : name)
    {
        const bool isEncoded = c == '"' || c == '\r' || c == '\n' || c == '\\'; // the last is some readers' escape
        result += isEncoded ? PercentEncode({&c, 1}) : std::string(1, c);
    }
    return result;
}

// Cuts the folder off, by the system's own rule: the service needn't learn the user's folders, and on Linux a
// backslash or a colon is a letter of the name.
WideView NameWithoutFolder(WideView name)
{
    const WideText path(name);
    return name.substr(static_cast<size_t>(PathFindFileNameW(path.c_str()) - path.c_str()));
}

// A header value must stay on its line.
std::string HeaderText(WideView text)
{
    std::string result = ToUtf8(text);
    std::erase_if(result, [](unsigned char c) { return c < ' ' || c == 0x7F; });
    return result;
}

UINT64 PositionOf(IStream *stream)
{
    ULARGE_INTEGER position{};
    ThrowIfFailed(stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_CUR, &position));
    return position.QuadPart;
}

UINT64 SizeOf(IStream *stream)
{
    STATSTG status{};
    ThrowIfFailed(stream->Stat(&status, STATFLAG_NONAME));
    return status.cbSize.QuadPart;
}
} // namespace

CMultipartFormData::CMultipartFormData() : m_boundary("----HalvoraFormBoundary" + RandomHexText(5)) {}

std::string CMultipartFormData::OpenPart(LPCWSTR name) const
{
    return "--" + m_boundary + "\r\nContent-Disposition: form-data; name=\"" + QuotedName(ToUtf8(name)) + "\"";
}

std::string CMultipartFormData::Closing() const
{
    return "--" + m_boundary + "--\r\n";
}

void CMultipartFormData::AddField(LPCWSTR name, std::string_view value)
{
    m_parts.push_back({OpenPart(name) + "\r\n\r\n" + std::string(value) + "\r\n", nullptr});
}

HRESULT CMultipartFormData::AddNumberField(LPCWSTR name, UINT32 value) noexcept
{
    return AtBoundary([&] {
        if (name == nullptr)
        {
            return E_INVALIDARG;
        }
        AddField(name, std::to_string(value));
        return S_OK;
    });
}

HRESULT CMultipartFormData::AddTextField(LPCWSTR name, LPCWSTR value) noexcept
{
    return AtBoundary([&] {
        if (name == nullptr || value == nullptr)
        {
            return E_INVALIDARG;
        }
        AddField(name, ToUtf8(value));
        return S_OK;
    });
}

HRESULT CMultipartFormData::AddFilePart(LPCWSTR name, IStream *content, LPCWSTR mimeType, LPCWSTR fileName,
                                        UINT_PTR, UINT_PTR) noexcept
{
    return AtBoundary([&] {
        if (name == nullptr || content == nullptr || fileName == nullptr)
        {
            return E_INVALIDARG;
        }
        const WideView type = mimeType != nullptr && *mimeType != 0 ? mimeType : TEXT("application/octet-stream");
        Part part;
        part.bytes = OpenPart(name) + "; filename=\"" + QuotedName(ToUtf8(NameWithoutFolder(fileName))) +
                     "\"\r\nContent-Type: " + HeaderText(type) + "\r\n\r\n";
        part.content = ComPtr<IStream>(content);
        part.start = PositionOf(content);
        part.length = std::max(SizeOf(content), part.start) - part.start;
        Part end;
        end.bytes = "\r\n";
        m_parts.reserve(m_parts.size() + 2);
        m_parts.push_back(std::move(part));
        m_parts.push_back(std::move(end));
        return S_OK;
    });
}

UINT64 CMultipartFormData::BodyLength() const
{
    UINT64 length = Closing().size();
    for (const Part &part : m_parts)
    {
        length += part.bytes.size() + part.length;
    }
    return length;
}

HRESULT CMultipartFormData::GetBodyLength(UINT32 *length) noexcept
{
    if (length == nullptr)
    {
        return E_INVALIDARG;
    }
    *length = 0;
    return AtBoundary([&] {
        const UINT64 whole = BodyLength();
        if (whole > 0xFFFFFFFF)
        {
            return HRESULT_FROM_WIN32(ERROR_FILE_TOO_LARGE);
        }
        *length = static_cast<UINT32>(whole);
        return S_OK;
    });
}

HRESULT CMultipartFormData::GetContentType(BSTR *contentType) noexcept
{
    if (contentType == nullptr)
    {
        return E_INVALIDARG;
    }
    *contentType = nullptr;
    return AtBoundary([&] {
        *contentType = BstrOwner(FromUtf8("multipart/form-data; boundary=" + m_boundary)).Detach();
        return S_OK;
    });
}

ULONG CMultipartFormData::ReadContent(const Part &part, BYTE *buffer, ULONG size)
{
    const UINT64 left = part.bytes.size() + part.length - m_inPart;
    ULONG read = 0;
    ThrowIfFailed(part.content->Read(buffer, static_cast<ULONG>(std::min<UINT64>(left, size)), &read));
    if (read == 0)
    {
        ThrowHresult(HRESULT_FROM_WIN32(ERROR_HANDLE_EOF));
    }
    return read;
}

// Reads at most the rest of the current part. Returns 0 at the end of the body.
ULONG CMultipartFormData::ReadSome(BYTE *buffer, ULONG size)
{
    const Part closing{m_part == m_parts.size() ? Closing() : std::string(), nullptr};
    const Part &part = m_part < m_parts.size() ? m_parts[m_part] : closing;
    ULONG taken = 0;
    if (m_inPart < part.bytes.size())
    {
        taken = static_cast<ULONG>(std::min<UINT64>(part.bytes.size() - m_inPart, size));
        std::memcpy(buffer, part.bytes.data() + m_inPart, taken);
    }
    else if (m_inPart < part.bytes.size() + part.length)
    {
        taken = ReadContent(part, buffer, size);
    }
    m_inPart += taken;
    m_position += taken;
    if (m_part < m_parts.size() && m_inPart == part.bytes.size() + part.length)
    {
        ++m_part;
        m_inPart = 0;
    }
    return taken;
}

HRESULT CMultipartFormData::Read(void *buffer, ULONG size, ULONG *read) noexcept
{
    ULONG total = 0;
    const HRESULT result = AtBoundary([&] {
        if (buffer == nullptr)
        {
            return STG_E_INVALIDPOINTER;
        }
        while (total < size)
        {
            const ULONG taken = ReadSome(static_cast<BYTE *>(buffer) + total, size - total);
            if (taken == 0)
            {
                return S_FALSE;
            }
            total += taken;
        }
        return S_OK;
    });
    if (read != nullptr)
    {
        *read = total;
    }
    return result;
}

void CMultipartFormData::Rewind()
{
    for (const Part &part : m_parts)
    {
        if (part.content)
        {
            LARGE_INTEGER start{};
            start.QuadPart = static_cast<LONGLONG>(part.start);
            ThrowIfFailed(part.content->Seek(start, STREAM_SEEK_SET, nullptr));
        }
    }
    m_part = 0;
    m_inPart = 0;
    m_position = 0;
}

HRESULT CMultipartFormData::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER *position) noexcept
{
    return AtBoundary([&] {
        if (move.QuadPart != 0 || (origin != STREAM_SEEK_SET && origin != STREAM_SEEK_CUR))
        {
            return STG_E_INVALIDFUNCTION;
        }
        if (origin == STREAM_SEEK_SET)
        {
            Rewind();
        }
        if (position != nullptr)
        {
            position->QuadPart = m_position;
        }
        return S_OK;
    });
}

HRESULT CMultipartFormData::Stat(STATSTG *status, DWORD) noexcept
{
    if (status == nullptr)
    {
        return STG_E_INVALIDPOINTER;
    }
    return AtBoundary([&] {
        *status = STATSTG{};
        status->type = STGTY_STREAM;
        status->cbSize.QuadPart = BodyLength();
        return S_OK;
    });
}
