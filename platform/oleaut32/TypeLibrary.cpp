// Loading of type libraries, from a file of their own or from a module's resource TYPELIB 1.
#include "com/ComObject.h"
#include "com/Hresult.h"
#include "platform/kernel32/PathText.h"
#include "platform/kernel32/ResourceSection.h"
#include "platform/oleaut32/TypeInformation.h"

#include <oleauto.h>

#include <fstream>
#include <iterator>

namespace
{
class CTypeLibrary final : public ComObject<CTypeLibrary, ITypeLib>
{
public:
    explicit CTypeLibrary(TypeLibraryContent content)
        : m_content(std::make_shared<const TypeLibraryContent>(std::move(content)))
    {
    }

    STDMETHODIMP_(UINT) GetTypeInfoCount() noexcept override { return static_cast<UINT>(m_content->types.size()); }

    STDMETHODIMP GetTypeInfo(UINT index, ITypeInfo **info) noexcept override
    {
        if (info == nullptr)
        {
            return E_INVALIDARG;
        }
        *info = nullptr;
        if (index >= m_content->types.size())
        {
            return TYPE_E_ELEMENTNOTFOUND;
        }
        return AtBoundary([&] {
            *info = MakeTypeInformation(m_content, index, ComPtr<ITypeLib>(this)).Detach();
            return S_OK;
        });
    }

    STDMETHODIMP GetTypeInfoType(UINT index, TYPEKIND *kind) noexcept override
    {
        if (kind == nullptr)
        {
            return E_INVALIDARG;
        }
        if (index >= m_content->types.size())
        {
            return TYPE_E_ELEMENTNOTFOUND;
        }
        *kind = m_content->types[index].kind;
        return S_OK;
    }

    STDMETHODIMP GetTypeInfoOfGuid(REFGUID id, ITypeInfo **info) noexcept override
    {
        if (info == nullptr)
        {
            return E_INVALIDARG;
        }
        *info = nullptr;
        for (UINT i = 0; i < m_content->types.size(); ++i)
        {
            if (m_content->types[i].id == id)
            {
                return GetTypeInfo(i, info);
            }
        }
        return TYPE_E_ELEMENTNOTFOUND;
    }

    STDMETHODIMP GetLibAttr(TLIBATTR **attributes) noexcept override
    {
        if (attributes == nullptr)
        {
            return E_INVALIDARG;
        }
        *attributes = nullptr;
        return AtBoundary([&] {
            *attributes = new TLIBATTR(m_content->attributes);
            return S_OK;
        });
    }
    STDMETHODIMP_(void) ReleaseTLibAttr(TLIBATTR *attributes) noexcept override { delete attributes; }

    // Index -1 is the library itself.
    STDMETHODIMP GetDocumentation(INT index, BSTR *name, BSTR *help, DWORD *context, BSTR *file) noexcept override
    {
        if (index != -1)
        {
            ComPtr<ITypeInfo> info;
            const HRESULT result = GetTypeInfo(static_cast<UINT>(index), info.Put());
            return FAILED(result) ? result : info->GetDocumentation(MEMBERID_NIL, name, help, context, file);
        }
        return AtBoundary([&] {
            GiveTypeText(WideText(), file);
            GiveTypeText(m_content->name, name);
            GiveTypeText(m_content->help, help);
            if (context != nullptr)
            {
                *context = 0;
            }
            return S_OK;
        });
    }

    // Registration and calls by name don't call these.
    STDMETHODIMP GetTypeComp(ITypeComp **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP IsName(LPOLESTR, ULONG, BOOL *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP FindName(LPOLESTR, ULONG, ITypeInfo **, MEMBERID *, USHORT *) noexcept override
    {
        return E_NOTIMPL;
    }

private:
    std::shared_ptr<const TypeLibraryContent> m_content;
};

std::vector<BYTE> ReadLibraryBytes(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
    {
        ThrowHresult(TYPE_E_CANTLOADLIBRARY);
    }
    int error = 0;
    const auto section = FindResourceSection(path, error);
    if (!section)
    {
        const std::string all(std::istreambuf_iterator<char>(file), {});
        return std::vector<BYTE>(all.begin(), all.end());
    }
    std::vector<BYTE> resources(section->size);
    file.seekg(static_cast<std::streamoff>(section->offset));
    file.read(reinterpret_cast<char *>(resources.data()), static_cast<std::streamsize>(resources.size()));
    const ResourceMatch match = FindResourceEntry(resources, TEXT("TYPELIB"), MAKEINTRESOURCEW(1));
    if (!file || match.entry == nullptr)
    {
        ThrowHresult(TYPE_E_CANTLOADLIBRARY);
    }
    const auto data = ResourceEntryData(match.entry);
    return std::vector<BYTE>(data.begin(), data.end());
}
} // namespace

HRESULT WINAPI LoadTypeLibEx(LPCOLESTR path, REGKIND registration, ITypeLib **library)
{
    if (path == nullptr || library == nullptr)
    {
        return E_INVALIDARG;
    }
    *library = nullptr;
    return AtBoundary([&] {
        const std::vector<BYTE> bytes = ReadLibraryBytes(PathToBytes(path));
        ComPtr<ITypeLib> loaded = CTypeLibrary::Make(ReadTypeLibrary(bytes));
        if (registration == REGKIND_REGISTER)
        {
            ThrowIfFailed(RegisterTypeLib(loaded.Get(), path, nullptr));
        }
        *library = loaded.Detach();
        return S_OK;
    });
}
