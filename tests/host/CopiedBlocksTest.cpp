#include "host/CopiedBlocks.h"

#include "com/ComObject.h"
#include "com/ComPtr.h"
#include "com/WideText.h"

#include <gmock/gmock.h>

#include <map>

using testing::IsEmpty;

namespace
{
using Blocks = std::map<WideText, int>; // by name, with how many there are

// A frame with blocks. Names that aren't among them mean nothing to it.
class Frame final : public ComObject<Frame, Answers<IWICMetadataQueryWriter, IWICMetadataQueryReader>>
{
public:
    explicit Frame(Blocks blocks) : Held(std::move(blocks)) {}

    STDMETHODIMP RemoveMetadataByName(LPCWSTR name) noexcept override
    {
        const auto found = Held.find(name);
        if (found == Held.end())
        {
            return WINCODEC_ERR_INVALIDQUERYREQUEST;
        }
        return found->second-- > 0 ? S_OK : WINCODEC_ERR_PROPERTYNOTFOUND;
    }
    STDMETHODIMP SetMetadataByName(LPCWSTR, const PROPVARIANT *) noexcept override { return S_OK; }
    STDMETHODIMP GetMetadataByName(LPCWSTR, PROPVARIANT *) noexcept override
    {
        return WINCODEC_ERR_PROPERTYNOTFOUND;
    }
    STDMETHODIMP GetContainerFormat(GUID *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetLocation(UINT, WCHAR *, UINT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetEnumerator(IEnumString **) noexcept override { return E_NOTIMPL; }

    Blocks Held;
};

HRESULT RemoveAll(Blocks &blocks)
{
    const auto frame = Frame::Make(blocks);
    const HRESULT result = AtBoundary([&] {
        CopiedBlocks(*frame.Get()).RemoveAll();
        return S_OK;
    });
    blocks = frame->Held;
    std::erase_if(blocks, [](const auto &block) { return block.second <= 0; });
    return result;
}
} // namespace

TEST(CopiedBlocks, AreRemovedWhateverTheirNames)
{
    const Blocks known = {{TEXT("/app1"), 1}, {TEXT("/xmp"), 1}, {TEXT("/app13"), 1}, {TEXT("/com"), 2}};
    Blocks byOneName = known;
    byOneName[TEXT("/unknown")] = 3;
    Blocks byNumber = known;
    byNumber[TEXT("/app2")] = byNumber[TEXT("/[1]app1")] = byNumber[TEXT("/app15")] = 2;
    for (Blocks blocks : {byOneName, byNumber})
    {
        EXPECT_EQ(RemoveAll(blocks), S_OK);
        EXPECT_THAT(blocks, IsEmpty());
    }
    // Of the blocks that every component has, none may be passed over.
    Blocks withoutExif = {{TEXT("/xmp"), 1}, {TEXT("/app13"), 1}, {TEXT("/com"), 1}};
    EXPECT_EQ(RemoveAll(withoutExif), WINCODEC_ERR_INVALIDQUERYREQUEST);
}
