#include "host/ImageMetadata.h"

#include "host/WholeFile.h"

#include "core/Hresult.h"

HRESULT ReadMetadata(const std::filesystem::path &file, ImageTexts &texts, MetadataSnapshot *groups) noexcept
{
    texts = ImageTexts();
    if (groups != nullptr)
    {
        *groups = MetadataSnapshot();
    }
    return AtBoundary([&] {
        const std::error_code fault = TryToRead(file);
        return fault ? HRESULT_FROM_WIN32(static_cast<DWORD>(fault.value())) : S_OK;
    });
}
