#include "tests/host/SampleDng.h"

#include <tiffio.hxx>

#include <cstdint>
#include <memory>
#include <sstream>
#include <vector>

namespace
{
// Rows of red and green alternate with rows of green and blue.
void WriteMosaic(TIFF *file, unsigned width, unsigned height)
{
    constexpr bool lit[4][3] = {
        {true, false, false}, {false, true, false}, {false, false, true}, {true, true, true}};
    std::vector<uint16_t> row(width);
    for (unsigned y = 0; y < height; ++y)
    {
        for (unsigned x = 0; x < width; ++x)
        {
            const unsigned quarter = (y >= height / 2 ? 2 : 0) + (x >= width / 2 ? 1 : 0);
            row[x] = lit[quarter][x % 2 + y % 2] ? 60000 : 0;
        }
        TIFFWriteScanline(file, row.data(), y);
    }
}
} // namespace

std::string MakeDng(unsigned width, unsigned height, unsigned short orientation)
{
    std::ostringstream bytes;
    {
        const std::unique_ptr<TIFF, void (*)(TIFF *)> owned(TIFFStreamOpen("sample", &bytes), TIFFClose);
        TIFF *const file = owned.get();
        const uint16_t pattern[] = {2, 2};
        // From XYZ to linear sRGB, which is the sensor's: IEC 61966-2-1.
        const float toSensor[] = {3.2406f, -1.5372f, -0.4986f, -0.9689f, 1.8758f,
                                  0.0415f, 0.0557f,  -0.2040f, 1.0570f};
        const float neutral[] = {1, 1, 1};
        const uint32_t white = 65535;
        constexpr int daylightOf6500Kelvin = 21;
        TIFFSetField(file, TIFFTAG_SUBFILETYPE, 0);
        TIFFSetField(file, TIFFTAG_IMAGEWIDTH, width);
        TIFFSetField(file, TIFFTAG_IMAGELENGTH, height);
        TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, 16);
        TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, height);
        TIFFSetField(file, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_CFA);
        TIFFSetField(file, TIFFTAG_MAKE, "Halvora");
        TIFFSetField(file, TIFFTAG_MODEL, "Sample One");
        TIFFSetField(file, TIFFTAG_ORIENTATION, orientation);
        TIFFSetField(file, TIFFTAG_CFAREPEATPATTERNDIM, pattern);
        TIFFSetField(file, TIFFTAG_CFAPATTERN, 4, "\0\1\1\2");
        TIFFSetField(file, TIFFTAG_DNGVERSION, "\1\4\0\0");
        TIFFSetField(file, TIFFTAG_UNIQUECAMERAMODEL, "Halvora Sample One");
        TIFFSetField(file, TIFFTAG_WHITELEVEL, 1, &white);
        TIFFSetField(file, TIFFTAG_COLORMATRIX1, 9, toSensor);
        TIFFSetField(file, TIFFTAG_ASSHOTNEUTRAL, 3, neutral);
        TIFFSetField(file, TIFFTAG_CALIBRATIONILLUMINANT1, daylightOf6500Kelvin);
        WriteMosaic(file, width, height);
    }
    return bytes.str();
}
