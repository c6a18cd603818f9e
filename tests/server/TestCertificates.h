// Certificates for tests, made on the spot: an authority and what it issues.
#pragma once

#include <memory>
#include <string>

struct evp_pkey_st;
struct x509_st;

struct IssuedCertificate
{
    std::shared_ptr<evp_pkey_st> key;
    std::shared_ptr<x509_st> certificate;
};

class TestAuthority
{
public:
    explicit TestAuthority(const char *name = "Test authority");

    // hosts: "DNS:a.example,DNS:*.b.example". Valid from now + firstDay to now + lastDay.
    IssuedCertificate Issue(const std::string &hosts, int firstDay = -1, int lastDay = 30) const;

    // Writes the authority's own certificate as PEM.
    void Save(const std::string &path) const;

private:
    IssuedCertificate m_own;
};
