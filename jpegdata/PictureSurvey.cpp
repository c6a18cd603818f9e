#include "jpegdata/PictureSurvey.h"

#include "jpegdata/JpegMarkers.h"
#include "jpegdata/Scan.h"

namespace
{
// A file of a few megabytes can name so many scans over a large frame that reading them takes hours.
constexpr int MaxScans = 500;

// T.81, B.2.3; decoders hold no more.
constexpr UINT MaxBlocksOfUnit = 10;

// What is remembered of a progressive picture. 16 million blocks are a gray picture of 1,000 megapixels.
constexpr ULONGLONG MaxRememberedBlocks = ULONGLONG{16} << 20;

// Ends the survey of a file that isn't for this reader.
struct NotForUs
{
};

UINT DivideUp(UINT value, UINT by) noexcept
{
    return (value + by - 1) / by;
}

class Surveyor
{
public:
    Surveyor(ByteReader read, const std::atomic<bool> *stop) : m_data(std::move(read)), m_stop(stop) {}

    PictureSurvey Run()
    {
        try
        {
            ReadSegments();
            RequireAllParts();
            m_survey.state = PictureState::Whole;
        }
        catch (const CodedDataError &error)
        {
            m_survey.state = PictureState::Damaged;
            m_survey.damage = error.what();
        }
        catch (const NotForUs &)
        {
        }
        catch (const ScanStopped &)
        {
        }
        return std::move(m_survey);
    }

private:
    void ReadSegments()
    {
        if (m_data.Next() != 0xFF || m_data.Next() != MARKER_SOI)
        {
            throw NotForUs();
        }
        // A second start of image is that of another picture behind this one, which has no end.
        for (int marker = NextMarker(); marker >= 0 && marker != MARKER_SOI; marker = NextMarker())
        {
            if (marker == MARKER_EOI)
            {
                m_survey.hasEnd = true;
                return;
            }
            if (marker == MARKER_TEM || IsRestart(static_cast<BYTE>(marker)))
            {
                continue;
            }
            ReadSegment(static_cast<BYTE>(marker));
        }
    }

    // Past bytes that belong to no segment; -1 at the end.
    int NextMarker()
    {
        for (;;)
        {
            int byte = m_data.Next();
            while (byte >= 0 && byte != 0xFF)
            {
                byte = m_data.Next();
            }
            while (byte == 0xFF)
            {
                byte = m_data.Next();
            }
            if (byte != 0)
            {
                return byte;
            }
        }
    }

    UINT TakeByte()
    {
        const int byte = m_data.Next();
        if (byte < 0)
        {
            throw CodedDataError("it breaks off in a header");
        }
        return static_cast<UINT>(byte);
    }

    UINT TakeWord()
    {
        const UINT high = TakeByte();
        return high << 8 | TakeByte();
    }

    void ReadSegment(BYTE marker)
    {
        const UINT length = TakeWord();
        if (length < 2)
        {
            throw CodedDataError("a header has no length");
        }
        const ULONGLONG end = m_data.Position() + length - 2;
        switch (marker)
        {
        case MARKER_DQT:
            ReadQuantizers(end);
            break;
        case MARKER_DHT:
            ReadTables(end);
            break;
        case MARKER_DRI:
            m_restartInterval = TakeWord();
            break;
        case MARKER_SOS:
            ReadScan(m_data, ReadScanHeader(end), m_survey.unread, m_stop);
            return;
        default:
            if (IsFrameHeader(marker))
            {
                ReadFrame(marker);
                break;
            }
            m_data.Skip(length - 2);
        }
        RequireEnd(end);
    }

    // Decoders refuse a header of another length, and nothing is hidden in one.
    void RequireEnd(ULONGLONG end) const
    {
        if (m_data.Position() != end)
        {
            throw CodedDataError("a header has another length than it says");
        }
    }

