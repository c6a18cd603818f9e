// Fails the compilation of a file if the compiler ignored the precompiled header that was made for it.
// g++ does so silently if anything is included before it (-Winvalid-pch reports only headers that it
// examined). The text of a precompiled header is not read again, so this assertion is evaluated while the
// header is made, and elsewhere only if the header was ignored.
#pragma once

// Tools based on clang read the header as text.
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
