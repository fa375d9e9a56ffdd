#include "server/core/uri_mapping.h"

#include "server/core/http_url.h"

#include <QFile>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <sys/stat.h>

namespace server {

namespace {

bool statPath(const QString &path, struct stat &info)
{
    return ::stat(QFile::encodeName(path).constData(), &info) == 0;
}

// The path with the links of its longest existing part resolved, or empty.
QByteArray resolvedPath(QByteArray path)
{
    QByteArray rest;
    char resolved[PATH_MAX];
    while (!::realpath(path.constData(), resolved)) {
        const qsizetype slash = path.lastIndexOf('/');
        if ((errno != ENOENT && errno != ENOTDIR) || slash < 0)
            return {};
        rest.prepend(path.mid(slash));
        path.truncate(slash);
        if (path.isEmpty())
            path = "/";
    }
    const QByteArray result(resolved);
    if (result == "/")
        return rest.isEmpty() ? result : rest;
    return result + rest;
}

} // namespace

bool staysBelowRoot(const QString &path, const QString &root)
{
    // Only what lies below the root can lead out of it: its components are
    // looked at one by one, and the whole path is resolved only when one of
    // them is a link. A missing component ends the walk.
    const QByteArray nativeRoot = QFile::encodeName(standardizePath(root));
    const QByteArray native = QFile::encodeName(path);
    if (native == nativeRoot)
        return true;
    if (native.startsWith(nativeRoot + '/') || nativeRoot == "/") {
        qsizetype end = nativeRoot.size();
        for (;;) {
            end = native.indexOf('/', end + 1);
            const QByteArray part = end < 0 ? native : native.left(end);
            struct stat info;
            if (::lstat(part.constData(), &info) != 0)
                return errno == ENOENT || errno == ENOTDIR;
            if (S_ISLNK(info.st_mode))
                break;
            if (end < 0 || end == native.size() - 1)
                return true;
        }
    }
    const QByteArray resolvedRoot = resolvedPath(nativeRoot);
    const QByteArray resolved = resolvedPath(native);
    if (resolvedRoot.isEmpty() || resolved.isEmpty())
        return false;
    return resolved == resolvedRoot || resolved.startsWith(resolvedRoot + '/') ||
           resolvedRoot == "/";
}

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
    if (!relativePath || !fullPath.startsWith(rootWithSlash) || !staysBelowRoot(fullPath, root)) {
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
