#include "platform/windowscodecs/jpeg/MetadataQueryObject.h"

#include "com/ComObject.h"
#include "com/WideText.h"
#include "platform/windowscodecs/jpeg/MetadataQueries.h"

#include <cstring>
#include <mutex>

namespace
{
// Reader and writer in one class: a reader is a writer without a flag that allows changes.
class CMetadataQuery final
    : public ComObject<CMetadataQuery, Answers<IWICMetadataQueryWriter, IWICMetadataQueryReader>>
{
public:
    CMetadataQuery(ComPtr<IUnknown> owner, MetadataBlocks &blocks, const bool *closed, WideText location)
        : m_owner(std::move(owner)), m_blocks(blocks), m_closed(closed), m_location(std::move(location))
    {
    }

    STDMETHODIMP GetContainerFormat(GUID *format) noexcept override
    {
        if (format == nullptr)
        {
            return E_INVALIDARG;
        }
        *format = GUID_ContainerFormatJpeg;
        return S_OK;
    }

    STDMETHODIMP GetLocation(UINT room, WCHAR *location, UINT *needed) noexcept override
    {
        if (needed == nullptr)
        {
            return E_INVALIDARG;
        }
        const WideText text = m_location.empty() ? WideText(TEXT("/")) : m_location;
        *needed = static_cast<UINT>(text.size() + 1);
        if (location == nullptr)
        {
            return S_OK;
        }
        if (room < *needed)
        {
            return WINCODEC_ERR_INSUFFICIENTBUFFER;
        }
        std::memcpy(location, text.c_str(), *needed * sizeof(WCHAR));
        return S_OK;
    }

    // A whole block answers with a reader of its own, VT_UNKNOWN. value may be null to ask whether
    // there is one.
    STDMETHODIMP GetMetadataByName(LPCWSTR name, PROPVARIANT *value) noexcept override
    {
        if (name == nullptr)
        {
            return E_INVALIDARG;
        }
        PROPVARIANT found{};
        const HRESULT result = AtBoundary([&] {
            const std::lock_guard guard(m_mutex);
            if (GetMetadata(m_blocks, m_location + name, &found) == QueryAnswer::Block && value != nullptr)
            {
                found.punkVal = static_cast<IWICMetadataQueryReader *>(
                    Make(m_owner, m_blocks, m_closed, m_location + name).Detach());
                found.vt = VT_UNKNOWN;
            }
            return S_OK;
        });
        if (value != nullptr)
        {
            *value = found;
        }
        else
        {
            PropVariantClear(&found);
        }
        return result;
    }

    STDMETHODIMP GetEnumerator(IEnumString **enumerator) noexcept override
    {
        if (enumerator == nullptr)
        {
            return E_INVALIDARG;
        }
        *enumerator = nullptr;
        return WINCODEC_ERR_UNSUPPORTEDOPERATION;
    }

    STDMETHODIMP SetMetadataByName(LPCWSTR name, const PROPVARIANT *value) noexcept override
    {
        if (name == nullptr || value == nullptr)
        {
            return E_INVALIDARG;
        }
        return Change([&] { SetMetadata(m_blocks, m_location + name, *value); });
    }

    STDMETHODIMP RemoveMetadataByName(LPCWSTR name) noexcept override
    {
        if (name == nullptr)
        {
            return E_INVALIDARG;
        }
        return Change([&] { RemoveMetadata(m_blocks, m_location + name); });
    }

private:
    template <class Work>
    HRESULT Change(Work work) noexcept
    {
        return AtBoundary([&] {
            if (m_closed == nullptr)
            {
                return WINCODEC_ERR_UNSUPPORTEDOPERATION;
            }
            if (*m_closed)
            {
                return WINCODEC_ERR_WRONGSTATE;
            }
            const std::lock_guard guard(m_mutex);
            work();
            return S_OK;
        });
    }

    ComPtr<IUnknown> m_owner;
    MetadataBlocks &m_blocks;
    const bool *m_closed; // null for a reader
    WideText m_location;
    std::mutex m_mutex;
};
} // namespace

ComPtr<IWICMetadataQueryReader> MakeQueryReader(ComPtr<IUnknown> owner, MetadataBlocks &blocks)
{
    return CMetadataQuery::Make(std::move(owner), blocks, nullptr, WideText());
}

ComPtr<IWICMetadataQueryWriter> MakeQueryWriter(ComPtr<IUnknown> owner, MetadataBlocks &blocks, const bool &closed)
{
    return CMetadataQuery::Make(std::move(owner), blocks, &closed, WideText());
}
