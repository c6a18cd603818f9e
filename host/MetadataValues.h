// Writes single values of metadata into a new file as long as there is room for them.
//
// An EXIF block and an XMP packet have to fit into a segment of 64 KB each. What doesn't fit is left out: first a copied
// maker note, then the longest texts.
#pragma once

#include "host/IptcTexts.h"
#include "host/MetadataSnapshots.h"
#include "host/MetadataWriting.h"

#include "com/WideText.h"

#include <wincodec.h>

#include <string>
#include <vector>

// The writer and the notice must outlive it. What can't be written is noticed, or told by LeftOut if it had no room.
// All throw E_OUTOFMEMORY.
class MetadataValues
{
public:
    MetadataValues(IWICMetadataQueryWriter &writer, const WritingNotice &notice)
        : m_writer(writer), m_notice(notice)
    {
    }

    // Of a frame with copies: the new picture's own size has to fit in, or the copied EXIF block doesn't stay.
    void FitCopies(UINT32 width);

    // type: VT_UI2 or VT_UI4.
    void SetNumber(ExifField::Directory directory, WORD tag, VARTYPE type, UINT32 number);
    void SetAdobeRgb();

    // Unless the file holds it already.
    void SetField(const ExifField &field);

    // Written by WriteExifTexts, for which words say what it is. The text must live until then.
    void AddExifText(ExifField::Directory directory, WORD tag, const char *words, WideView text);

    // To be called when everything else is written: where there isn't room for all, the longest stay out.
    void WriteExifTexts();

    // The names are those of the query "/xmp/..."; that of several properties may begin with the kind of their list,
    // "<xmpbag>". Empty texts aren't written, nor is anything for a dataset without a name.
    void SetProperty(const WCHAR *name, WideView text);
    void SetProperties(WideView name, const std::vector<WideText> &texts);
    void SetDataset(const IptcDataset &dataset, WideView text);
    void SetDatasets(const IptcDataset &dataset, const std::vector<WideText> &texts);

    // What had no room, in words for the log; empty if there was room for all.
    std::string LeftOut() const;

private:
    struct ExifText
    {
        WideText path;
        std::string words;
        WideView text;
    };

    bool Holds(const WideText &path);
    void LeaveOut(const std::string &words) { m_leftOut.push_back(words); }
    bool SpareMakerNote();
    void Set(const WideText &path, const PROPVARIANT &value, const std::string &words);
    void SetText(const WideText &path, WideView text, const std::string &words);
    void SetTexts(const WideText &path, std::vector<WideText> texts, const std::string &words);
    bool TakeXmpRoom(size_t size, const std::string &words);

    IWICMetadataQueryWriter &m_writer;
    const WritingNotice &m_notice;
    size_t m_xmpText = 0;
    bool m_maySpareMakerNote = false;
    std::vector<ExifText> m_exifTexts;
    std::vector<std::string> m_leftOut;
};
