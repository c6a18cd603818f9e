#include "account/ApplicationCredentials.h"

#include "account/SecuredTransformation.h"

#include <map>
#include <memory>
#include <mutex>
#include <new>

namespace
{
constexpr std::align_val_t BufferAlignment{16};

struct WipeAndFree
{
    size_t Length = 0;

    void operator()(BYTE *plain) const noexcept
    {
        // Volatile: compilers drop a plain fill of memory that is about to be freed.
        for (volatile BYTE *byte = plain; byte != plain + Length; ++byte)
        {
            *byte = 0;
        }
        ::operator delete(plain, BufferAlignment);
    }
};

struct OpenString
{
    std::unique_ptr<BYTE[], WipeAndFree> plain;
    UINT32 openCount = 0; // opens that have not been closed yet
};

// The one table of the process. Its key is the address of a record, not the content.
struct
{
    std::mutex Lock;
    std::map<const SecuredString *, OpenString> Entries; // guarded by Lock
} OpenStrings;

std::unique_ptr<BYTE[], WipeAndFree> MakePlain(const SecuredString &record)
{
    const size_t length = record.lengthWord & 0x7FFFFFFF;
    // Read as volatile so that no optimiser that sees the record undoes the seal at build time.
    const UINT32 mask = *static_cast<const volatile UINT32 *>(&record.maskWord);
    std::unique_ptr<BYTE[], WipeAndFree> plain(static_cast<BYTE *>(::operator new(length, BufferAlignment)),
                                               WipeAndFree{length});
    TransformSecured(reinterpret_cast<const BYTE *>(&record) + sizeof(SecuredString), plain.get(), length, mask);
    return plain;
}
} // namespace

const WCHAR *OpenSecuredString(const SecuredString &record)
{
    const std::scoped_lock lock(OpenStrings.Lock);
    auto found = OpenStrings.Entries.find(&record);
    if (found == OpenStrings.Entries.end())
    {
        found = OpenStrings.Entries.emplace(&record, OpenString{MakePlain(record), 0}).first;
    }
    ++found->second.openCount;
    return reinterpret_cast<const WCHAR *>(found->second.plain.get());
}

void CloseSecuredString(const SecuredString &record) noexcept
{
    const std::scoped_lock lock(OpenStrings.Lock);
    const auto found = OpenStrings.Entries.find(&record);
    if (found != OpenStrings.Entries.end() && --found->second.openCount == 0)
    {
        OpenStrings.Entries.erase(found);
    }
}
