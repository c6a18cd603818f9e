// Owner of one BSTR. A null and an empty string count as the same wherever a text is tested, but
// the difference is kept: Get gives back exactly what was put in.
#pragma once

#include "com/Hresult.h"
#include "com/WideText.h"

#include <oleauto.h>

#include <utility>

class BstrOwner
{
public:
    BstrOwner() noexcept = default;

    // Copies the text; E_OUTOFMEMORY is thrown if that fails.
    explicit BstrOwner(WideView text) : m_text(Allocate(text)) {}
    BstrOwner(const BstrOwner &other) : m_text(Copy(other.m_text)) {}
    BstrOwner(BstrOwner &&other) noexcept : m_text(std::exchange(other.m_text, nullptr)) {}
    ~BstrOwner() { Reset(); }

    BstrOwner &operator=(BstrOwner other) noexcept
    {
        std::swap(m_text, other.m_text);
        return *this;
    }

    // Takes over a string that the caller owns.
    static BstrOwner Adopt(BSTR text) noexcept
    {
        BstrOwner result;
        result.m_text = text;
        return result;
    }

    // A copy of a string that somebody else owns, null staying null.
    static BstrOwner CopyOf(BSTR text) { return Adopt(Copy(text)); }

    BSTR Get() const noexcept { return m_text; }
    WideView View() const noexcept { return m_text ? WideView(m_text, SysStringLen(m_text)) : WideView(); }

    // For functions that take a zero-terminated text: never null.
    const WCHAR *Text() const noexcept { return m_text ? m_text : TEXT(""); }
    bool IsEmpty() const noexcept { return SysStringLen(m_text) == 0; }

    [[nodiscard]] BSTR Detach() noexcept { return std::exchange(m_text, nullptr); }

    void Reset() noexcept { SysFreeString(std::exchange(m_text, nullptr)); }

    // For an out parameter; what was held is freed first.
    BSTR *Put() noexcept
    {
        Reset();
        return &m_text;
    }

private:
    static BSTR Allocate(WideView text)
    {
        BSTR result = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
        if (result == nullptr)
        {
            ThrowHresult(E_OUTOFMEMORY);
        }
        return result;
    }

    static BSTR Copy(BSTR text) { return text ? Allocate(WideView(text, SysStringLen(text))) : nullptr; }

    BSTR m_text = nullptr;
};
