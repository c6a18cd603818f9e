#include "tests/sheet/WindowPicture.h"

#include "com/ComPtr.h"
#include "com/HandleOwner.h"
#include "com/WideText.h"

#include <wincodec.h>

namespace
{
BitmapOwner CopyFromScreen(const RECT &place)
{
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const int width = place.right - place.left;
    const int height = place.bottom - place.top;
    BitmapOwner bitmap(CreateCompatibleBitmap(screen, width, height));
    const HGDIOBJ before = SelectObject(memory, bitmap.Get());
    BitBlt(memory, 0, 0, width, height, screen, place.left, place.top, SRCCOPY);
    SelectObject(memory, before);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    return bitmap;
}

HRESULT Write(IWICImagingFactory &factory, IWICBitmapSource &source, const WCHAR *path)
{
    ComPtr<IWICStream> stream;
    ComPtr<IWICBitmapEncoder> encoder;
    ComPtr<IWICBitmapFrameEncode> frame;
    HRESULT result = factory.CreateStream(stream.Put());
    result = SUCCEEDED(result) ? stream->InitializeFromFilename(path, GENERIC_WRITE) : result;
    result = SUCCEEDED(result) ? factory.CreateEncoder(GUID_ContainerFormatPng, nullptr, encoder.Put()) : result;
    result = SUCCEEDED(result) ? encoder->Initialize(stream.Get(), WICBitmapEncoderNoCache) : result;
    result = SUCCEEDED(result) ? encoder->CreateNewFrame(frame.Put(), nullptr) : result;
    result = SUCCEEDED(result) ? frame->Initialize(nullptr) : result;
    WICPixelFormatGUID format = GUID_WICPixelFormat24bppBGR;
    result = SUCCEEDED(result) ? frame->SetPixelFormat(&format) : result;
    result = SUCCEEDED(result) ? frame->WriteSource(&source, nullptr) : result;
    result = SUCCEEDED(result) ? frame->Commit() : result;
    return SUCCEEDED(result) ? encoder->Commit() : result;
}
} // namespace

bool WriteWindowPicture(HWND window, const std::string &path)
{
    RECT place{};
    GetWindowRect(window, &place);
    const BitmapOwner bitmap = CopyFromScreen(place);
    ComPtr<IWICImagingFactory> factory;
    ComPtr<IWICBitmap> picture;
    ComPtr<IWICBitmapSource> plain;
    return SUCCEEDED(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                                      __uuidof(IWICImagingFactory), factory.PutVoid())) &&
           SUCCEEDED(
               factory->CreateBitmapFromHBITMAP(bitmap.Get(), nullptr, WICBitmapIgnoreAlpha, picture.Put())) &&
           SUCCEEDED(WICConvertBitmapSource(GUID_WICPixelFormat24bppBGR, picture.Get(), plain.Put())) &&
           SUCCEEDED(Write(*factory.Get(), *plain.Get(), WideText(path.begin(), path.end()).c_str()));
}
