#pragma once

#include "server/webdav/dav_status_response.h"

#include <QString>

namespace server {

// DELETE: removes the item, a folder with all it holds; never the root.
class DELETEResponse : public DAVStatusResponse
{
public:
    DELETEResponse(const QString &filePath, const QString &rootPath);
};

} // namespace server
