#include "tests/platform/windowscodecs_jpeg/SamplePictures_posix.h"

#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>

// The library's boolean is an int, that of Windows' headers a byte.
#define boolean JpegBoolean
#include <jpeglib.h>
#undef boolean

namespace
{
struct Trap
{
    jpeg_error_mgr Manager;
    jmp_buf Home;
};

void Leave(j_common_ptr common)
{
    longjmp(reinterpret_cast<Trap *>(common->err)->Home, 1);
}

void Count(j_common_ptr common, int level)
{
    common->err->num_warnings += level < 0;
}

// Gradients with some grain, so that no coefficient is trivially zero.
std::vector<JSAMPLE> Row(const SampleOptions &options, int y)
{
    std::vector<JSAMPLE> row;
    for (int x = 0; x < options.Width; ++x)
    {
        for (int c = 0; c < options.Components; ++c)
        {
            const double wave = 60 * std::sin(x * 0.11 * (c + 1) + y * 0.07) + 40 * std::cos(y * 0.19 * (c + 1));
            row.push_back(static_cast<JSAMPLE>(128 + wave + (x * 31 + y * 17 + c * 7) % 13));
        }
    }
    return row;
}

void SetUp(jpeg_compress_struct &encoder, const SampleOptions &options)
{
    encoder.image_width = static_cast<JDIMENSION>(options.Width);
    encoder.image_height = static_cast<JDIMENSION>(options.Height);
    encoder.input_components = options.Components;
    encoder.in_color_space = options.Components == 1   ? JCS_GRAYSCALE
                             : options.Components == 3 ? JCS_RGB
                                                       : JCS_CMYK;
    jpeg_set_defaults(&encoder);
    jpeg_set_quality(&encoder, options.Quality, TRUE);
    if (options.StoredAsRgb)
    {
        jpeg_set_colorspace(&encoder, JCS_RGB);
    }
    if (options.StoredAsYcck)
    {
        jpeg_set_colorspace(&encoder, JCS_YCCK);
    }
    encoder.comp_info[0].h_samp_factor = options.HorizontalSampling;
    encoder.comp_info[0].v_samp_factor = options.VerticalSampling;
    encoder.restart_interval = static_cast<unsigned>(options.RestartInterval);
    encoder.arith_code = options.Arithmetic;
    encoder.write_Adobe_marker = encoder.write_Adobe_marker && options.AdobeMarker;
    if (options.Progressive)
    {
        jpeg_simple_progression(&encoder);
    }
}
} // namespace

Octets MakeJpeg(const SampleOptions &options)
{
    jpeg_compress_struct encoder;
    jpeg_error_mgr errors;
    encoder.err = jpeg_std_error(&errors);
    jpeg_create_compress(&encoder);
    unsigned char *memory = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&encoder, &memory, &size);
    SetUp(encoder, options);
    std::vector<jpeg_scan_info> scans;
    if (options.SeveralScans)
    {
        for (int c = 0; c < options.Components; ++c)
        {
            scans.push_back({1, {c}, 0, 63, 0, 0});
        }
        encoder.scan_info = scans.data();
        encoder.num_scans = options.Components;
    }
    jpeg_start_compress(&encoder, TRUE);
    for (const Marker &marker : options.Markers)
    {
        jpeg_write_marker(&encoder, marker.Code, reinterpret_cast<const JOCTET *>(marker.Contents.data()),
                          static_cast<unsigned>(marker.Contents.size()));
    }
    for (int y = 0; y < options.Height; ++y)
    {
        std::vector<JSAMPLE> row = Row(options, y);
        JSAMPROW rows[1] = {row.data()};
        jpeg_write_scanlines(&encoder, rows, 1);
    }
    jpeg_finish_compress(&encoder);
    Octets file(memory, memory + size);
    std::free(memory);
    jpeg_destroy_compress(&encoder);
    return file;
}

Octets DecodeJpeg(const Octets &file)
{
    Octets *samples = new Octets;
    jpeg_decompress_struct decoder;
    Trap trap;
    decoder.err = jpeg_std_error(&trap.Manager);
    trap.Manager.error_exit = Leave;
    trap.Manager.emit_message = Count;
    jpeg_create_decompress(&decoder);
    if (setjmp(trap.Home) == 0)
    {
        jpeg_mem_src(&decoder, file.data(), file.size());
        jpeg_read_header(&decoder, TRUE);
        decoder.out_color_space = decoder.jpeg_color_space;
        jpeg_start_decompress(&decoder);
        const size_t rowSize = static_cast<size_t>(decoder.output_width) * decoder.output_components;
        samples->resize(16 + rowSize * decoder.output_height);
        (*samples)[0] = static_cast<unsigned char>(decoder.jpeg_color_space);
        (*samples)[1] = static_cast<unsigned char>(decoder.output_width >> 8);
        (*samples)[2] = static_cast<unsigned char>(decoder.output_width);
        while (decoder.output_scanline < decoder.output_height)
        {
            JSAMPROW rows[1] = {samples->data() + 16 + rowSize * decoder.output_scanline};
            jpeg_read_scanlines(&decoder, rows, 1);
        }
        jpeg_finish_decompress(&decoder);
        if (trap.Manager.num_warnings > 0)
        {
            samples->clear();
        }
    }
    else
    {
        samples->clear();
    }
    jpeg_destroy_decompress(&decoder);
    Octets result = std::move(*samples);
    delete samples;
    return result;
}
