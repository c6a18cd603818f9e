// The REST endpoint: the methods that publishers call. Thread-safe.
#pragma once

#include "loopback/AccountBook.h"
#include "loopback/Admission.h"
#include "loopback/HttpMessages.h"

#include <string>

namespace loopback
{

// How the tickets of asynchronous uploads begin: ahead of the photo's id, and of the digits of one that was refused.
inline constexpr char Ticket[] = "2830-";
inline constexpr char RefusedTicket[] = "2830-0";

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
