#include "host/CopiedBlocks.h"

#include "host/ExifFields.h"

#include "com/Hresult.h"
#include "com/TextConversion.h"

#include <string>

namespace
{
// Copies of other blocks, layers and directories of small pictures that lie in IFD0.
constexpr WORD CopiesInMain[] = {700, 33723, 34377, 37724};

// More segments of a kind than any file has; ends the loop on a writer that always claims success.
constexpr int MostSegments = 10000;
} // namespace

WideText ExifPath(ExifField::Directory directory, WORD tag)
{
    static constexpr WideView Folders[] = {TEXT("/app1/ifd/"), TEXT("/app1/ifd/exif/"), TEXT("/app1/ifd/gps/")};
    return WideText(Folders[static_cast<size_t>(directory)]) + TEXT("{ushort=") + FromUtf8(std::to_string(tag)) +
           TEXT("}");
}

bool CopiedBlocks::Remove(const WideText &path, Name name)
{
    const HRESULT result = m_writer.RemoveMetadataByName(path.c_str());
    if (result == WINCODEC_ERR_PROPERTYNOTFOUND ||
        (result == WINCODEC_ERR_INVALIDQUERYREQUEST && name == Name::Foreign))
    {
        return false;
    }
    ThrowIfFailed(result);
    return true;
}

void CopiedBlocks::RemoveEach(const WideText &path, Name name)
{
    for (int left = MostSegments; Remove(path, name); --left)
    {
        if (left == 0)
        {
            ThrowHresult(WINCODEC_ERR_UNEXPECTEDMETADATATYPE);
        }
    }
}

UINT16 CopiedBlocks::Orientation()
{
    PROPVARIANT value = {};
    const WideText path = ExifPath(ExifField::Directory::Main, ExifTag::Orientation);
    const HRESULT result = m_writer.GetMetadataByName(path.c_str(), &value);
    const UINT16 orientation = SUCCEEDED(result) && value.vt == VT_UI2 ? value.uiVal : UINT16{0};
    PropVariantClear(&value);
    return orientation <= 8 ? orientation : UINT16{0};
}

void CopiedBlocks::RemoveAll()
{
    RemoveExif();
    Remove(TEXT("/xmp"));
    Remove(TEXT("/app13"));
    RemoveEach(TEXT("/com"));
    RemoveEach(TEXT("/unknown"), Name::Foreign);
    for (int number = 0; number <= 15; ++number)
    {
        RemoveEach((number == 1 ? TEXT("/[1]app") : TEXT("/app")) + FromUtf8(std::to_string(number)),
                   Name::Foreign);
    }
}

void CopiedBlocks::RemoveClosed()
{
    Remove(TEXT("/xmp"));
    Remove(TEXT("/app13"));
    Remove(TEXT("/app1/thumb"));
    for (const WORD tag : CopiesInMain)
    {
        Remove(ExifPath(ExifField::Directory::Main, tag));
    }
}

void CopiedBlocks::RemoveExif()
{
    Remove(TEXT("/app1"));
}

bool CopiedBlocks::RemoveMakerNote()
{
    return Remove(ExifPath(ExifField::Directory::Exif, ExifTag::MakerNote));
}
