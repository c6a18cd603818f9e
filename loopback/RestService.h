// The REST endpoint: the methods that publishers call. Thread-safe.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/Admission.h"
#include "loopback/HttpMessages.h"
#include "loopback/PhotoIndex.h"

#include <string>

namespace loopback
{

struct RestReply
{
    HttpReply reply;
    // The request's "method", unchecked.
    std::string method;
};

class RestService
{
public:
    RestService(AccountBook &accounts, const PhotoIndex &photos, Admission &admission);

    RestReply Handle(HttpExchange &exchange);

private:
    AccountBook &m_accounts;
    const PhotoIndex &m_photos;
    Admission &m_admission;
};

} // namespace loopback
