// Fails the compilation of a file for which the compiler passed over the precompiled header that was
// made for it. g++ does that without a word when anything is included ahead of it (-Winvalid-pch
// speaks only of headers that it looked into). A precompiled header is not read again, so this
// assertion is evaluated while the header is made, and elsewhere only if the header was ignored.
#pragma once

// Tools over clang read the header as text.
#ifndef __clang__
namespace PrecompiledHeader
{
constexpr bool IsBeingMade(const char *baseFile)
{
    const char *const maker = "cmake_pch.hxx.cxx";
    const char *end = baseFile;
    while (*end != '\0')
    {
        ++end;
    }
    const char *last = maker;
    while (*last != '\0')
    {
        ++last;
    }
    while (last != maker)
    {
        if (end == baseFile || *--end != *--last)
        {
            return false;
        }
    }
    return true;
}
} // namespace PrecompiledHeader
static_assert(
    PrecompiledHeader::IsBeingMade(__BASE_FILE__),
    "The precompiled header is ignored for this file. -Winvalid-pch may tell why; the usual reasons are an "
    "include option ahead of it and compiler flags that differ from those it was made with.");
#endif
