// Owner of a text that must not stay behind in memory: what it holds is overwritten before it is freed.
#pragma once

#include "com/BstrOwner.h"

#include <initializer_list>

class SecretBstr
{
public:
    SecretBstr() noexcept = default;

    // The pieces one behind the other, with no copy elsewhere; E_OUTOFMEMORY is thrown.
    explicit SecretBstr(std::initializer_list<WideView> pieces)
    {
        size_t length = 0;
        for (const WideView piece : pieces)
        {
            length += piece.size();
        }
        m_text = BstrOwner::Adopt(SysAllocStringLen(nullptr, static_cast<UINT>(length)));
        if (m_text.Get() == nullptr)
        {
            ThrowHresult(E_OUTOFMEMORY);
        }
        WCHAR *end = m_text.Get();
        for (const WideView piece : pieces)
        {
            end += piece.copy(end, piece.size());
        }
        *end = 0;
    }

    SecretBstr(const SecretBstr &) = delete;
    SecretBstr &operator=(const SecretBstr &) = delete;
    ~SecretBstr() { Overwrite(m_text); }

    BSTR Get() const noexcept { return m_text.Get(); }
    WideView View() const noexcept { return m_text.View(); }
    const WCHAR *Text() const noexcept { return m_text.Text(); }

    // For an out parameter, or a function that fills an owner; what was held is overwritten first.
    BstrOwner &Fill() noexcept
    {
        Overwrite(m_text);
        return m_text;
    }

    // Puts zeroes in the place of a text, whose length stays.
    static void Overwrite(const BstrOwner &text) noexcept
    {
        if (text.Get() != nullptr)
        {
            SecureZeroMemory(text.Get(), SysStringByteLen(text.Get()));
        }
    }

private:
    BstrOwner m_text;
};
