#include "loopback/XmlReply.h"

#include "com/Utf8.h"

#include <libxml/xmlwriter.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace loopback
{

namespace
{

const xmlChar *Xml(const std::string &text)
{
    return reinterpret_cast<const xmlChar *>(text.c_str());
}

std::string XmlSafe(const std::string &bytes)
{
    std::string text = RepairedUtf8(bytes);
    // XML 1.0, 2.2 allows only these three control characters.
    std::replace_if(
        text.begin(), text.end(),
        [](char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r'; }, '?');
    return text;
}

void Write(xmlTextWriter *writer, const XmlElement &element)
{
    xmlTextWriterStartElement(writer, Xml(element.name));
    for (const auto &[name, value] : element.attributes)
    {
        xmlTextWriterWriteAttribute(writer, Xml(name), Xml(XmlSafe(value)));
    }
    if (!element.text.empty())
    {
        xmlTextWriterWriteString(writer, Xml(XmlSafe(element.text)));
    }
    for (const auto &child : element.children)
    {
        Write(writer, child);
    }
    xmlTextWriterEndElement(writer);
}

HttpReply XmlHttpReply(const XmlElement &root)
{
    return {200, "text/xml; charset=utf-8", WriteXml(root)};
}

} // namespace

std::string WriteXml(const XmlElement &root)
{
    const auto releaseBuffer = [](xmlBuffer *buffer) { xmlBufferFree(buffer); };
    const auto releaseWriter = [](xmlTextWriter *writer) { xmlFreeTextWriter(writer); };
    std::unique_ptr<xmlBuffer, decltype(releaseBuffer)> buffer(xmlBufferCreate());
    std::unique_ptr<xmlTextWriter, decltype(releaseWriter)> writer(xmlNewTextWriterMemory(buffer.get(), 0));
    if (!writer)
    {
        throw std::runtime_error("no memory for a reply");
    }
    xmlTextWriterSetIndent(writer.get(), 1);
    xmlTextWriterStartDocument(writer.get(), nullptr, "utf-8", nullptr);
    Write(writer.get(), root);
    xmlTextWriterEndDocument(writer.get());
    xmlTextWriterFlush(writer.get());
    return reinterpret_cast<const char *>(xmlBufferContent(buffer.get()));
}

HttpReply OkReply(std::vector<XmlElement> children)
{
    return XmlHttpReply({"rsp", {{"stat", "ok"}}, "", std::move(children)});
}

HttpReply FailReply(int code, const std::string &message)
{
    return XmlHttpReply(
        {"rsp", {{"stat", "fail"}}, "", {{"err", {{"code", std::to_string(code)}, {"msg", message}}}}});
}

} // namespace loopback
