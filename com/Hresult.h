// Failures inside the module travel as exceptions that carry an HRESULT, and become return values
// again where an interface method ends.
#pragma once

#include <windows.h>

#include <new>
#include <utility>

// What ThrowHresult raises. The code is always a failure.
class HresultError
{
public:
    explicit HresultError(HRESULT code) noexcept : m_code(code) {}
    HRESULT Code() const noexcept { return m_code; }

private:
    HRESULT m_code;
};

[[noreturn]] inline void ThrowHresult(HRESULT code)
{
    throw HresultError(FAILED(code) ? code : E_UNEXPECTED);
}

// Passes a success on as it is, so that S_FALSE is not lost.
inline HRESULT ThrowIfFailed(HRESULT code)
{
    if (FAILED(code))
    {
        ThrowHresult(code);
    }
    return code;
}

// The one translator at an interface boundary. body returns an HRESULT; what it throws comes back
// as its code, E_OUTOFMEMORY for an allocation that failed, and E_UNEXPECTED for anything else.
template <class Body>
HRESULT AtBoundary(Body &&body) noexcept
{
    try
    {
        return std::forward<Body>(body)();
    }
    catch (const HresultError &error)
    {
        return error.Code();
    }
    catch (const std::bad_alloc &)
    {
        return E_OUTOFMEMORY;
    }
    catch (...)
    {
        return E_UNEXPECTED;
    }
}

// For operations that promise one code for everything that is thrown inside them.
template <class Body>
HRESULT AtBoundaryAs(HRESULT thrown, Body &&body) noexcept
{
    try
    {
        return std::forward<Body>(body)();
    }
    catch (...)
    {
        return thrown;
    }
}
