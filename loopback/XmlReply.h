// The XML of the service's replies.
#pragma once

#include "loopback/HttpMessages.h"

#include <string>
#include <utility>
#include <vector>

namespace loopback
{

struct XmlElement
{
    std::string name;
    std::vector<std::pair<std::string, std::string>> attributes;
    std::string text;
    std::vector<XmlElement> children;
};

// The document in UTF-8, with its declaration. Characters that XML doesn't allow become U+FFFD or "?".
std::string WriteXml(const XmlElement &root);

// <rsp stat="ok"> around the children.
HttpReply OkReply(std::vector<XmlElement> children);

// <rsp stat="fail"> with code and message; its HTTP status is 200.
HttpReply FailReply(int code, const std::string &message);

} // namespace loopback
