#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>

// A saved web page: a property list of its main resource and the resources
// the page loads.
namespace tl::importers {

struct WebResource
{
    QByteArray data;
    QString url;
    QString mimeType;
};

struct WebArchive
{
    WebResource mainResource;
    QList<WebResource> subresources;
};

// Nothing unless the bytes are a property list whose "WebMainResource" has
// data. Subresources without data, or that are no dictionary, are left out;
// a missing URL or MIME type reads as empty.
std::optional<WebArchive> parseWebArchive(const QByteArray &bytes);

} // namespace tl::importers
