#pragma once

#include <QByteArray>
#include <QString>
#include <libxml/tree.h>

namespace server {

// A request body parsed with libxml2 the way the WebDAV methods need it:
// tolerant of errors, silent, without blank text nodes, never reaching the
// network and never expanding entities.
class DAVXMLBody
{
public:
    explicit DAVXMLBody(const QByteArray &body);
    ~DAVXMLBody();

    DAVXMLBody(const DAVXMLBody &) = delete;
    DAVXMLBody &operator=(const DAVXMLBody &) = delete;

    bool parsed() const { return m_doc != nullptr; }
    // The top element of that local name, whatever its namespace, or null.
    xmlNodePtr topElement(const char *localName) const;

private:
    xmlDocPtr m_doc = nullptr;
};

// The first child element of that local name, whatever its namespace, or null.
xmlNodePtr childElement(xmlNodePtr parent, const char *localName);
// A node's local name as text.
QString localName(xmlNodePtr node);

} // namespace server
