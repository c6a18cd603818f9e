#include "loopback/CertificateAuthority.h"

#include "loopback/ServiceHosts.h"

#include <openssl/bio.h>
#include <openssl/ec.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rand.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <fcntl.h>
#include <unistd.h>

#include <ctime>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace loopback
{

namespace
{

namespace fs = std::filesystem;

template <auto Release>
struct Releaser
{
    template <typename T>
    void operator()(T *object) const
    {
        Release(object);
    }
};
using Certificate = std::unique_ptr<X509, Releaser<X509_free>>;
using Key = std::unique_ptr<EVP_PKEY, Releaser<EVP_PKEY_free>>;
using Bio = std::unique_ptr<BIO, Releaser<BIO_free_all>>;

constexpr long Day = 24L * 60 * 60;
constexpr long AuthorityLife = 3650 * Day;
// Some clients refuse server certificates that are valid for more than 825 days.
constexpr long ServerLife = 397 * Day;
constexpr long RenewAhead = 30 * Day;

struct Pair
{
    Certificate certificate;
    Key key;
};

void Require(bool condition, const char *step)
{
    if (!condition)
    {
        throw std::runtime_error(std::string("certificates: ") + step + " failed");
    }
}

std::string AsPem(const std::function<int(BIO *)> &write)
{
    Bio memory(BIO_new(BIO_s_mem()));
    Require(memory && write(memory.get()) == 1, "encoding");
    char *bytes = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &bytes);
    return std::string(bytes, static_cast<std::size_t>(size));
}

std::string PemOf(X509 *certificate)
{
    return AsPem([&](BIO *out) { return PEM_write_bio_X509(out, certificate); });
}

std::string PemOf(EVP_PKEY *key)
{
    return AsPem(
        [&](BIO *out) { return PEM_write_bio_PrivateKey(out, key, nullptr, nullptr, 0, nullptr, nullptr); });
}

void WriteFile(const fs::path &path, const std::string &text, mode_t mode)
{
    const fs::path fresh = path.string() + ".new";
    fs::remove(fresh);
    const int file = open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    Require(file >= 0, "creating a file in the certificates' folder");
    const bool written = write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    Require(close(file) == 0 && written, "writing a file in the certificates' folder");
    fs::rename(fresh, path);
}

Pair Load(const fs::path &certificate, const fs::path &key)
{
    Pair pair;
    Bio certificateFile(BIO_new_file(certificate.c_str(), "r"));
    Bio keyFile(BIO_new_file(key.c_str(), "r"));
    if (certificateFile && keyFile)
    {
        pair.certificate.reset(PEM_read_bio_X509(certificateFile.get(), nullptr, nullptr, nullptr));
        pair.key.reset(PEM_read_bio_PrivateKey(keyFile.get(), nullptr, nullptr, nullptr));
    }
    if (!pair.certificate || !pair.key || X509_check_private_key(pair.certificate.get(), pair.key.get()) != 1)
    {
        return {};
    }
    return pair;
}

void AddExtension(X509 *certificate, X509 *issuer, int kind, const std::string &value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    std::unique_ptr<X509_EXTENSION, Releaser<X509_EXTENSION_free>> extension(
        X509V3_EXT_conf_nid(nullptr, &context, kind, value.c_str()));
    Require(extension && X509_add_ext(certificate, extension.get(), -1) == 1, "adding an extension");
}

Certificate NewCertificate(EVP_PKEY *key, const char *commonName, long life)
{
    Certificate certificate(X509_new());
    Require(certificate != nullptr, "allocating");
    X509_set_version(certificate.get(), X509_VERSION_3);
    unsigned char serial[16];
    Require(RAND_bytes(serial, sizeof serial) == 1, "making a serial number");
    serial[0] = static_cast<unsigned char>((serial[0] & 0x7f) | 0x40);
    std::unique_ptr<BIGNUM, Releaser<BN_free>> number(BN_bin2bn(serial, sizeof serial, nullptr));
    BN_to_ASN1_INTEGER(number.get(), X509_get_serialNumber(certificate.get()));
    // Valid from yesterday, for clients whose clock is slow.
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -Day);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), life);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char *>(commonName), -1, -1, 0);
    return certificate;
}

