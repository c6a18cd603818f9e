#include "platform/windowscodecs/jpeg/MetadataQueryObject.h"

#include "com/ComObject.h"
#include "platform/windowscodecs/UncalledMethods.h"
#include "platform/windowscodecs/jpeg/MetadataQueries.h"

#include <mutex>

namespace
{
// Reader and writer in one class; the reader's interface has no methods that change anything.
class CMetadataQuery final
    : public UncalledOfMetadataQueries<
          ComObject<CMetadataQuery, Answers<IWICMetadataQueryWriter, IWICMetadataQueryReader>>>
{
public:
    CMetadataQuery(ComPtr<IUnknown> owner, MetadataBlocks &blocks) : m_owner(std::move(owner)), m_blocks(blocks) {}

    // value may be null to ask whether there is one.
    STDMETHODIMP GetMetadataByName(LPCWSTR name, PROPVARIANT *value) noexcept override
    {
        if (name == nullptr)
        {
            return E_INVALIDARG;
        }
        PROPVARIANT found{};
        const HRESULT result = AtBoundary([&] {
            const std::lock_guard guard(m_mutex);
            GetMetadata(m_blocks, name, &found);
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

    STDMETHODIMP SetMetadataByName(LPCWSTR name, const PROPVARIANT *value) noexcept override
    {
        if (name == nullptr || value == nullptr)
        {
            return E_INVALIDARG;
        }
        return Change([&] { SetMetadata(m_blocks, name, *value); });
    }

    STDMETHODIMP RemoveMetadataByName(LPCWSTR name) noexcept override
    {
        if (name == nullptr)
        {
            return E_INVALIDARG;
        }
        return Change([&] { RemoveMetadata(m_blocks, name); });
    }

private:
    template <class Work>
    HRESULT Change(Work work) noexcept
    {
        return AtBoundary([&] {
            const std::lock_guard guard(m_mutex);
            work();
            return S_OK;
        });
    }

    ComPtr<IUnknown> m_owner;
    MetadataBlocks &m_blocks;
    std::mutex m_mutex;
};
} // namespace

ComPtr<IWICMetadataQueryReader> MakeQueryReader(ComPtr<IUnknown> owner, MetadataBlocks &blocks)
{
    return CMetadataQuery::Make(std::move(owner), blocks);
}

ComPtr<IWICMetadataQueryWriter> MakeQueryWriter(ComPtr<IUnknown> owner, MetadataBlocks &blocks)
{
    return CMetadataQuery::Make(std::move(owner), blocks);
}
