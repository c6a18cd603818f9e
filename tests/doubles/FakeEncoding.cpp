// The writing half.
#include "tests/doubles/FakeImaging.h"

#include "platform/windowscodecs/UncalledMethods.h"

#include <ocidl.h>
#include <wincodecsdk.h>

#include <cstdio>
#include <cstring>

namespace
{
std::string Hexadecimal(UINT32 value)
{
    char digits[9];
    std::snprintf(digits, sizeof digits, "%08X", static_cast<unsigned>(value));
    return digits;
}

std::string Number(double value)
{
    char digits[32];
    std::snprintf(digits, sizeof digits, "%g", value);
    return digits;
}

class OptionBag final : public UncalledOfPropertyBag<ComObject<OptionBag, IPropertyBag2>>
{
public:
    explicit OptionBag(FakeImaging &imaging) : m_imaging(imaging) {}

    // "NAME TYPE VARTYPE=VALUE" of each option, a float by its bits, and a "?" behind an odd one.
    STDMETHODIMP Write(ULONG count, PROPBAG2 *options, VARIANT *values) override
    {
        std::string line;
        for (ULONG i = 0; i < count; ++i)
        {
            const PROPBAG2 &option = options[i];
            line += (i == 0 ? "" : ", ") + Narrow(option.pstrName) + " " + std::to_string(option.dwType) + " ";
            if (V_VT(&values[i]) == VT_R4)
            {
                UINT32 bits;
                std::memcpy(&bits, &V_R4(&values[i]), sizeof bits);
                line += "VT_R4=" + Hexadecimal(bits);
            }
            else if (V_VT(&values[i]) == VT_UI1)
            {
                line += "VT_UI1=" + std::to_string(V_UI1(&values[i]));
            }
            const bool isPlain = option.vt == V_VT(&values[i]) && option.cfType == 0 && option.dwHint == 0 &&
                                 option.clsid == GUID{};
            line += isPlain ? "" : "?";
        }
        return m_imaging.Calls.Enter("Options.Write", {line});
    }
    STDMETHODIMP Read(ULONG, PROPBAG2 *, IErrorLog *, VARIANT *, HRESULT *) override { return E_NOTIMPL; }

private:
    FakeImaging &m_imaging;
};

// The metadata blocks of a source or of a new frame.
class Blocks final
    : public UncalledOfBlockWriter<ComObject<Blocks, Answers<IWICMetadataBlockWriter, IWICMetadataBlockReader>>>
{
public:
    explicit Blocks(FakeImaging &imaging) : m_imaging(imaging) {}

    STDMETHODIMP InitializeFromBlockReader(IWICMetadataBlockReader *reader) override
    {
        return m_imaging.Calls.Enter("Frame.InitializeFromBlockReader", {reader ? "" : "(null)"});
    }

private:
    FakeImaging &m_imaging;
};

class QueryWriter final : public UncalledOfMetadataQueries<ComObject<QueryWriter, IWICMetadataQueryWriter>>
{
public:
    explicit QueryWriter(FakeImaging &imaging) : m_imaging(imaging) {}

    STDMETHODIMP SetMetadataByName(LPCWSTR name, const PROPVARIANT *value) override
    {
        const std::string shown = value->vt == VT_UI2 ? "VT_UI2=" + std::to_string(value->uiVal) : "?";
        return m_imaging.Calls.Enter("Metadata.Set", {Narrow(name), shown});
    }
    STDMETHODIMP RemoveMetadataByName(LPCWSTR name) override
    {
        return m_imaging.Calls.Enter("Metadata.Remove", {Narrow(name)});
    }
    STDMETHODIMP GetMetadataByName(LPCWSTR, PROPVARIANT *) override { return E_NOTIMPL; }

private:
    FakeImaging &m_imaging;
};

class FrameEncode final : public UncalledOfFrameEncode<ComObject<FrameEncode, IWICBitmapFrameEncode>>
{
public:
    explicit FrameEncode(FakeImaging &imaging) : m_imaging(imaging) {}

