// The marshaler that lets every thread of the process call an object directly: what it writes to
// the stream is the interface pointer itself. There is no other context than this process natively.
#include "com/ComObject.h"

#include <objbase.h>
#include <objidl.h>

#include <cstring>
#include <random>

namespace
{
const CLSID InProcessUnmarshaler = {0x0000033a, 0, 0, {0xc0, 0, 0, 0, 0, 0, 0, 0x46}};

// The content of the stream. The secret tells a packet of this process from any other bytes.
struct Packet
{
    DWORD flags;
    DWORD reserved;
    ULONGLONG object;
    BYTE secret[16];
};

const BYTE *ProcessSecret()
{
    struct Secret
    {
        Secret()
        {
            std::random_device device;
            for (BYTE &byte : bytes)
            {
                byte = static_cast<BYTE>(device());
            }
        }
        BYTE bytes[16];
    };
    static const Secret secret;
    return secret.bytes;
}

HRESULT ReadPacket(IStream *stream, Packet &packet)
{
    ULONG read = 0;
    const HRESULT result = stream->Read(&packet, sizeof(packet), &read);
    if (FAILED(result))
    {
        return result;
    }
    const bool ours = read == sizeof(packet) && std::memcmp(packet.secret, ProcessSecret(), 16) == 0;
    return ours ? S_OK : E_UNEXPECTED;
}

IUnknown *ObjectOf(const Packet &packet)
{
    return reinterpret_cast<IUnknown *>(static_cast<ULONG_PTR>(packet.object));
}

class FreeThreadedMarshaler final : public ComObject<FreeThreadedMarshaler, IMarshal>
{
public:
    STDMETHODIMP GetUnmarshalClass(REFIID, void *, DWORD context, void *, DWORD, CLSID *clsid) noexcept override
    {
        if (clsid == nullptr)
        {
            return E_INVALIDARG;
        }
        *clsid = IsInProcess(context) ? InProcessUnmarshaler : CLSID{};
        return IsInProcess(context) ? S_OK : E_NOTIMPL;
    }

    STDMETHODIMP GetMarshalSizeMax(REFIID, void *, DWORD context, void *, DWORD, DWORD *size) noexcept override
    {
        if (size == nullptr)
        {
            return E_INVALIDARG;
        }
        *size = IsInProcess(context) ? sizeof(Packet) : 0;
        return IsInProcess(context) ? S_OK : E_NOTIMPL;
    }

    STDMETHODIMP MarshalInterface(IStream *stream, REFIID iid, void *object, DWORD context, void *,
                                  DWORD flags) noexcept override
    {
        if (stream == nullptr || object == nullptr)
        {
            return E_INVALIDARG;
        }
        if (!IsInProcess(context))
        {
            return E_NOTIMPL;
        }
        ComPtr<IUnknown> found;
        HRESULT result = static_cast<IUnknown *>(object)->QueryInterface(iid, found.PutVoid());
        if (FAILED(result))
        {
            return result;
        }
        Packet packet{flags, 0, reinterpret_cast<ULONG_PTR>(found.Get()), {}};
        std::memcpy(packet.secret, ProcessSecret(), sizeof(packet.secret));
        ULONG written = 0;
        result = stream->Write(&packet, sizeof(packet), &written);
        if (SUCCEEDED(result) && flags != MSHLFLAGS_TABLEWEAK)
        {
            static_cast<void>(found.Detach()); // the packet holds it now
        }
        return FAILED(result) ? result : S_OK;
    }

    STDMETHODIMP UnmarshalInterface(IStream *stream, REFIID iid, void **object) noexcept override
    {
        if (stream == nullptr || object == nullptr)
        {
            return E_INVALIDARG;
        }
        *object = nullptr;
        Packet packet;
        HRESULT result = ReadPacket(stream, packet);
        if (FAILED(result))
        {
            return result;
        }
        result = ObjectOf(packet)->QueryInterface(iid, object);
        if (packet.flags == MSHLFLAGS_NORMAL)
        {
            ComPtr<IUnknown>::Adopt(ObjectOf(packet)); // a normal packet can be unmarshaled once
        }
        return result;
    }

    STDMETHODIMP ReleaseMarshalData(IStream *stream) noexcept override
    {
        if (stream == nullptr)
        {
            return E_INVALIDARG;
        }
        Packet packet;
        const HRESULT result = ReadPacket(stream, packet);
        if (SUCCEEDED(result) && packet.flags != MSHLFLAGS_TABLEWEAK)
        {
            ComPtr<IUnknown>::Adopt(ObjectOf(packet));
        }
        return result;
    }

    STDMETHODIMP DisconnectObject(DWORD) noexcept override { return S_OK; }

private:
    static bool IsInProcess(DWORD context) { return context == MSHCTX_INPROC || context == MSHCTX_CROSSCTX; }
};
} // namespace

HRESULT WINAPI CoCreateFreeThreadedMarshaler(LPUNKNOWN outer, LPUNKNOWN *marshaler)
{
    if (marshaler == nullptr)
    {
        return E_INVALIDARG;
    }
    return FreeThreadedMarshaler::CreateInstance(outer, __uuidof(IUnknown), reinterpret_cast<void **>(marshaler));
}
