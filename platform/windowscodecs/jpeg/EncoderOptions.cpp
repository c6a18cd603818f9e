#include "platform/windowscodecs/jpeg/EncoderOptions.h"

#include "com/ComObject.h"
#include "com/WideText.h"
#include "platform/windowscodecs/UncalledMethods.h"

namespace
{
struct Option
{
    const WCHAR *Name;
    VARTYPE Type;
};

constexpr Option Options[] = {{TEXT("ImageQuality"), VT_R4}, {TEXT("JpegYCrCbSubsampling"), VT_UI1}};
constexpr ULONG OptionCount = sizeof Options / sizeof *Options;

class COptionBag final : public UncalledOfPropertyBag<ComObject<COptionBag, IPropertyBag2>>
{
public:
    STDMETHODIMP Read(ULONG count, PROPBAG2 *names, IErrorLog *, VARIANT *values,
                      HRESULT *results) noexcept override
    {
        if (names == nullptr || values == nullptr || results == nullptr)
        {
            return E_INVALIDARG;
        }
        HRESULT all = S_OK;
        for (ULONG i = 0; i < count; ++i)
        {
            const ULONG option = Find(names[i].pstrName);
            values[i] = {};
            results[i] = option < OptionCount ? S_OK : WINCODEC_ERR_PROPERTYNOTSUPPORTED;
            if (option < OptionCount)
            {
                values[i] = m_values[option];
            }
            all = FAILED(results[i]) ? results[i] : all;
        }
        return all;
    }

    STDMETHODIMP Write(ULONG count, PROPBAG2 *names, VARIANT *values) noexcept override
    {
        if (names == nullptr || values == nullptr)
        {
            return E_INVALIDARG;
        }
        for (ULONG i = 0; i < count; ++i)
        {
            const ULONG option = Find(names[i].pstrName);
            if (option == OptionCount)
            {
                return WINCODEC_ERR_PROPERTYNOTSUPPORTED;
            }
            if (V_VT(&values[i]) != Options[option].Type)
            {
                return WINCODEC_ERR_PROPERTYUNEXPECTEDTYPE;
            }
            m_values[option] = values[i];
        }
        return S_OK;
    }

private:
    static ULONG Find(const WCHAR *name) noexcept
    {
        ULONG option = 0;
        while (option < OptionCount && (name == nullptr || WideView(name) != Options[option].Name))
        {
            ++option;
        }
        return option;
    }

    VARIANT m_values[OptionCount] = {}; // of the types above, so that they own nothing
};

// Empty if the bag doesn't know the option or nobody has given it.
VARIANT ReadOption(IPropertyBag2 *bag, const Option &option)
{
    WideText name(option.Name);
    PROPBAG2 wanted{};
    wanted.dwType = PROPBAG2_TYPE_DATA;
    wanted.vt = option.Type;
    wanted.pstrName = name.data();
    VARIANT value{};
    HRESULT result = S_OK;
    if (FAILED(bag->Read(1, &wanted, nullptr, &value, &result)) || FAILED(result) || V_VT(&value) != option.Type)
    {
        return {};
    }
    return value;
}
} // namespace

ComPtr<IPropertyBag2> MakeOptionBag()
{
    return COptionBag::Make();
}

EncoderOptions ReadOptions(IPropertyBag2 *bag)
{
    EncoderOptions options;
    if (bag == nullptr)
    {
        return options;
    }
    if (const VARIANT quality = ReadOption(bag, Options[0]); V_VT(&quality) == VT_R4)
    {
        if (!(V_R4(&quality) >= 0 && V_R4(&quality) <= 1))
        {
            ThrowHresult(E_INVALIDARG);
        }
        options.Quality = V_R4(&quality);
    }
    if (const VARIANT subsampling = ReadOption(bag, Options[1]); V_VT(&subsampling) == VT_UI1)
    {
        if (V_UI1(&subsampling) > WICJpegYCrCbSubsampling440)
        {
            ThrowHresult(E_INVALIDARG);
        }
        // The default counts as not given.
        if (V_UI1(&subsampling) != WICJpegYCrCbSubsamplingDefault)
        {
            options.Subsampling = V_UI1(&subsampling);
        }
    }
    return options;
}