    HRESULT QueryFurther(REFIID iid, void **object) noexcept
    {
        if (iid != __uuidof(IWICMetadataBlockWriter))
        {
            return E_NOINTERFACE;
        }
        const HRESULT result = Enter("BlockWriter");
        return FAILED(result) ? result : MakeFakeBlocks(m_imaging, iid, object);
    }

    STDMETHODIMP Initialize(IPropertyBag2 *options) override
    {
        return Enter("Initialize", options ? "with options" : "without options");
    }
    STDMETHODIMP SetSize(UINT width, UINT height) override
    {
        return Enter("SetSize", std::to_string(width) + " " + std::to_string(height));
    }
    STDMETHODIMP SetResolution(double x, double y) override
    {
        return Enter("SetResolution", Number(x) + " " + Number(y));
    }
    // Takes another format than the wanted one, as encoders may.
    STDMETHODIMP SetPixelFormat(WICPixelFormatGUID *format) override
    {
        const bool isWanted = *format == GUID_WICPixelFormat24bppBGR;
        *format = GUID_WICPixelFormat8bppGray;
        return Enter("SetPixelFormat", isWanted ? "24bppBGR" : "?");
    }
    STDMETHODIMP SetColorContexts(UINT count, IWICColorContext **contexts) override
    {
        return Enter("SetColorContexts", count == 1 && contexts[0] != nullptr ? "1" : "?");
    }
    STDMETHODIMP GetMetadataQueryWriter(IWICMetadataQueryWriter **writer) override
    {
        *writer = nullptr;
        const HRESULT result = Enter("GetMetadataQueryWriter");
        if (SUCCEEDED(result))
        {
            *writer = QueryWriter::Make(m_imaging).Detach();
        }
        return result;
    }
    STDMETHODIMP WriteSource(IWICBitmapSource *source, WICRect *rectangle) override
    {
        return Enter("WriteSource", NameOfSource(source) + (rectangle ? " in part" : ""));
    }
    STDMETHODIMP Commit() override { return Enter("Commit"); }

private:
    HRESULT Enter(const char *operation, const std::string &details = {})
    {
        return m_imaging.Calls.Enter(std::string("Frame.") + operation, {details});
    }

    FakeImaging &m_imaging;
};

// Writes its bytes at the commit and leaves the stream at their end.
class Encoder final : public UncalledOfEncoder<ComObject<Encoder, IWICBitmapEncoder>>
{
public:
    explicit Encoder(FakeImaging &imaging) : m_imaging(imaging) {}

    STDMETHODIMP Initialize(IStream *stream, WICBitmapEncoderCacheOption option) override
    {
        m_stream = ComPtr<IStream>(stream);
        return m_imaging.Calls.Enter("Encoder.Initialize", {std::to_string(option)});
    }
    STDMETHODIMP CreateNewFrame(IWICBitmapFrameEncode **frame, IPropertyBag2 **options) override
    {
        *frame = nullptr;
        const HRESULT result = m_imaging.Calls.Enter("Encoder.CreateNewFrame", {options ? "with options" : ""});
        if (FAILED(result))
        {
            return result;
        }
        *frame = FrameEncode::Make(m_imaging).Detach();
        if (options)
        {
            *options = OptionBag::Make(m_imaging).Detach();
        }
        return S_OK;
    }
    STDMETHODIMP Commit() override
    {
        const HRESULT result = m_imaging.Calls.Enter("Encoder.Commit");
        if (SUCCEEDED(result))
        {
            const std::string_view bytes = FakeImaging::EncodedBytes;
            m_stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
        }
        return result;
    }

private:
    FakeImaging &m_imaging;
    ComPtr<IStream> m_stream;
};
} // namespace

ComPtr<IWICBitmapEncoder> MakeFakeEncoder(FakeImaging &imaging)
{
    return Encoder::Make(imaging);
}

ComPtr<IPropertyBag2> MakeFakeOptionBag(FakeImaging &imaging)
{
    return OptionBag::Make(imaging);
}

HRESULT MakeFakeBlocks(FakeImaging &imaging, REFIID iid, void **object)
{
    return Blocks::CreateInstance(nullptr, iid, object, imaging);
}
