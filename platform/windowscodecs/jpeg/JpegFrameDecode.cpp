#include "platform/windowscodecs/jpeg/JpegFrameDecode.h"

#include "com/Hresult.h"
#include "jpegdata/PictureSurvey.h"
#include "platform/windowscodecs/jpeg/MetadataQueries.h"
#include "platform/windowscodecs/jpeg/PixelCoding.h"

#include <algorithm>

namespace
{
constexpr double DefaultDpi = 96;

// By the header's density on one axis; the default where there is none.
double JfifDpi(const JpegStructure &structure, WORD density) noexcept
{
    const WORD fewer = std::min(structure.DensityX, structure.DensityY);
    if (!structure.HasJfif || structure.DensityUnit > 2 || (structure.DensityUnit == 0 && fewer == 0))
    {
        return DefaultDpi;
    }
    return density * (structure.DensityUnit == 0 ? DefaultDpi / fewer : structure.DensityUnit == 1 ? 1 : 2.54);
}
} // namespace

CJpegFrameDecode::CJpegFrameDecode(ComPtr<IStream> stream, ULONGLONG base, JpegStructure structure)
    : m_stream(std::move(stream)), m_base(base), m_structure(std::move(structure))
{
}

MetadataBlocks &CJpegFrameDecode::Metadata()
{
    if (!m_metadata)
    {
        auto blocks = std::make_unique<MetadataBlocks>();
        StreamBytes bytes = OpenBytes();
        blocks->Load(bytes, m_structure);
        m_metadata = std::move(blocks);
    }
    return *m_metadata;
}

HRESULT CJpegFrameDecode::GetSize(UINT *width, UINT *height) noexcept
{
    if (width == nullptr || height == nullptr)
    {
        return E_INVALIDARG;
    }
    *width = m_structure.Width;
    *height = m_structure.Height;
    return S_OK;
}

HRESULT CJpegFrameDecode::GetResolution(double *x, double *y) noexcept
{
    if (x == nullptr || y == nullptr)
    {
        return E_INVALIDARG;
    }
    *x = JfifDpi(m_structure, m_structure.DensityX);
    *y = JfifDpi(m_structure, m_structure.DensityY);
    // Unreadable metadata isn't this call's failure: what the JFIF header says holds then.
    AtBoundary([&] {
        const std::lock_guard guard(m_mutex);
        double exifX = 0;
        double exifY = 0;
        if (const auto &exif = Metadata().Exif; exif && exif->GetResolution(exifX, exifY))
        {
            *x = exifX;
            *y = exifY;
        }
        return S_OK;
    });
    return S_OK;
}

std::vector<ByteRange> CJpegFrameDecode::CheckPixels() const
{
    // Reads the header, which refuses what the survey doesn't look at.
    TrialDecoder trial(m_stream, m_base);
    StreamBytes bytes = OpenBytes();
    PictureSurvey survey = SurveyPicture([&](BYTE *to, size_t size) { return bytes.Read(to, size); }, nullptr);
    switch (survey.state)
    {
    case PictureState::Damaged:
        ThrowHresult(WINCODEC_ERR_BADIMAGE);
    case PictureState::Unknown:
        trial.DecodeAll();
        break;
    case PictureState::Whole:
        break;
    }
    return std::move(survey.unread);
}

HRESULT CJpegFrameDecode::GetMetadataQueryReader(IWICMetadataQueryReader **reader) noexcept
{
    if (reader == nullptr)
    {
        return E_INVALIDARG;
    }
    *reader = nullptr;
    return AtBoundary([&] {
        const std::lock_guard guard(m_mutex);
        *reader =
            MakeQueryReader(ComPtr<IUnknown>(static_cast<IWICBitmapFrameDecode *>(this)), Metadata()).Detach();
        return S_OK;
    });
}

HRESULT CJpegFrameDecode::GetColorContexts(UINT count, IWICColorContext **contexts, UINT *actual) noexcept
{
    if (actual == nullptr || (count > 0 && (contexts == nullptr || contexts[0] == nullptr)))
    {
        return E_INVALIDARG;
    }
    *actual = 0;
    return AtBoundary([&] {
        StreamBytes bytes = OpenBytes();
        const Bytes profile = ReadColorProfile(bytes, m_structure);
        if (profile.empty())
        {
            return S_OK;
        }
        if (count > 0)
        {
            ThrowIfFailed(contexts[0]->InitializeFromMemory(profile.data(), static_cast<UINT>(profile.size())));
        }
        *actual = 1;
        return S_OK;
    });
}
