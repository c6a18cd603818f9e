#include "platform/windowscodecs/jpeg/PixelCoding.h"

#include "com/Hresult.h"
#include "jpegdata/JpegMarkers.h"

#include <csetjmp>
#include <cstdio>

#include <wincodec.h>

// The library's boolean is an int, that of Windows' headers a byte.
#define boolean JpegBoolean
#include <jpeglib.h>
#include <jerror.h>
#undef boolean

namespace
{
constexpr size_t BufferBytes = 64 * 1024;

// Coefficients of a progressive picture are all held at once, two bytes each.
constexpr long DecoderMemoryBytes = 1024L * 1024 * 1024;

// A file of a few megabytes can name so many scans over a large frame that it decodes for hours.
constexpr int MaxScans = 500;

// Where the library's way out leads. It is a longjmp: between Guard and the library's functions no
// frame may hold anything with a destructor.
struct ErrorTrap
{
    jpeg_error_mgr Manager;
    jmp_buf Home;
    HRESULT Code;
    bool Damaged;
    bool CountsSpareBytes; // as damage
};

ErrorTrap *TrapOf(j_common_ptr common) noexcept
{
    return reinterpret_cast<ErrorTrap *>(common->err);
}

HRESULT CodeOf(int message) noexcept
{
    switch (message)
    {
    case JERR_OUT_OF_MEMORY:
        return E_OUTOFMEMORY;
    case JERR_NO_BACKING_STORE:
    case JERR_IMAGE_TOO_BIG:
    case JERR_WIDTH_OVERFLOW:
        return WINCODEC_ERR_IMAGESIZEOUTOFRANGE;
    default:
        return WINCODEC_ERR_BADIMAGE;
    }
}

bool TellsDamage(int message) noexcept
{
    return message == JWRN_JPEG_EOF || message == JWRN_HIT_MARKER || message == JWRN_HUFF_BAD_CODE ||
           message == JWRN_ARITH_BAD_CODE || message == JWRN_BOGUS_PROGRESSION || message == JWRN_MUST_RESYNC;
}

[[noreturn]] void LeaveLibrary(j_common_ptr common)
{
    ErrorTrap *trap = TrapOf(common);
    if (SUCCEEDED(trap->Code))
    {
        trap->Code = CodeOf(common->err->msg_code);
    }
    longjmp(trap->Home, 1);
}

void NoteMessage(j_common_ptr common, int level)
{
    ErrorTrap &trap = *TrapOf(common);
    const int message = common->err->msg_code;
    if (level < 0 && (TellsDamage(message) || (message == JWRN_EXTRANEOUS_DATA && trap.CountsSpareBytes)))
    {
        trap.Damaged = true;
    }
}

void KeepSilent(j_common_ptr) {}

void SetTrap(ErrorTrap &trap) noexcept
{
    jpeg_std_error(&trap.Manager);
    trap.Manager.error_exit = LeaveLibrary;
    trap.Manager.emit_message = NoteMessage;
    trap.Manager.output_message = KeepSilent;
    trap.Code = S_OK;
    trap.Damaged = false;
    trap.CountsSpareBytes = false;
}

// Runs a piece of work that calls the library; false if the library gave up.
template <class Work>
bool Survives(ErrorTrap &trap, Work work) noexcept
{
    if (setjmp(trap.Home) != 0)
    {
        return false;
    }
    work();
    return true;
}

template <class Work>
void Guard(ErrorTrap &trap, Work work)
{
    if (!Survives(trap, work))
    {
        ThrowHresult(trap.Code);
    }
}

struct StreamSource
{
    jpeg_source_mgr Manager;
    IStream *Stream;
    ULONGLONG Offset;
    bool AtStart;
    JOCTET Buffer[BufferBytes];
};

void BeginSource(j_decompress_ptr) {}

// A file that ends too soon gets an end of image, and a warning that counts as damage.
JpegBoolean FillSource(j_decompress_ptr decoder)
{
    auto *source = reinterpret_cast<StreamSource *>(decoder->src);
    ULONG got = 0;
    const HRESULT result = ReadAt(source->Stream, source->Offset, source->Buffer, BufferBytes, &got);
    if (FAILED(result))
    {
        TrapOf(reinterpret_cast<j_common_ptr>(decoder))->Code = result;
        ERREXIT(decoder, JERR_FILE_READ);
    }
    source->Offset += got;
    if (got == 0)
    {
        WARNMS(decoder, JWRN_JPEG_EOF);
        source->Buffer[0] = 0xFF;
        source->Buffer[1] = JPEG_EOI;
        got = 2;
    }
    source->Manager.next_input_byte = source->Buffer;
    source->Manager.bytes_in_buffer = got;
    return TRUE;
}

void SkipSource(j_decompress_ptr decoder, long count)
{
    jpeg_source_mgr *source = decoder->src;
    while (count > static_cast<long>(source->bytes_in_buffer))
    {
        count -= static_cast<long>(source->bytes_in_buffer);
        FillSource(decoder);
    }
    if (count > 0)
    {
        source->next_input_byte += count;
        source->bytes_in_buffer -= static_cast<size_t>(count);
    }
}

void EndSource(j_decompress_ptr) {}

void SetSource(StreamSource &source, IStream *stream, ULONGLONG base) noexcept
{
    source.Manager = {};
    source.Manager.init_source = BeginSource;
    source.Manager.fill_input_buffer = FillSource;
    source.Manager.skip_input_data = SkipSource;
    source.Manager.resync_to_restart = jpeg_resync_to_restart;
    source.Manager.term_source = EndSource;
    source.Stream = stream;
    source.Offset = base;
}

void WatchScans(j_common_ptr common)
{
    if (common->is_decompressor && reinterpret_cast<j_decompress_ptr>(common)->input_scan_number > MaxScans)
    {
        TrapOf(common)->Code = WINCODEC_ERR_BADIMAGE;
        LeaveLibrary(common);
    }
}
} // namespace