std::string NameList(const char *dnsPrefix, const char *ipPrefix, const char *ipSuffix)
{
    std::string list;
    for (const auto &host : KnownHosts)
    {
        list += list.empty() ? "" : ",";
        list += host == "127.0.0.1" ? ipPrefix + host + ipSuffix : dnsPrefix + host;
    }
    return list;
}

struct Extension
{
    int kind;
    std::string value;
};

// Without an issuer the certificate is its own.
Pair MakePair(const char *commonName, long life, const Pair *issuer, const std::vector<Extension> &extensions)
{
    Pair pair;
    pair.key.reset(EVP_EC_gen("P-256"));
    Require(pair.key != nullptr, "making a key");
    pair.certificate = NewCertificate(pair.key.get(), commonName, life);
    X509 *certificate = pair.certificate.get();
    const Pair &signer = issuer ? *issuer : pair;
    X509_set_issuer_name(certificate, X509_get_subject_name(signer.certificate.get()));
    for (const auto &[kind, value] : extensions)
    {
        AddExtension(certificate, signer.certificate.get(), kind, value);
    }
    Require(X509_sign(certificate, signer.key.get(), EVP_sha256()) > 0, "signing");
    return pair;
}

Pair MakeAuthority()
{
    return MakePair(
        "Halvora loopback authority", AuthorityLife, nullptr,
        {{NID_basic_constraints, "critical,CA:TRUE,pathlen:0"},
         {NID_key_usage, "critical,keyCertSign,cRLSign"},
         {NID_subject_key_identifier, "hash"},
         {NID_name_constraints, "critical," + NameList("permitted;DNS:", "permitted;IP:", "/255.255.255.255")}});
}

Pair MakeServer(const Pair &authority)
{
    return MakePair("Halvora loopback service", ServerLife, &authority,
                    {{NID_basic_constraints, "critical,CA:FALSE"},
                     {NID_key_usage, "critical,digitalSignature"},
                     {NID_ext_key_usage, "serverAuth"},
                     {NID_subject_key_identifier, "hash"},
                     {NID_authority_key_identifier, "keyid"},
                     {NID_subject_alt_name, NameList("DNS:", "IP:", "")}});
}

bool LastsLongEnough(X509 *certificate)
{
    std::time_t then = std::time(nullptr) + RenewAhead;
    return X509_cmp_time(X509_get0_notAfter(certificate), &then) > 0;
}

// Checks what a client would: the signature, the dates and every host name.
bool IsUsable(const Pair &server, const Pair &authority)
{
    if (!server.certificate || !authority.certificate || !LastsLongEnough(server.certificate.get()) ||
        !LastsLongEnough(authority.certificate.get()))
    {
        return false;
    }
    bool usable = X509_verify(server.certificate.get(), authority.key.get()) == 1;
    for (const auto &host : KnownHosts)
    {
        usable = usable && (host == "127.0.0.1"
                                ? X509_check_ip_asc(server.certificate.get(), host.c_str(), 0) == 1
                                : X509_check_host(server.certificate.get(), host.c_str(), 0, 0, nullptr) == 1);
    }
    return usable;
}

} // namespace

Certificates PrepareCertificates(const fs::path &folder)
{
    fs::create_directories(folder);
    const fs::path authorityFile = folder / "ca.pem", authorityKey = folder / "ca.key";
    const fs::path serverFile = folder / "server.pem", serverKey = folder / "server.key";
    Pair authority = Load(authorityFile, authorityKey);
    Pair server = Load(serverFile, serverKey);
    if (!IsUsable(server, authority))
    {
        authority = MakeAuthority();
        server = MakeServer(authority);
        Require(IsUsable(server, authority), "checking the new certificates");
        WriteFile(authorityKey, PemOf(authority.key.get()), 0600);
        WriteFile(authorityFile, PemOf(authority.certificate.get()), 0644);
        WriteFile(serverKey, PemOf(server.key.get()), 0600);
        WriteFile(serverFile, PemOf(server.certificate.get()), 0644);
    }
    return {authorityFile, {PemOf(server.certificate.get()), PemOf(server.key.get())}};
}

} // namespace loopback
