// The XML of the service's replies.
#pragma once

#include "loopback/HttpMessages.h"
#include "loopback/PageFrame.h"

#include <string>
#include <utility>
#include <vector>

namespace loopback
{

using XmlAttributes = std::vector<std::pair<std::string, std::string>>;

// An element; the content is XML, the attributes' values are plain text.
std::string Element(const std::string &name, const XmlAttributes &attributes, const std::string &content = "");

// The document of this root element, with the XML declaration.
std::string XmlDocument(const std::string &root);

// <rsp stat="ok"> around the content.
HttpReply OkReply(const std::string &content);

// <rsp stat="fail"> with code and message; its HTTP status is 200.
HttpReply FailReply(int code, const std::string &message);

} // namespace loopback