struct TrialDecoder::State
{
    ErrorTrap Trap;
    jpeg_decompress_struct Decoder{};
    jpeg_progress_mgr Progress{};
    StreamSource Source;
    ComPtr<IStream> Stream;

    ~State() { jpeg_destroy_decompress(&Decoder); }
};

TrialDecoder::TrialDecoder(ComPtr<IStream> stream, ULONGLONG base) : m_state(new State)
{
    State &state = *m_state;
    state.Stream = std::move(stream);
    SetTrap(state.Trap);
    state.Decoder.err = &state.Trap.Manager;
    SetSource(state.Source, state.Stream.Get(), base);
    state.Progress.progress_monitor = WatchScans;
    Guard(state.Trap, [&state] {
        jpeg_create_decompress(&state.Decoder);
        state.Decoder.mem->max_memory_to_use = DecoderMemoryBytes;
        state.Decoder.src = &state.Source.Manager;
        state.Decoder.progress = &state.Progress;
        jpeg_read_header(&state.Decoder, TRUE);
    });
}

TrialDecoder::~TrialDecoder() = default;

void TrialDecoder::DecodeAll()
{
    State &state = *m_state;
    jpeg_decompress_struct &decoder = state.Decoder;
    state.Trap.CountsSpareBytes = true;
    Guard(state.Trap, [&decoder] {
        decoder.scale_num = 1;
        decoder.scale_denom = 8;
        decoder.out_color_space = decoder.jpeg_color_space;
        decoder.do_fancy_upsampling = FALSE;
        decoder.do_block_smoothing = FALSE;
        jpeg_start_decompress(&decoder);
    });
    std::vector<BYTE> row(size_t{decoder.output_width} * decoder.output_components);
    BYTE *const start = row.data();
    Guard(state.Trap, [&state, &decoder, start] {
        JSAMPROW rows[1] = {start};
        // Stop at the first damage: the library would invent the rest of the picture.
        while (decoder.output_scanline < decoder.output_height && !state.Trap.Damaged)
        {
            jpeg_read_scanlines(&decoder, rows, 1);
        }
        if (!state.Trap.Damaged)
        {
            jpeg_finish_decompress(&decoder);
        }
    });
    if (state.Trap.Damaged)
    {
        ThrowHresult(WINCODEC_ERR_BADIMAGE);
    }
}

