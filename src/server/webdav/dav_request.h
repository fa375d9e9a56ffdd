#pragma once

#include "server/core/http_message.h"

#include <QByteArray>
#include <QString>

namespace server {

// What a WebDAV method is given: the request's method, header fields and
// body, and where the resource lies. The resource path is the path below the
// root without its first "/"; the root is the document root.
struct DAVRequest
{
    QString method;
    HTTPHeaderList headers;
    QByteArray body;
    QString resourcePath;
    QString rootPath;

    // The value of a header field, names compared without regard to case;
    // a null string when absent.
    QString header(const QString &name) const;
    bool hasHeader(const QString &name) const { return !header(name).isNull(); }
    // The resource as a path on disk: the root and the resource path joined
    // and standardised.
    QString filePath() const;
};

// Whether a standardised path is the root or lies below it.
bool isBelowRoot(const QString &path, const QString &rootPath);

} // namespace server
