// Sending a response: its header, then its body piece by piece, plain,
// chunked, as one range or as several, with at most a piece unsent.
#include "server/core/http_connection.h"
#include "server/core/multipart_ranges.h"

#include <numeric>

namespace server {

void HTTPConnection::write(const QByteArray &data, double timeout, long tag)
{
    if (m_socket)
        m_socket->writeData(data, timeout, tag);
}

size_t HTTPConnection::writeQueueSize() const
{
    return std::accumulate(m_responseDataSizes.begin(), m_responseDataSizes.end(), size_t(0));
}

void HTTPConnection::sendResponseHeadersAndBody()
{
    if (!m_socket || !m_httpResponse)
        return;
    if (m_httpResponse->delayResponseHeaders())
        return;

    const bool isChunked = m_httpResponse->isChunked();
    const uint64_t contentLength = isChunked ? 0 : m_httpResponse->contentLength();

    m_ranges.clear();
    bool isRangeRequest = false;
    const QString rangeHeader = m_request->headerField(QStringLiteral("Range"));
    if (!isChunked && !rangeHeader.isNull()) {
        if (auto ranges = parseRangeRequest(rangeHeader, contentLength)) {
            m_ranges = std::move(*ranges);
            m_rangeIndex = 0;
            isRangeRequest = true;
        }
    }

    if (isRangeRequest && m_ranges.size() > 1)
        m_multipart = frameMultipartRanges(m_ranges, contentLength);
    HTTPMessage response =
        isRangeRequest
            ? (m_ranges.size() == 1 ? newUniRangeResponse(m_ranges.front(), contentLength)
                                    : newMultiRangeResponse(m_multipart))
            : HTTPMessage(m_httpResponse->status(), {}, HTTPVersion1_1);
    if (!isRangeRequest) {
        if (isChunked)
            response.setHeaderField(QStringLiteral("Transfer-Encoding"), QStringLiteral("chunked"));
        else
            response.setHeaderField(QStringLiteral("Content-Length"),
                                    QString::number(contentLength));
    }

    const bool isZeroLengthResponse = !isChunked && contentLength == 0;
    if (m_request->method() == QLatin1String("HEAD") || isZeroLengthResponse) {
        write(preprocessResponse(response), kHeadWriteTimeout, kTagResponse);
        m_sentResponseHeaders = true;
        return;
    }

    write(preprocessResponse(response), kHeadWriteTimeout, kTagPartialResponseHeader);
    m_sentResponseHeaders = true;

    if (!isRangeRequest) {
        const QByteArray data = m_httpResponse->readDataOfLength(kPieceSize);
        if (!data.isEmpty())
            sendPiece(data, isChunked);
    } else if (m_ranges.size() == 1) {
        const ByteRange &range = m_ranges.front();
        m_httpResponse->setOffset(range.location);
        const QByteArray data =
            m_httpResponse->readDataOfLength(size_t(std::min<uint64_t>(range.length, kPieceSize)));
        if (!data.isEmpty()) {
            m_responseDataSizes.push_back(size_t(data.size()));
            write(data, kNoTimeout,
                  uint64_t(data.size()) == range.length ? kTagResponse
                                                        : kTagPartialRangeResponseBody);
        }
    } else {
        write(m_multipart.partHeaders.front(), kHeadWriteTimeout, kTagPartialResponseHeader);
        const ByteRange &range = m_ranges.front();
        m_httpResponse->setOffset(range.location);
        const QByteArray data =
            m_httpResponse->readDataOfLength(size_t(std::min<uint64_t>(range.length, kPieceSize)));
        if (!data.isEmpty()) {
            m_responseDataSizes.push_back(size_t(data.size()));
            write(data, kNoTimeout, kTagPartialRangesResponseBody);
        }
    }
}

void HTTPConnection::sendPiece(const QByteArray &data, bool chunked)
{
    m_responseDataSizes.push_back(size_t(data.size()));
    if (chunked) {
        write(QByteArray::number(qulonglong(data.size()), 16) + "\r\n", kHeadWriteTimeout,
              kTagChunkedResponseHeader);
        write(data, kNoTimeout, kTagChunkedResponseBody);
        if (m_httpResponse->isDone())
            write(QByteArrayLiteral("\r\n0\r\n\r\n"), kHeadWriteTimeout, kTagResponse);
        else
            write(AsyncSocket::CRLFData(), kHeadWriteTimeout, kTagChunkedResponseFooter);
    } else {
        write(data, kNoTimeout, m_httpResponse->isDone() ? kTagResponse : kTagPartialResponseBody);
    }
}

void HTTPConnection::continueSendingStandardResponseBody()
{
    const size_t queued = writeQueueSize();
    if (queued >= kPieceSize || !m_httpResponse)
        return;
    const QByteArray data = m_httpResponse->readDataOfLength(kPieceSize - queued);
    if (!data.isEmpty())
        sendPiece(data, m_httpResponse->isChunked());
}

void HTTPConnection::continueSendingSingleRangeResponseBody()
{
    const size_t queued = writeQueueSize();
    if (queued >= kPieceSize || !m_httpResponse)
        return;
    const ByteRange &range = m_ranges.front();
    const uint64_t bytesRead = m_httpResponse->offset() - range.location;
    const uint64_t bytesLeft = range.length - bytesRead;
    if (bytesLeft == 0)
        return;
    const QByteArray data = m_httpResponse->readDataOfLength(
        size_t(std::min<uint64_t>(bytesLeft, kPieceSize - queued)));
    if (data.isEmpty())
        return;
    m_responseDataSizes.push_back(size_t(data.size()));
    write(data, kNoTimeout,
          uint64_t(data.size()) == bytesLeft ? kTagResponse : kTagPartialRangeResponseBody);
}

void HTTPConnection::continueSendingMultiRangeResponseBody()
{
    const size_t queued = writeQueueSize();
    if (queued >= kPieceSize || !m_httpResponse)
        return;
    const ByteRange &range = m_ranges[m_rangeIndex];
    const uint64_t bytesRead = m_httpResponse->offset() - range.location;
    const uint64_t bytesLeft = range.length - bytesRead;
    if (bytesLeft > 0) {
        const QByteArray data = m_httpResponse->readDataOfLength(
            size_t(std::min<uint64_t>(bytesLeft, kPieceSize - queued)));
        if (!data.isEmpty()) {
            m_responseDataSizes.push_back(size_t(data.size()));
            write(data, kNoTimeout, kTagPartialRangesResponseBody);
        }
        return;
    }
    if (++m_rangeIndex < m_ranges.size()) {
        write(m_multipart.partHeaders[m_rangeIndex], kHeadWriteTimeout, kTagPartialResponseHeader);
        const ByteRange &next = m_ranges[m_rangeIndex];
        m_httpResponse->setOffset(next.location);
        const QByteArray data = m_httpResponse->readDataOfLength(
            size_t(std::min<uint64_t>(next.length, kPieceSize - queued)));
        if (!data.isEmpty()) {
            m_responseDataSizes.push_back(size_t(data.size()));
            write(data, kNoTimeout, kTagPartialRangesResponseBody);
        }
    } else {
        write(m_multipart.closing, kHeadWriteTimeout, kTagResponse);
    }
}

void HTTPConnection::continueSendingBody()
{
    if (m_ranges.empty())
        continueSendingStandardResponseBody();
    else if (m_ranges.size() == 1)
        continueSendingSingleRangeResponseBody();
    else
        continueSendingMultiRangeResponseBody();
}

void HTTPConnection::socketDidWriteData(AsyncSocket &, long tag)
{
    bool doneSendingResponse = false;
    // Each piece written but the chunked footer took one size off the list.
    const auto pieceWritten = [this] {
        if (!m_responseDataSizes.empty())
            m_responseDataSizes.pop_front();
    };
    switch (tag) {
    case kTagPartialResponseBody:
        pieceWritten();
        continueSendingStandardResponseBody();
        break;
    case kTagChunkedResponseBody:
        // The line end that follows tells whether more is to come.
        pieceWritten();
        break;
    case kTagChunkedResponseFooter:
        continueSendingStandardResponseBody();
        break;
    case kTagPartialRangeResponseBody:
        pieceWritten();
        continueSendingSingleRangeResponseBody();
        break;
    case kTagPartialRangesResponseBody:
        pieceWritten();
        continueSendingMultiRangeResponseBody();
        break;
    case kTagResponse:
    case kTagFinalResponse:
        pieceWritten();
        doneSendingResponse = true;
        break;
    default:
        break;
    }
    if (!doneSendingResponse)
        return;

    auto self = shared_from_this();
    if (m_httpResponse)
        m_httpResponse->connectionDidClose();
    if (tag == kTagFinalResponse) {
        finishResponse();
        if (m_socket)
            m_socket->disconnect();
        return;
    }
    const bool die = shouldDie();
    finishResponse();
    if (!m_socket)
        return;
    if (die)
        m_socket->disconnectAfterWriting();
    else
        startReadingRequest();
}

} // namespace server
