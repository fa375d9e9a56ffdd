#pragma once

#include "server/core/http_message.h"
#include "server/core/http_range.h"

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <vector>

namespace server {

// The framing of a multipart/byteranges body: a header before each range and
// a closing line after the last, around a new boundary.
struct MultipartRanges
{
    QString boundary;
    std::vector<QByteArray> partHeaders; // one per range, in order
    QByteArray closing;
    uint64_t contentLength = 0; // framing and ranges together
};

// Frames the ranges of a body of contentLength bytes.
MultipartRanges frameMultipartRanges(const std::vector<ByteRange> &ranges, uint64_t contentLength);

// The 206 head of one range of a body of contentLength bytes.
HTTPMessage newUniRangeResponse(const ByteRange &range, uint64_t contentLength);
// The 206 head of a multipart body.
HTTPMessage newMultiRangeResponse(const MultipartRanges &multipart);

} // namespace server
