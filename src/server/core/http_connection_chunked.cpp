// A chunked request body: size lines, chunk data, the line end behind each
// chunk, and the trailer lines behind the last.
#include "server/core/http_connection.h"
#include "store/log.h"

namespace server {

void HTTPConnection::readChunkSizeLine(const QByteArray &data)
{
    // The size in hexadecimal, perhaps followed by extensions after ";".
    QString line = QString::fromLatin1(data).trimmed();
    const qsizetype semicolon = line.indexOf(QLatin1Char(';'));
    if (semicolon >= 0)
        line = line.left(semicolon).trimmed();
    const auto size = parseHex64(line);
    if (!size) {
        tl::logLine(logPrefix() +
                    QStringLiteral(": Method expects chunk size, but received something else"));
        handleInvalidRequest();
        return;
    }
    m_requestChunkSize = *size;
    m_requestChunkSizeReceived = 0;
    if (m_requestChunkSize > 0) {
        m_socket->readDataToLength(size_t(std::min<uint64_t>(m_requestChunkSize, kPieceSize)),
                                   kBodyReadTimeout, kTagRequestChunkData);
    } else {
        m_socket->readDataToData(AsyncSocket::CRLFData(), kBodyReadTimeout, kMaxHeaderLineLength,
                                 kTagRequestChunkFooter);
    }
}

void HTTPConnection::readChunkData(const QByteArray &data)
{
    m_requestContentLengthReceived += uint64_t(data.size());
    m_requestChunkSizeReceived += uint64_t(data.size());
    if (m_requestContentLengthReceived > m_requestBodyLimit) {
        handleRequestEntityTooLarge();
        return;
    }
    processBodyData(data);
    if (!m_socket)
        return;
    const uint64_t left = m_requestChunkSize - m_requestChunkSizeReceived;
    if (left > 0)
        m_socket->readDataToLength(size_t(std::min<uint64_t>(left, kPieceSize)), kBodyReadTimeout,
                                   kTagRequestChunkData);
    else
        m_socket->readDataToLength(2, kBodyReadTimeout, kTagRequestChunkTrailer);
}

void HTTPConnection::readChunkTrailer(const QByteArray &data)
{
    if (data != AsyncSocket::CRLFData()) {
        tl::logLine(logPrefix() + QStringLiteral(": Method expects chunk trailer, but is missing"));
        handleInvalidRequest();
        return;
    }
    m_socket->readDataToData(AsyncSocket::CRLFData(), kBodyReadTimeout, kMaxChunkLineLength,
                             kTagRequestChunkSize);
}

void HTTPConnection::readChunkFooter(const QByteArray &data)
{
    if (++m_numHeaderLines > kMaxHeaderLines) {
        m_socket->disconnect();
        return;
    }
    if (data.size() > 2) {
        m_socket->readDataToData(AsyncSocket::CRLFData(), kBodyReadTimeout, kMaxHeaderLineLength,
                                 kTagRequestChunkFooter);
    } else {
        finishBody();
        replyToHTTPRequest();
    }
}

} // namespace server
