#include "loopback/XmlReply.h"

namespace loopback
{

std::string Element(const std::string &name, const XmlAttributes &attributes, const std::string &content)
{
    std::string xml = "<" + name;
    for (const auto &[attribute, value] : attributes)
    {
        xml += " " + attribute + "=\"" + EscapeMarkup(value) + "\"";
    }
    return xml + (content.empty() ? "/>" : ">" + content + "</" + name + ">");
}

std::string XmlDocument(const std::string &root)
{
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n" + root + "\n";
}

HttpReply OkReply(const std::string &content)
{
    return {200, "text/xml; charset=utf-8", XmlDocument(Element("rsp", {{"stat", "ok"}}, "\n" + content + "\n"))};
}

HttpReply FailReply(int code, const std::string &message)
{
    return {
        200, "text/xml; charset=utf-8",
        XmlDocument(Element("rsp", {{"stat", "fail"}},
                            "\n" + Element("err", {{"code", std::to_string(code)}, {"msg", message}}) + "\n"))};
}

} // namespace loopback
