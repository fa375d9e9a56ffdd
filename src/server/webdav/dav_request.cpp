#include "server/webdav/dav_request.h"

#include "server/core/http_url.h"

namespace server {

QString DAVRequest::header(const QString &name) const
{
    for (const auto &[field, value] : headers)
        if (field.compare(name, Qt::CaseInsensitive) == 0)
            return value.isNull() ? QStringLiteral("") : value;
    return {};
}

QString DAVRequest::filePath() const
{
    return standardizePath(appendPathComponent(standardizePath(rootPath), resourcePath));
}

bool isBelowRoot(const QString &path, const QString &rootPath)
{
    // A plain prefix test would let "/Library2" pass for "/Library".
    const QString root = standardizePath(rootPath);
    if (path == root)
        return true;
    return path.startsWith(root.endsWith(QLatin1Char('/')) ? root : root + QLatin1Char('/'));
}

} // namespace server
