#pragma once

#include "server/webdav/dav_status_response.h"

#include <QString>

namespace server {

// DELETE: removes the item, a folder with all it holds.
class DELETEResponse : public DAVStatusResponse
{
public:
    explicit DELETEResponse(const QString &filePath);
};

} // namespace server
