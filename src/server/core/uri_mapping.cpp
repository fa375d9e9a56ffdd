#include "server/core/uri_mapping.h"

#include "server/core/http_url.h"

#include <QFile>
#include <sys/stat.h>

namespace server {

namespace {

bool statPath(const QString &path, struct stat &info)
{
    return ::stat(QFile::encodeName(path).constData(), &info) == 0;
}

} // namespace

QString mapURIToFilePath(const QString &documentRoot, const QString &uri, bool allowDirectory,
                         const QStringList &indexNames, QString &failure)
{
    if (documentRoot.isEmpty()) {
        failure = QStringLiteral("No configured document root");
        return {};
    }
    if (!documentRoot.startsWith(QLatin1Char('/')) || documentRoot.contains(QChar(0))) {
        failure = QStringLiteral("Document root is invalid file path");
        return {};
    }
    const QString root = standardizePath(documentRoot);
    const auto relativePath = urlRelativePath(uri);
    QString fullPath;
    if (relativePath) {
        fullPath = standardizePath(appendPathComponent(root, *relativePath));
        if (*relativePath == QLatin1String("/"))
            fullPath += QLatin1Char('/');
    }
    const QString rootWithSlash = root.endsWith(QLatin1Char('/')) ? root : root + QLatin1Char('/');
    if (!relativePath || !fullPath.startsWith(rootWithSlash)) {
        failure = QStringLiteral("Request for file outside document root");
        return {};
    }
    if (allowDirectory)
        return fullPath;
    struct stat info;
    if (statPath(fullPath, info) && S_ISDIR(info.st_mode)) {
        for (const QString &name : indexNames) {
            const QString candidate = appendPathComponent(fullPath, name);
            if (statPath(candidate, info) && S_ISREG(info.st_mode))
                return candidate;
        }
        return {};
    }
    return fullPath;
}

} // namespace server
