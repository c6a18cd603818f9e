// The component that encodes a form with a file as multipart/form-data (RFC 7578). The body is
// made while it is read: file parts are streamed, never copied into memory. Names and texts are sent as
// UTF-8, the file's name without its folder.
#pragma once

#include "WebComponents.h"
#include "com/ComObject.h"
#include "com/WideText.h"

#include <string>
#include <string_view>
#include <vector>

class CMultipartFormData final
    : public ComObject<CMultipartFormData, IMultipartFormData, Answers<IStream, ISequentialStream>>
{
public:
    CMultipartFormData();

    STDMETHODIMP AddNumberField(LPCWSTR name, UINT32 value) noexcept override;
    STDMETHODIMP AddTextField(LPCWSTR name, LPCWSTR value) noexcept override;
    STDMETHODIMP AddFilePart(LPCWSTR name, IStream *content, LPCWSTR mimeType, LPCWSTR fileName,
                             UINT_PTR reserved1, UINT_PTR reserved2) noexcept override;
    STDMETHODIMP GetBodyLength(UINT32 *length) noexcept override;
    STDMETHODIMP GetContentType(BSTR *contentType) noexcept override;

    // Reads the body. Fails with ERROR_HANDLE_EOF if a file has become shorter since it was added; bytes
    // that were added to a file since then are left out.
    STDMETHODIMP Read(void *buffer, ULONG size, ULONG *read) noexcept override;
    // Moves to the start of the body, or by 0 to learn the position; no other place can be reached.
    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER *position) noexcept override;
    STDMETHODIMP Stat(STATSTG *status, DWORD flags) noexcept override;

    STDMETHODIMP Write(const void *, ULONG, ULONG *) noexcept override { return STG_E_ACCESSDENIED; }
    STDMETHODIMP SetSize(ULARGE_INTEGER) noexcept override { return STG_E_ACCESSDENIED; }
    STDMETHODIMP CopyTo(IStream *, ULARGE_INTEGER, ULARGE_INTEGER *, ULARGE_INTEGER *) noexcept override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP Commit(DWORD) noexcept override { return S_OK; }
    STDMETHODIMP Revert() noexcept override { return S_OK; }
    STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) noexcept override
    {
        return STG_E_INVALIDFUNCTION;
    }
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) noexcept override
    {
        return STG_E_INVALIDFUNCTION;
    }
    STDMETHODIMP Clone(IStream **) noexcept override { return E_NOTIMPL; }

private:
    // A piece of the body: its own bytes, then those of a file, if there is one.
    struct Part
    {
        std::string bytes;
        ComPtr<IStream> content;
        UINT64 start = 0; // where the file's bytes begin in content
        UINT64 length = 0;
    };

    void AddField(LPCWSTR name, std::string_view value);
    std::string OpenPart(LPCWSTR name) const;
    std::string Closing() const;
    UINT64 BodyLength() const;
    ULONG ReadSome(BYTE *buffer, ULONG size);
    ULONG ReadContent(const Part &part, BYTE *buffer, ULONG size);
    void Rewind();

    std::string m_boundary;
    std::vector<Part> m_parts;
    size_t m_part = 0;     // being read; m_parts.size() is the closing boundary
    UINT64 m_inPart = 0;   // bytes of it that were read
    UINT64 m_position = 0; // in the whole body
};
