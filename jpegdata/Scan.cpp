#include "jpegdata/Scan.h"

#include "jpegdata/JpegMarkers.h"

#include <limits>

namespace
{
// Bytes that some encoders leave behind the last block of an interval. More of them, or blocks, were pushed out of
// the picture by damage: Huffman codes soon fall into step again, but at another place of the picture.
constexpr ULONGLONG MaxSpareBytes = 64;

class ScanReading
{
public:
    ScanReading(CodedData &data, const Scan &scan, std::vector<ByteRange> &unread, const std::atomic<bool> *stop)
        : m_data(data), m_scan(scan), m_unread(unread), m_stop(stop), m_untilRestart(scan.restartInterval)
    {
        for (const ScanPart &part : scan.parts)
        {
            const UINT blocks = scan.parts.size() == 1 ? 1 : part.component->horizontal * part.component->vertical;
            m_unit.insert(m_unit.end(), blocks, &part);
        }
    }

    void Run()
    {
        const bool isFirst = m_scan.range.bitBefore == 0;
        if (!m_scan.isProgressive)
        {
            ReadUnits([this](const ScanPart &part, size_t) { ReadSequentialBlock(m_data, *part.dc, *part.ac); });
        }
        else if (m_scan.range.first != 0)
        {
            const auto read = isFirst ? ReadAcBlock : RefineAcBlock;
            ReadUnits([this, read](const ScanPart &part, size_t block) {
                read(m_data, *part.ac, m_scan.range, m_run, part.component->blocks[block]);
            });
        }
        else if (isFirst)
        {
            ReadUnits([this](const ScanPart &part, size_t) { ReadDcBlock(m_data, *part.dc); });
        }
        else
        {
            ReadUnits([this](const ScanPart &, size_t) { ReadDcBit(m_data); });
        }
    }

private:
    template <class ReadBlock>
    void ReadUnits(ReadBlock readBlock)
    {
        for (ULONGLONG i = 0; i < m_scan.units; ++i)
        {
            if (i % 4096 == 0 && m_stop != nullptr && *m_stop)
            {
                throw ScanStopped();
            }
            ReadUnit(readBlock, i);
        }
        const ULONGLONG end = m_data.BitsPosition();
        const ULONGLONG more = m_scan.isWholePicture ? CountUnitsBehind(readBlock) : 0;
        // Whole rows: the frame's header was made to tell of fewer, which hides them.
        const bool isCropped = more != 0 && more % m_scan.unitsAcross == 0;
        NoteUnread({end, m_data.EndBits(true).end}, isCropped   ? std::numeric_limits<ULONGLONG>::max()
                                                    : more != 0 ? 0
                                                                : MaxSpareBytes);
    }

    template <class ReadBlock>
    void ReadUnit(ReadBlock readBlock, ULONGLONG index)
    {
        if (m_scan.restartInterval != 0 && m_untilRestart-- == 0)
        {
            TakeRestart();
            m_untilRestart = m_scan.restartInterval - 1;
        }
        for (const ScanPart *const part : m_unit)
        {
            readBlock(*part, static_cast<size_t>(index));
        }
    }

    // How many further units the data holds; 0 if it doesn't end with one.
    template <class ReadBlock>
    ULONGLONG CountUnitsBehind(ReadBlock readBlock)
    {
        const size_t known = m_unread.size();
        ULONGLONG units = 0;
        try
        {
            for (; m_data.GoesOn(); ++units)
            {
                ReadUnit(readBlock, 0);
            }
        }
        catch (const CodedDataError &)
        {
            units = 0;
        }
        m_unread.resize(known);
        return units;
    }

    void TakeRestart()
    {
        NoteUnread(m_data.EndBits(false), MaxSpareBytes);
        m_run = 0;
        if (!m_data.TakeMarker(static_cast<BYTE>(MARKER_RST0 + m_restarts++ % 8)))
        {
            throw CodedDataError("a part of its coded data is missing");
        }
    }

    void NoteUnread(const ByteRange &range, ULONGLONG most)
    {
        if (m_run != 0 || range.end - range.begin > most)
        {
            throw CodedDataError("its coded data holds more than the picture");
        }
        if (range.begin != range.end)
        {
            m_unread.push_back(range);
        }
    }

    CodedData &m_data;
    const Scan &m_scan;
    std::vector<ByteRange> &m_unread;
    const std::atomic<bool> *const m_stop;
    std::vector<const ScanPart *> m_unit; // a part for each of its blocks
    UINT m_untilRestart;
    int m_restarts = 0;
    UINT m_run = 0;
};
} // namespace

void ReadScan(CodedData &data, const Scan &scan, std::vector<ByteRange> &unread, const std::atomic<bool> *stop)
{
    ScanReading(data, scan, unread, stop).Run();
}