namespace
{
struct StreamDestination
{
    jpeg_destination_mgr Manager;
    IStream *Stream;
    JOCTET Buffer[BufferBytes];
};

HRESULT WriteOut(IStream *stream, const BYTE *data, size_t size) noexcept
{
    return AtBoundary([&] {
        WriteAll(stream, data, size);
        return S_OK;
    });
}

void Flush(j_compress_ptr encoder, size_t size)
{
    auto *destination = reinterpret_cast<StreamDestination *>(encoder->dest);
    const HRESULT result = WriteOut(destination->Stream, destination->Buffer, size);
    if (FAILED(result))
    {
        TrapOf(reinterpret_cast<j_common_ptr>(encoder))->Code = result;
        ERREXIT(encoder, JERR_FILE_WRITE);
    }
    destination->Manager.next_output_byte = destination->Buffer;
    destination->Manager.free_in_buffer = BufferBytes;
}

void BeginDestination(j_compress_ptr encoder)
{
    Flush(encoder, 0);
}

JpegBoolean EmptyDestination(j_compress_ptr encoder)
{
    Flush(encoder, BufferBytes);
    return TRUE;
}

void EndDestination(j_compress_ptr encoder)
{
    Flush(encoder, BufferBytes - encoder->dest->free_in_buffer);
}

void SetSubsampling(jpeg_compress_struct &encoder, BYTE option) noexcept
{
    jpeg_component_info &luma = encoder.comp_info[0];
    const bool full = option == WICJpegYCrCbSubsampling444;
    luma.h_samp_factor = full || option == WICJpegYCrCbSubsampling440 ? 1 : 2;
    luma.v_samp_factor = full || option == WICJpegYCrCbSubsampling422 ? 1 : 2;
}
} // namespace

struct RowEncoder::State
{
    ErrorTrap Trap;
    jpeg_compress_struct Encoder{};
    StreamDestination Destination;
    ComPtr<IStream> Stream;

    ~State() { jpeg_destroy_compress(&Encoder); }
};

RowEncoder::RowEncoder(ComPtr<IStream> stream, const EncodingParameters &parameters) : m_state(new State)
{
    State &state = *m_state;
    state.Stream = std::move(stream);
    SetTrap(state.Trap);
    state.Encoder.err = &state.Trap.Manager;
    state.Destination.Manager = {};
    state.Destination.Manager.init_destination = BeginDestination;
    state.Destination.Manager.empty_output_buffer = EmptyDestination;
    state.Destination.Manager.term_destination = EndDestination;
    state.Destination.Stream = state.Stream.Get();
    Guard(state.Trap, [&state, &parameters] {
        jpeg_compress_struct &encoder = state.Encoder;
        jpeg_create_compress(&encoder);
        encoder.dest = &state.Destination.Manager;
        encoder.image_width = parameters.Width;
        encoder.image_height = parameters.Height;
        encoder.input_components = 3;
        encoder.in_color_space = JCS_EXT_BGR;
        jpeg_set_defaults(&encoder);
        jpeg_set_quality(&encoder, parameters.Quality, TRUE);
        SetSubsampling(encoder, parameters.Subsampling);
        encoder.write_JFIF_header = FALSE;
        encoder.dct_method = JDCT_ISLOW;
        jpeg_start_compress(&encoder, TRUE);
        for (const OutputSegment &segment : parameters.Head)
        {
            jpeg_write_marker(&encoder, segment.Marker, segment.Contents.data(),
                              static_cast<unsigned>(segment.Contents.size()));
        }
    });
}

RowEncoder::~RowEncoder() = default;

void RowEncoder::WriteRow(const BYTE *row)
{
    State &state = *m_state;
    Guard(state.Trap, [&state, row] {
        JSAMPROW rows[1] = {const_cast<BYTE *>(row)};
        jpeg_write_scanlines(&state.Encoder, rows, 1);
    });
}

void RowEncoder::Finish()
{
    State &state = *m_state;
    Guard(state.Trap, [&state] { jpeg_finish_compress(&state.Encoder); });
}