    void ReadQuantizers(ULONGLONG end)
    {
        while (m_data.Position() < end)
        {
            const UINT place = TakeByte();
            m_hasQuantizer[place & 3] = true;
            m_data.Skip(place >> 4 == 0 ? 64 : 128);
        }
    }

    void ReadTables(ULONGLONG end)
    {
        while (m_data.Position() < end)
        {
            const UINT place = TakeByte();
            BYTE counts[16];
            UINT sum = 0;
            for (BYTE &count : counts)
            {
                count = static_cast<BYTE>(TakeByte());
                sum += count;
            }
            BYTE symbols[256] = {};
            for (UINT i = 0; i < sum; ++i)
            {
                symbols[i % 256] = static_cast<BYTE>(TakeByte());
            }
            if ((place & ~0x13u) != 0 || sum > 256 || !m_tables[place >> 4][place & 3].Build(counts, symbols))
            {
                throw CodedDataError("a table of its codes is none");
            }
        }
    }

    void ReadFrame(BYTE marker)
    {
        const UINT bits = TakeByte();
        const UINT height = TakeWord();
        const UINT width = TakeWord();
        const UINT count = TakeByte();
        if ((marker != MARKER_SOF0 && marker != MARKER_SOF1 && marker != MARKER_SOF2) || bits != 8 ||
            height == 0 || width == 0 || count == 0 || count > 4)
        {
            throw NotForUs();
        }
        if (!m_components.empty())
        {
            throw CodedDataError("it has two frames");
        }
        m_isProgressive = marker == MARKER_SOF2;
        m_components.resize(count);
        UINT across = 1;
        UINT down = 1;
        for (Component &component : m_components)
        {
            component.id = static_cast<BYTE>(TakeByte());
            const UINT sampling = TakeByte();
            component.quantizer = TakeByte() & 3;
            component.horizontal = sampling >> 4;
            component.vertical = sampling & 15;
            if (component.horizontal - 1 > 3 || component.vertical - 1 > 3)
            {
                throw CodedDataError("its frame has a sampling that there isn't");
            }
            across = std::max(across, component.horizontal);
            down = std::max(down, component.vertical);
            component.lowestBit.fill(-1);
        }
        for (Component &component : m_components)
        {
            component.width = DivideUp(width * component.horizontal, across * 8);
            component.height = DivideUp(height * component.vertical, down * 8);
        }
        m_unitsAcross = DivideUp(width, across * 8);
        m_unitsDown = DivideUp(height, down * 8);
    }

    Scan ReadScanHeader(ULONGLONG end)
    {
        if (m_components.empty() || ++m_scans > MaxScans)
        {
            throw CodedDataError("a scan has no frame, or there are more than any encoder makes");
        }
        Scan scan;
        scan.parts.resize(TakeByte());
        UINT blocks = 0;
        for (ScanPart &part : scan.parts)
        {
            part = ReadScanPart();
            blocks += part.component->horizontal * part.component->vertical;
        }
        if (scan.parts.empty() || (scan.parts.size() > 1 && blocks > MaxBlocksOfUnit))
        {
            throw CodedDataError("the header of a scan has no meaning");
        }
        scan.range.first = static_cast<int>(TakeByte());
        scan.range.last = static_cast<int>(TakeByte());
        const UINT bits = TakeByte();
        scan.range.bitBefore = static_cast<int>(bits >> 4);
        scan.range.bit = static_cast<int>(bits & 15);
        RequireEnd(end);
        scan.isProgressive = m_isProgressive;
        scan.isWholePicture = !m_isProgressive && scan.parts.size() == m_components.size();
        const Component &first = *scan.parts[0].component;
        const bool isAlone = scan.parts.size() == 1;
        scan.units = isAlone ? first.Blocks() : ULONGLONG{m_unitsAcross} * m_unitsDown;
        scan.unitsAcross = isAlone ? first.width : m_unitsAcross;
        scan.restartInterval = m_restartInterval;
        if (m_isProgressive)
        {
            NoteProgress(scan.parts, scan.range);
        }
        RequireTables(scan);
        return scan;
    }

