// COPY and MOVE: within the library only, and never over an existing item.
#include "platform/file_ops.h"
#include "server/core/http_url.h"
#include "server/core/uri_mapping.h"
#include "server/webdav/dav_files.h"
#include "server/webdav/dav_response.h"
#include "store/log.h"

namespace server {

namespace {

// The destination as a standardised path below the root, or nothing. The
// path is what follows the request's host in "Destination"; standardising
// it before the root test keeps ".." from leading out of the library.
std::optional<QString> destinationPath(const DAVRequest &request)
{
    const QString host = request.header(QStringLiteral("Host"));
    const QString destination = request.header(QStringLiteral("Destination"));
    if (host.isEmpty() || destination.isNull())
        return std::nullopt;
    const qsizetype at = destination.indexOf(host);
    if (at < 0)
        return std::nullopt;
    const auto decoded = percentDecode(destination.mid(at + host.size()));
    if (!decoded)
        return std::nullopt;
    const QString path =
        standardizePath(appendPathComponent(standardizePath(request.rootPath), *decoded));
    if (!isBelowRoot(path, request.rootPath) || !staysBelowRoot(path, request.rootPath))
        return std::nullopt;
    return path;
}

} // namespace

bool DAVResponse::copyOrMove(const DAVRequest &request)
{
    const bool isMove = request.method == QLatin1String("MOVE");
    if (!isMove) {
        const QString depth = request.header(QStringLiteral("Depth"));
        if (depth != QLatin1String("infinity")) {
            tl::logLine(QStringLiteral("Unsupported DAV depth \"%1\"").arg(depth));
            return false;
        }
    }
    const QString source = request.filePath();
    if (!isBelowRoot(source, request.rootPath) || !itemExistsAtPath(source))
        return false;
    const auto destination = destinationPath(request);
    // The library itself is neither moved nor replaced.
    const QString root = standardizePath(request.rootPath);
    if ((isMove && source == root) || (destination && *destination == root)) {
        tl::logLine(
            QStringLiteral("Refusing to move or replace the document root \"%1\"").arg(root));
        m_status = 403;
        return true;
    }
    // An existing destination is never overwritten, whatever "Overwrite" says.
    if (!destination || itemExistsAtPath(*destination))
        return false;

    if (!parentIsDirectory(*destination)) {
        tl::logLine(QStringLiteral("Invalid destination path \"%1\"").arg(*destination));
        m_status = 409;
    } else if (isMove ? !tl::platform::moveItem(source, *destination)
                      : !tl::platform::copyItem(source, *destination)) {
        const char *format =
            isMove ? "Failed moving \"%1\" to \"%2\"" : "Failed copying \"%1\" to \"%2\"";
        tl::logLine(QString::fromLatin1(format).arg(source, *destination));
        m_status = 403;
    } else {
        m_status = 201;
    }
    return true;
}

} // namespace server
