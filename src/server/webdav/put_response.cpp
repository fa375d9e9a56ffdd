#include "server/webdav/put_response.h"

#include "platform/file_ops.h"
#include "server/webdav/dav_files.h"
#include "store/log.h"

namespace server {

namespace {

bool hasContentRange(const HTTPHeaderList &headers)
{
    for (const auto &[name, value] : headers)
        if (name.compare(QLatin1String("Content-Range"), Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

} // namespace

PUTResponse::PUTResponse(const QString &filePath, const HTTPHeaderList &headers,
                         const QByteArray &bodyData)
{
    if (!accepts(filePath, headers))
        return;
    const bool existed = itemExistsAtPath(filePath);
    // An upload replaces a symbolic link rather than writing through it.
    const bool written = (!isSymbolicLinkAtPath(filePath) || tl::platform::removeItem(filePath)) &&
                         writeFileIntoExistingFolder(filePath, bodyData);
    finish(filePath, existed, written);
}

PUTResponse::PUTResponse(const QString &filePath, const HTTPHeaderList &headers,
                         const BodyFile &bodyFile)
{
    if (!accepts(filePath, headers))
        return;
    const bool existed = itemExistsAtPath(filePath);
    // A move across file systems copies and then removes the spooled file.
    const bool written = parentIsDirectory(filePath) &&
                         (!existed || tl::platform::removeItem(filePath)) &&
                         tl::platform::moveItem(bodyFile.path, filePath);
    finish(filePath, existed, written);
}

bool PUTResponse::accepts(const QString &filePath, const HTTPHeaderList &headers)
{
    if (hasContentRange(headers)) {
        tl::logLine(
            QStringLiteral("Content-Range not supported for upload to \"%1\"").arg(filePath));
        m_status = 400;
        return false;
    }
    // A folder is never replaced by an upload; a link to one is.
    if (isDirectoryAtPath(filePath) && !isSymbolicLinkAtPath(filePath)) {
        finish(filePath, true, false);
        return false;
    }
    return true;
}

void PUTResponse::finish(const QString &filePath, bool existed, bool written)
{
    if (!written) {
        tl::logLine(QStringLiteral("Failed writing upload to \"%1\"").arg(filePath));
        m_status = 403;
        return;
    }
    m_status = existed ? 200 : 201;
}

} // namespace server