    ScanPart ReadScanPart()
    {
        const UINT id = TakeByte();
        const UINT tables = TakeByte();
        const auto found = std::find_if(m_components.begin(), m_components.end(),
                                        [id](const Component &component) { return component.id == id; });
        if (found == m_components.end() || (tables & ~0x33u) != 0 || !m_hasQuantizer[found->quantizer] ||
            (found->isSeen && !m_isProgressive))
        {
            throw CodedDataError("the header of a scan names what isn't there, or what was there before");
        }
        found->isSeen = true;
        return {&*found, &m_tables[0][tables >> 4], &m_tables[1][tables & 3]};
    }

    // A scan codes coefficients anew, or one more bit of what earlier ones coded.
    void NoteProgress(const std::vector<ScanPart> &parts, const ScanRange &range)
    {
        const bool isDc = range.first == 0;
        if (range.last > 63 || range.first > range.last || (isDc && range.last != 0) ||
            (!isDc && parts.size() > 1) || range.bit > 13 ||
            (range.bitBefore != 0 && range.bit != range.bitBefore - 1))
        {
            throw CodedDataError("the header of a scan has no meaning");
        }
        for (const ScanPart &part : parts)
        {
            auto &lowest = part.component->lowestBit;
            for (int k = range.first; k <= range.last; ++k)
            {
                if (std::max<int>(lowest[k], 0) != range.bitBefore || (!isDc && lowest[0] < 0))
                {
                    throw CodedDataError("a scan is missing");
                }
                lowest[k] = static_cast<signed char>(range.bit);
            }
            if (!isDc && part.component->blocks.empty())
            {
                m_remembered += part.component->Blocks();
                if (m_remembered > MaxRememberedBlocks)
                {
                    throw NotForUs();
                }
                part.component->blocks.resize(static_cast<size_t>(part.component->Blocks()));
            }
        }
    }

    void RequireTables(const Scan &scan) const
    {
        const bool needsDc = !m_isProgressive || (scan.range.first == 0 && scan.range.bitBefore == 0);
        const bool needsAc = !m_isProgressive || scan.range.first > 0;
        for (const ScanPart &part : scan.parts)
        {
            if ((needsDc && !part.dc->IsBuilt()) || (needsAc && !part.ac->IsBuilt()))
            {
                throw NotForUs(); // decoders take those of the standard's annex
            }
        }
    }

    void RequireAllParts() const
    {
        for (const Component &component : m_components)
        {
            const bool isCoded = m_isProgressive ? component.lowestBit[0] >= 0 : component.isSeen;
            // Scans that make the picture finer may be left out, but not get lost.
            const bool isComplete =
                !m_isProgressive || std::all_of(component.lowestBit.begin(), component.lowestBit.end(),
                                                [](signed char bit) { return bit == 0; });
            if (!isCoded || (!m_survey.hasEnd && !isComplete))
            {
                throw CodedDataError("a scan is missing");
            }
        }
        if (m_components.empty() || (!m_survey.hasEnd && !m_survey.unread.empty()))
        {
            throw CodedDataError("its coded data breaks off before the picture ends");
        }
    }

    CodedData m_data;
    const std::atomic<bool> *const m_stop;
    PictureSurvey m_survey;
    bool m_isProgressive = false;
    std::vector<Component> m_components;
    UINT m_unitsAcross = 0;
    UINT m_unitsDown = 0;
    HuffmanTable m_tables[2][4]; // for DC and AC coefficients
    bool m_hasQuantizer[4] = {};
    UINT m_restartInterval = 0;
    int m_scans = 0;
    ULONGLONG m_remembered = 0;
};
} // namespace

PictureSurvey SurveyPicture(ByteReader read, const std::atomic<bool> *stop)
{
    return Surveyor(std::move(read), stop).Run();
}
