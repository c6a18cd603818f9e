// COM on whatever thread calls.
#pragma once

#include <windows.h>
#include <objbase.h>

// A thread that hasn't initialized COM is one of the multithreaded apartment while this lives; any other
// stays what it is.
class Apartment
{
public:
    Apartment() noexcept : m_result(CoInitializeEx(nullptr, COINIT_MULTITHREADED)) {}
    ~Apartment()
    {
        if (SUCCEEDED(m_result))
        {
            CoUninitialize();
        }
    }
    Apartment(const Apartment &) = delete;
    Apartment &operator=(const Apartment &) = delete;

private:
    const HRESULT m_result;
};
