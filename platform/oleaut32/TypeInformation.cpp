#include "platform/oleaut32/TypeInformation.h"

#include "com/BstrOwner.h"
#include "com/ComObject.h"
#include "com/Hresult.h"

#include <algorithm>

namespace
{
bool SameName(WideView left, WideView right)
{
    const auto fold = [](WCHAR unit) { return unit >= 'A' && unit <= 'Z' ? static_cast<WCHAR>(unit + 32) : unit; };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](WCHAR a, WCHAR b) { return fold(a) == fold(b); });
}

class CTypeInformation final : public ComObject<CTypeInformation, ITypeInfo>
{
public:
    CTypeInformation(std::shared_ptr<const TypeLibraryContent> content, size_t index, ComPtr<ITypeLib> library)
        : m_content(std::move(content)),
          m_index(index),
          m_type(m_content->types[index]),
          m_library(std::move(library))
    {
    }

    STDMETHODIMP GetTypeAttr(TYPEATTR **attributes) noexcept override
    {
        if (attributes == nullptr)
        {
            return E_INVALIDARG;
        }
        *attributes = nullptr;
        return AtBoundary([&] {
            auto made = std::make_unique<TYPEATTR>();
            made->guid = m_type.id;
            made->lcid = m_content->attributes.lcid;
            made->memidConstructor = made->memidDestructor = MEMBERID_NIL;
            made->typekind = m_type.kind;
            made->cFuncs = static_cast<WORD>(m_type.functions.size());
            made->wTypeFlags = m_type.flags;
            made->wMajorVerNum = m_type.major;
            made->wMinorVerNum = m_type.minor;
            *attributes = made.release();
            return S_OK;
        });
    }
    STDMETHODIMP_(void) ReleaseTypeAttr(TYPEATTR *attributes) noexcept override { delete attributes; }

    // The first name is the function's, the others those of its parameters.
    STDMETHODIMP GetIDsOfNames(LPOLESTR *names, UINT count, MEMBERID *ids) noexcept override
    {
        if (names == nullptr || ids == nullptr || count == 0)
        {
            return E_INVALIDARG;
        }
        std::fill_n(ids, count, MEMBERID_NIL);
        for (const TypeFunction &function : m_type.functions)
        {
            if (SameName(function.name, names[0]))
            {
                ids[0] = function.id;
                return FindParameters(function, names + 1, count - 1, ids + 1);
            }
        }
        return DISP_E_UNKNOWNNAME;
    }

    STDMETHODIMP GetNames(MEMBERID id, BSTR *names, UINT capacity, UINT *count) noexcept override
    {
        if (names == nullptr || count == nullptr)
        {
            return E_INVALIDARG;
        }
        *count = 0;
        const TypeFunction *function = Find(id);
        if (function == nullptr)
        {
            return TYPE_E_ELEMENTNOTFOUND;
        }
        return AtBoundary([&] {
            for (size_t i = 0; i <= function->parameters.size() && i < capacity; ++i)
            {
                names[i] = BstrOwner(i == 0 ? function->name : function->parameters[i - 1]).Detach();
                ++*count;
            }
            return S_OK;
        });
    }

    // Only functions without parameters: the reader of the file skips the types of parameters.
    STDMETHODIMP Invoke(PVOID object, MEMBERID id, WORD flags, DISPPARAMS *parameters, VARIANT *, EXCEPINFO *,
                        UINT *) noexcept override
    {
        if (object == nullptr || parameters == nullptr)
        {
            return E_INVALIDARG;
        }
        const TypeFunction *function = Find(id);
        if (function == nullptr || !(flags & DISPATCH_METHOD))
        {
            return DISP_E_MEMBERNOTFOUND;
        }
        if (parameters->cArgs != function->parameters.size())
        {
            return DISP_E_BADPARAMCOUNT;
        }
        if (parameters->cArgs != 0)
        {
            return E_NOTIMPL;
        }
        using Method = HRESULT(STDMETHODCALLTYPE *)(void *);
        return (*static_cast<Method **>(object))[function->slot](object);
    }

    STDMETHODIMP GetDocumentation(MEMBERID id, BSTR *name, BSTR *help, DWORD *context,
                                  BSTR *file) noexcept override
    {
        GiveNothing(name, help, context, file);
        const TypeFunction *function = id == MEMBERID_NIL ? nullptr : Find(id);
        if (id != MEMBERID_NIL && function == nullptr)
        {
            return TYPE_E_ELEMENTNOTFOUND;
        }
        return AtBoundary([&] {
            GiveTypeText(function ? function->name : m_type.name, name);
            GiveTypeText(function ? WideText() : m_type.help, help);
            return S_OK;
        });
    }

    STDMETHODIMP GetContainingTypeLib(ITypeLib **library, UINT *index) noexcept override
    {
        if (library == nullptr)
        {
            return E_INVALIDARG;
        }
        *library = ComPtr<ITypeLib>(m_library).Detach();
        if (index != nullptr)
        {
            *index = static_cast<UINT>(m_index);
        }
        return S_OK;
    }

    // Registration and calls by name don't call these.
    STDMETHODIMP GetTypeComp(ITypeComp **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetFuncDesc(UINT, FUNCDESC **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetVarDesc(UINT, VARDESC **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetRefTypeOfImplType(UINT, HREFTYPE *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetImplTypeFlags(UINT, INT *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetDllEntry(MEMBERID, INVOKEKIND, BSTR *, BSTR *, WORD *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetRefTypeInfo(HREFTYPE, ITypeInfo **) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP AddressOfMember(MEMBERID, INVOKEKIND, PVOID *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateInstance(IUnknown *, REFIID, PVOID *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetMops(MEMBERID, BSTR *) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP_(void) ReleaseFuncDesc(FUNCDESC *) noexcept override {}
    STDMETHODIMP_(void) ReleaseVarDesc(VARDESC *) noexcept override {}

private:
    const TypeFunction *Find(MEMBERID id) const
    {
        const auto &all = m_type.functions;
        const auto found = std::find_if(all.begin(), all.end(), [&](const auto &entry) { return entry.id == id; });
        return found == all.end() ? nullptr : &*found;
    }

    static HRESULT FindParameters(const TypeFunction &function, LPOLESTR *names, UINT count, MEMBERID *ids)
    {
        HRESULT result = S_OK;
        for (UINT i = 0; i < count; ++i)
        {
            const auto &all = function.parameters;
            const auto found = std::find_if(all.begin(), all.end(),
                                            [&](const WideText &name) { return SameName(name, names[i]); });
            if (found == all.end())
            {
                result = DISP_E_UNKNOWNNAME;
                continue;
            }
            ids[i] = static_cast<MEMBERID>(found - all.begin());
        }
        return result;
    }

    static void GiveNothing(BSTR *name, BSTR *help, DWORD *context, BSTR *file)
    {
        for (BSTR *text : {name, help, file})
        {
            if (text != nullptr)
            {
                *text = nullptr;
            }
        }
        if (context != nullptr)
        {
            *context = 0;
        }
    }

    std::shared_ptr<const TypeLibraryContent> m_content;
    size_t m_index;
    const TypeDescription &m_type;
    ComPtr<ITypeLib> m_library;
};
} // namespace

ComPtr<ITypeInfo> MakeTypeInformation(std::shared_ptr<const TypeLibraryContent> content, size_t index,
                                      ComPtr<ITypeLib> library)
{
    return CTypeInformation::Make(std::move(content), index, std::move(library));
}

void GiveTypeText(const WideText &text, BSTR *out)
{
    if (out != nullptr)
    {
        *out = text.empty() ? nullptr : BstrOwner(text).Detach();
    }
}
