#include "tests/server/TestCertificates.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

#include <cstdio>

namespace
{
long serialNumber = 1;

std::shared_ptr<X509> NewCertificate(EVP_PKEY *key, const char *name, int firstDay, int lastDay)
{
    std::shared_ptr<X509> certificate(X509_new(), X509_free);
    X509_set_version(certificate.get(), 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), serialNumber++);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), firstDay * 86400L);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), lastDay * 86400L);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate.get()), "CN", MBSTRING_ASC,
                               reinterpret_cast<const unsigned char *>(name), -1, -1, 0);
    return certificate;
}

void Extend(X509 *certificate, X509 *issuer, int nid, const char *value)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    X509_EXTENSION *extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
    X509_add_ext(certificate, extension, -1);
    X509_EXTENSION_free(extension);
}

std::shared_ptr<EVP_PKEY> NewKey()
{
    return {EVP_EC_gen("P-256"), EVP_PKEY_free};
}
} // namespace

TestAuthority::TestAuthority(const char *name)
{
    m_own.key = NewKey();
    m_own.certificate = NewCertificate(m_own.key.get(), name, -3000, 3000);
    X509 *own = m_own.certificate.get();
    X509_set_issuer_name(own, X509_get_subject_name(own));
    Extend(own, own, NID_basic_constraints, "critical,CA:TRUE");
    Extend(own, own, NID_key_usage, "critical,keyCertSign,cRLSign");
    Extend(own, own, NID_subject_key_identifier, "hash");
    X509_sign(own, m_own.key.get(), EVP_sha256());
}

IssuedCertificate TestAuthority::Issue(const std::string &hosts, int firstDay, int lastDay) const
{
    IssuedCertificate issued;
    issued.key = NewKey();
    issued.certificate = NewCertificate(issued.key.get(), "Test server", firstDay, lastDay);
    X509 *own = m_own.certificate.get();
    X509_set_issuer_name(issued.certificate.get(), X509_get_subject_name(own));
    Extend(issued.certificate.get(), own, NID_basic_constraints, "CA:FALSE");
    Extend(issued.certificate.get(), own, NID_subject_alt_name, hosts.c_str());
    X509_sign(issued.certificate.get(), m_own.key.get(), EVP_sha256());
    return issued;
}

void TestAuthority::Save(const std::string &path) const
{
    std::unique_ptr<FILE, int (*)(FILE *)> file(std::fopen(path.c_str(), "w"), std::fclose);
    PEM_write_X509(file.get(), m_own.certificate.get());
}
