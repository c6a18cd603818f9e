#include "tests/webclient/TrustedAuthority.h"

#include <windows.h>
#include <wincrypt.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace
{
PCCERT_CONTEXT authority = nullptr;

bool IsWine()
{
    return GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

HCERTSTORE OpenRoots()
{
    return CertOpenStore(CERT_STORE_PROV_SYSTEM_W, 0, 0, CERT_SYSTEM_STORE_CURRENT_USER, L"Root");
}

std::vector<BYTE> ReadCertificate(const char *path)
{
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    std::vector<BYTE> bytes(text.size());
    auto size = static_cast<DWORD>(bytes.size());
    if (!CryptStringToBinaryA(text.c_str(), 0, CRYPT_STRING_BASE64HEADER, bytes.data(), &size, nullptr, nullptr))
    {
        size = 0;
    }
    bytes.resize(size);
    return bytes;
}
} // namespace

bool TrustedAuthority::Begin()
{
    const char *path = std::getenv("HALVORA_CA_FILE");
    if (path == nullptr || !IsWine())
    {
        return false;
    }
    const std::vector<BYTE> bytes = ReadCertificate(path);
    authority = CertCreateCertificateContext(X509_ASN_ENCODING, bytes.data(), static_cast<DWORD>(bytes.size()));
    const HCERTSTORE store = OpenRoots();
    const bool isAdded = authority != nullptr && CertAddCertificateContextToStore(
                                                     store, authority, CERT_STORE_ADD_REPLACE_EXISTING, nullptr);
    // Others see it when the store has been closed, which a context in it would keep open.
    return CertCloseStore(store, 0) && isAdded;
}

void TrustedAuthority::End()
{
    if (authority != nullptr)
    {
        const HCERTSTORE store = OpenRoots();
        const PCCERT_CONTEXT found =
            CertFindCertificateInStore(store, X509_ASN_ENCODING, 0, CERT_FIND_EXISTING, authority, nullptr);
        if (found != nullptr)
        {
            CertDeleteCertificateFromStore(found);
        }
        CertCloseStore(store, 0);
        CertFreeCertificateContext(authority);
        authority = nullptr;
    }
}
