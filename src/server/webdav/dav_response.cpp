#include "server/webdav/dav_response.h"

#include "foundation/path_string.h"
#include "server/webdav/dav_files.h"
#include "store/log.h"

#include <QFile>
#include <sys/stat.h>

namespace server {

std::shared_ptr<DAVResponse> DAVResponse::create(const DAVRequest &request)
{
    using Method = bool (DAVResponse::*)(const DAVRequest &);
    static const std::pair<QLatin1String, Method> methods[] = {
        {QLatin1String("OPTIONS"), &DAVResponse::options},
        {QLatin1String("PROPFIND"), &DAVResponse::propfind},
        {QLatin1String("MKCOL"), &DAVResponse::mkcol},
        {QLatin1String("MOVE"), &DAVResponse::copyOrMove},
        {QLatin1String("COPY"), &DAVResponse::copyOrMove},
        {QLatin1String("LOCK"), &DAVResponse::lock},
        {QLatin1String("UNLOCK"), &DAVResponse::unlock},
    };
    for (const auto &[name, method] : methods) {
        if (request.method != name)
            continue;
        std::shared_ptr<DAVResponse> response(new DAVResponse);
        if (!((*response).*method)(request))
            return nullptr;
        return response;
    }
    return nullptr;
}

QByteArray DAVResponse::readDataOfLength(size_t length)
{
    if (isDone())
        return {};
    const QByteArray piece = m_data->mid(qsizetype(m_offset), qsizetype(length));
    m_offset += uint64_t(piece.size());
    return piece;
}

void DAVResponse::setXMLBody(QByteArray xml)
{
    m_headers.emplace_back(QStringLiteral("Content-Type"),
                           QStringLiteral("application/xml; charset=\"utf-8\""));
    m_data = std::move(xml);
}

bool DAVResponse::options(const DAVRequest &request)
{
    // The system's file-system client mounts read-only unless it sees class 2.
    const bool fileSystemClient =
        request.header(QStringLiteral("User-Agent")).startsWith(QLatin1String("WebDAVFS/"));
    m_headers.emplace_back(QStringLiteral("DAV"),
                           fileSystemClient ? QStringLiteral("1, 2") : QStringLiteral("1"));
    return true;
}

bool DAVResponse::mkcol(const DAVRequest &request)
{
    const QString path = request.filePath();
    if (!isBelowRoot(path, request.rootPath))
        return false;
    if (!itemExistsAtPath(tl::path::deletingLastComponent(path))) {
        tl::logLine(QStringLiteral("Missing intermediate collection(s) at \"%1\"").arg(path));
        m_status = 409;
    } else if (::mkdir(QFile::encodeName(path).constData(), 0777) != 0) {
        tl::logLine(QStringLiteral("Failed creating collection at \"%1\"").arg(path));
        m_status = 405;
    }
    return true;
}

bool DAVResponse::unlock(const DAVRequest &request)
{
    const QString path = request.filePath();
    if (!isBelowRoot(path, request.rootPath) || !itemExistsAtPath(path))
        return false;
    // Locks are not kept, so no token is compared.
    m_status = request.hasHeader(QStringLiteral("Lock-Token")) ? 204 : 400;
    return true;
}

} // namespace server
