#include "server/core/multipart_ranges.h"

#include <QUuid>

namespace server {

MultipartRanges frameMultipartRanges(const std::vector<ByteRange> &ranges, uint64_t contentLength)
{
    MultipartRanges multipart;
    multipart.boundary = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    for (const ByteRange &range : ranges) {
        const QByteArray header =
            QStringLiteral("\r\n--%1\r\nContent-Range: bytes %2-%3/%4\r\n\r\n")
                .arg(multipart.boundary)
                .arg(range.location)
                .arg(range.last())
                .arg(contentLength)
                .toUtf8();
        multipart.contentLength += uint64_t(header.size()) + range.length;
        multipart.partHeaders.push_back(header);
    }
    multipart.closing = QStringLiteral("\r\n--%1--\r\n").arg(multipart.boundary).toUtf8();
    multipart.contentLength += uint64_t(multipart.closing.size());
    return multipart;
}

HTTPMessage newUniRangeResponse(const ByteRange &range, uint64_t contentLength)
{
    HTTPMessage response(206, {}, HTTPVersion1_1);
    response.setHeaderField(QStringLiteral("Content-Length"), QString::number(range.length));
    response.setHeaderField(
        QStringLiteral("Content-Range"),
        QStringLiteral("bytes %1-%2/%3").arg(range.location).arg(range.last()).arg(contentLength));
    return response;
}

HTTPMessage newMultiRangeResponse(const MultipartRanges &multipart)
{
    HTTPMessage response(206, {}, HTTPVersion1_1);
    response.setHeaderField(QStringLiteral("Content-Length"),
                            QString::number(multipart.contentLength));
    response.setHeaderField(
        QStringLiteral("Content-Type"),
        QStringLiteral("multipart/byteranges; boundary=%1").arg(multipart.boundary));
    return response;
}

} // namespace server
