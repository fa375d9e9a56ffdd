#pragma once

#include "server/core/http_message.h"
#include "server/webdav/dav_status_response.h"

#include <QString>

namespace server {

// PUT: writes the uploaded body to the file. The folder it goes into must
// exist; it is never made.
class PUTResponse : public DAVStatusResponse
{
public:
    // A body that was spooled to a file, which is moved onto the target.
    struct BodyFile
    {
        QString path;
    };

    PUTResponse(const QString &filePath, const HTTPHeaderList &headers, const QByteArray &bodyData);
    PUTResponse(const QString &filePath, const HTTPHeaderList &headers, const BodyFile &bodyFile);

private:
    // False when the request cannot be carried out at all.
    bool accepts(const QString &filePath, const HTTPHeaderList &headers);
    void finish(const QString &filePath, bool existed, bool written);
};

} // namespace server
