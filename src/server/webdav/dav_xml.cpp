#include "server/webdav/dav_xml.h"

#include <libxml/parser.h>
#include <limits>

namespace server {

namespace {

constexpr int kParseOptions = XML_PARSE_RECOVER | XML_PARSE_NOERROR | XML_PARSE_NOWARNING |
                              XML_PARSE_NOBLANKS | XML_PARSE_NONET | XML_PARSE_COMPACT;

xmlNodePtr elementIn(xmlNodePtr first, const char *name)
{
    for (xmlNodePtr node = first; node; node = node->next)
        if (node->type == XML_ELEMENT_NODE &&
            xmlStrcmp(node->name, reinterpret_cast<const xmlChar *>(name)) == 0)
            return node;
    return nullptr;
}

} // namespace

DAVXMLBody::DAVXMLBody(const QByteArray &body)
{
    if (body.isEmpty() || body.size() > std::numeric_limits<int>::max())
        return;
    m_doc = xmlReadMemory(body.constData(), int(body.size()), nullptr, nullptr, kParseOptions);
}

DAVXMLBody::~DAVXMLBody()
{
    if (m_doc)
        xmlFreeDoc(m_doc);
}

xmlNodePtr DAVXMLBody::topElement(const char *localName) const
{
    return m_doc ? elementIn(m_doc->children, localName) : nullptr;
}

xmlNodePtr childElement(xmlNodePtr parent, const char *localName)
{
    return parent ? elementIn(parent->children, localName) : nullptr;
}

QString localName(xmlNodePtr node)
{
    if (!node || !node->name)
        return {};
    return QString::fromUtf8(reinterpret_cast<const char *>(node->name));
}

} // namespace server
