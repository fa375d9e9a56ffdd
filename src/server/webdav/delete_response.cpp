#include "server/webdav/delete_response.h"

#include "platform/file_ops.h"
#include "server/core/http_url.h"
#include "server/webdav/dav_files.h"
#include "store/log.h"

namespace server {

DELETEResponse::DELETEResponse(const QString &filePath, const QString &rootPath)
{
    // The library itself stays; only what it holds can go.
    if (standardizePath(filePath) == standardizePath(rootPath)) {
        tl::logLine(QStringLiteral("Refusing to delete the document root \"%1\"").arg(filePath));
        m_status = 403;
        return;
    }
    const bool existed = itemExistsAtPath(filePath);
    if (!tl::platform::removeItem(filePath)) {
        tl::logLine(QStringLiteral("Failed deleting \"%1\"").arg(filePath));
        m_status = 404;
        return;
    }
    m_status = existed ? 200 : 204;
}

} // namespace server
