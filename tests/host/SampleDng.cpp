#include "tests/host/SampleDng.h"

#include <cstdint>
#include <map>
#include <vector>

namespace
{
enum Type : uint16_t
{
    Byte = 1,
    Ascii = 2,
    Short = 3,
    Long = 4,
    Rational = 5,
    SignedRational = 10
};

std::string Little(uint32_t value, int bytes)
{
    std::string text;
    for (; bytes > 0; --bytes, value >>= 8)
    {
        text += static_cast<char>(value & 0xFF);
    }
    return text;
}

struct Field
{
    Type type;
    uint32_t count;
    std::string data;
};

// One directory of a TIFF file, little-endian; the values that don't fit in it follow it.
class Directory
{
public:
    void Shorts(uint16_t tag, std::vector<uint16_t> values)
    {
        Field &field = m_fields[tag] = {Short, static_cast<uint32_t>(values.size()), {}};
        for (const uint16_t value : values)
        {
            field.data += Little(value, 2);
        }
    }
    void SetLong(uint16_t tag, uint32_t value) { m_fields[tag] = {Long, 1, Little(value, 4)}; }
    void Text(uint16_t tag, const std::string &text)
    {
        m_fields[tag] = {Ascii, static_cast<uint32_t>(text.size() + 1), text + '\0'};
    }
    void Bytes(uint16_t tag, const std::string &bytes)
    {
        m_fields[tag] = {Byte, static_cast<uint32_t>(bytes.size()), bytes};
    }
    // Ten thousandths.
    void Fractions(uint16_t tag, Type type, std::vector<int32_t> values)
    {
        Field &field = m_fields[tag] = {type, static_cast<uint32_t>(values.size()), {}};
        for (const int32_t value : values)
        {
            field.data += Little(static_cast<uint32_t>(value), 4) + Little(10000, 4);
        }
    }

    uint32_t Size() const
    {
        uint32_t size = 2 + 4 + 12 * static_cast<uint32_t>(m_fields.size());
        for (const auto &[tag, field] : m_fields)
        {
            size += field.data.size() > 4 ? Even(field.data.size()) : 0;
        }
        return size;
    }

    // As it lies at this offset of the file.
    std::string At(uint32_t offset) const
    {
        std::string entries = Little(static_cast<uint32_t>(m_fields.size()), 2);
        std::string values;
        const auto valuesAt = static_cast<uint32_t>(offset + 2 + 12 * m_fields.size() + 4);
        for (const auto &[tag, field] : m_fields)
        {
            entries += Little(tag, 2) + Little(field.type, 2) + Little(field.count, 4);
            std::string data = field.data;
            if (data.size() <= 4)
            {
                data.resize(4);
                entries += data;
                continue;
            }
            entries += Little(static_cast<uint32_t>(valuesAt + values.size()), 4);
            data.resize(Even(data.size()));
            values += data;
        }
        return entries + Little(0, 4) + values;
    }

private:
    static uint32_t Even(size_t size) { return static_cast<uint32_t>(size + size % 2); }

    std::map<uint16_t, Field> m_fields;
};

// Rows of red and green alternate with rows of green and blue.
std::string Mosaic(unsigned width, unsigned height)
{
    constexpr bool lit[4][3] = {
        {true, false, false}, {false, true, false}, {false, false, true}, {true, true, true}};
    std::string pixels;
    for (unsigned y = 0; y < height; ++y)
    {
        for (unsigned x = 0; x < width; ++x)
        {
            const unsigned quarter = (y >= height / 2 ? 2 : 0) + (x >= width / 2 ? 1 : 0);
            pixels += Little(lit[quarter][x % 2 + y % 2] ? 60000 : 0, 2);
        }
    }
    return pixels;
}
} // namespace

std::string MakeDng(unsigned width, unsigned height, unsigned short orientation)
{
    Directory gps;
    gps.Text(1, "N");
    gps.Fractions(2, Rational, {590000, 200000, 305000});

    Directory main;
    main.SetLong(254, 0);
    main.SetLong(256, width);
    main.SetLong(257, height);
    main.Shorts(258, {16});
    main.Shorts(259, {1});
    main.Shorts(262, {32803}); // a mosaic
    main.Text(271, "Halvora");
    main.Text(272, "Sample One");
    main.SetLong(273, 0);
    main.Shorts(274, {orientation});
    main.Shorts(277, {1});
    main.SetLong(278, height);
    main.SetLong(279, width * height * 2);
    main.Shorts(33421, {2, 2});
    main.Bytes(33422, std::string("\0\1\1\2", 4));
    main.SetLong(34853, 0);
    main.Bytes(50706, std::string("\1\4\0\0", 4));
    main.Text(50708, "Halvora Sample One");
    main.SetLong(50717, 65535);
    // From XYZ to linear sRGB, which is the sensor's: IEC 61966-2-1.
    main.Fractions(50721, SignedRational, {32406, -15372, -4986, -9689, 18758, 415, 557, -2040, 10570});
    main.Fractions(50728, Rational, {10000, 10000, 10000});
    main.Shorts(50778, {21}); // seen in daylight of 6500 K

    constexpr uint32_t mainAt = 8;
    const uint32_t gpsAt = mainAt + main.Size();
    main.SetLong(34853, gpsAt);
    main.SetLong(273, gpsAt + gps.Size());
    return "II" + Little(42, 2) + Little(mainAt, 4) + main.At(mainAt) + gps.At(gpsAt) + Mosaic(width, height);
}
