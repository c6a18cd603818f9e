// The metadata blocks of its source that a new frame begins with, and removing them.
//
// Imaging components differ in the names by which blocks are removed: application segments other than those that
// hold EXIF, XMP and IPTC have their numbers' names, or all the same one. Which it is, and that nothing stays, is
// tried out (ImagingTrial.h).
#pragma once

#include "host/MetadataSnapshots.h"

#include <wincodec.h>

// The query that a field of an EXIF block has in a JPEG file's frame.
WideText ExifPath(ExifField::Directory directory, WORD tag);

// The writer must outlive it. All throw the code of a removal that failed; a block that isn't there is no failure.
class CopiedBlocks
{
public:
    explicit CopiedBlocks(IWICMetadataQueryWriter &writer) : m_writer(writer) {}

    // EXIF's number, or 0.
    UINT16 Orientation();

    void RemoveAll();

    // What is never published: XMP and IPTC, which are written anew, thumbnails and layers. The EXIF block stays.
    void RemoveClosed();

    void RemoveExif();

    // False if there was none.
    bool RemoveMakerNote();

private:
    enum class Name
    {
        Known,
        Foreign // to some components, which call it an invalid query
    };

    bool Remove(const WideText &path, Name name = Name::Known);
    void RemoveEach(const WideText &path, Name name = Name::Known);

    IWICMetadataQueryWriter &m_writer;
};
