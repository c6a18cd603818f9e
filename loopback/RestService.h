// The REST endpoint: the methods that publishers call. Thread-safe.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/Admission.h"
#include "loopback/HttpMessages.h"

#include <string>

namespace loopback
{

class RestService
{
public:
    RestService(AccountBook &accounts, Admission &admission) : m_accounts(accounts), m_admission(admission) {}

    // `fields` are those of the body.
    HttpReply Handle(const HttpRequest &request, const FormFields &fields);

private:
    AccountBook &m_accounts;
    Admission &m_admission;
};

// The "method" that the request asks for, unchecked.
std::string RestMethod(const HttpRequest &request, const FormFields &fields);

} // namespace loopback
