// Reading a request: its header lines, the rules for its body's length, and
// a body of known length.
#include "server/core/http_connection.h"
#include "store/log.h"

namespace server {

QString HTTPConnection::requestURI() const
{
    if (!m_request)
        return {};
    return m_request->url();
}

void HTTPConnection::startReadingRequest()
{
    m_request = std::make_unique<HTTPMessage>();
    m_numHeaderLines = 0;
    m_sentResponseHeaders = false;
    m_requestAuthenticated.reset();
    m_requestBodyLimit = UINT64_MAX;
    if (m_socket)
        m_socket->readDataToData(AsyncSocket::CRLFData(), kHeaderReadTimeout, kMaxHeaderLineLength,
                                 kTagRequestHeader);
}

void HTTPConnection::socketDidReadData(AsyncSocket &, const QByteArray &data, long tag)
{
    switch (tag) {
    case kTagRequestHeader:
        readHeaderLine(data);
        break;
    case kTagRequestBody:
        readBody(data);
        break;
    case kTagRequestChunkSize:
        readChunkSizeLine(data);
        break;
    case kTagRequestChunkData:
        readChunkData(data);
        break;
    case kTagRequestChunkTrailer:
        readChunkTrailer(data);
        break;
    case kTagRequestChunkFooter:
        readChunkFooter(data);
        break;
    default:
        break;
    }
}

void HTTPConnection::readHeaderLine(const QByteArray &data)
{
    if (!m_request->appendData(data)) {
        tl::logLine(logPrefix() + QStringLiteral(": Malformed request"));
        handleInvalidRequest();
        return;
    }
    if (!m_request->isHeaderComplete()) {
        if (++m_numHeaderLines > kMaxHeaderLines) {
            m_socket->disconnect();
            return;
        }
        m_socket->readDataToData(AsyncSocket::CRLFData(), kHeaderReadTimeout, kMaxHeaderLineLength,
                                 kTagRequestHeader);
        return;
    }

    const QString method = m_request->method();
    const QString uri = requestURI();
    const QString transferEncoding = m_request->headerField(QStringLiteral("Transfer-Encoding"));
    const QString contentLength = m_request->headerField(QStringLiteral("Content-Length"));

    const bool expectsUpload = expectsRequestBodyFromMethod(method, uri);
    m_requestChunked = false;
    m_requestContentLength = 0;
    m_requestContentLengthReceived = 0;
    if (expectsUpload) {
        if (!transferEncoding.isNull() &&
            transferEncoding.compare(QLatin1String("Chunked"), Qt::CaseInsensitive) == 0) {
            m_requestChunked = true;
            m_requestContentLength = kChunkedContentLength;
        } else {
            if (contentLength.isNull()) {
                tl::logLine(
                    logPrefix() +
                    QStringLiteral(
                        ": Method expects request body, but had no specified Content-Length"));
                handleInvalidRequest();
                return;
            }
            const auto length = parseUInt64(contentLength);
            if (!length) {
                tl::logLine(
                    logPrefix() +
                    QStringLiteral(": Unable to parse Content-Length header into a valid number"));
                handleInvalidRequest();
                return;
            }
            m_requestContentLength = *length;
        }
    } else if (!contentLength.isNull()) {
        const auto length = parseUInt64(contentLength);
        if (!length) {
            tl::logLine(
                logPrefix() +
                QStringLiteral(": Unable to parse Content-Length header into a valid number"));
            handleInvalidRequest();
            return;
        }
        if (*length > 0) {
            tl::logLine(
                logPrefix() +
                QStringLiteral(": Method not expecting request body had non-zero Content-Length"));
            handleInvalidRequest();
            return;
        }
    }

    if (!supportsMethod(method, uri)) {
        handleUnknownMethod(method);
        return;
    }
    if (!expectsUpload) {
        replyToHTTPRequest();
        return;
    }
    if (!mayReadBody(method, uri))
        return;
    m_requestContentLengthReceived = 0;
    prepareForBodyWithSize(m_requestContentLength);
    if (m_requestChunked) {
        m_socket->readDataToData(AsyncSocket::CRLFData(), kBodyReadTimeout, kMaxChunkLineLength,
                                 kTagRequestChunkSize);
    } else if (m_requestContentLength > 0) {
        m_socket->readDataToLength(size_t(std::min<uint64_t>(m_requestContentLength, kPieceSize)),
                                   kBodyReadTimeout, kTagRequestBody);
    } else {
        finishBody();
        replyToHTTPRequest();
    }
}

// A body is read only for a request that may be answered: the credentials
// are checked first, then the size, and a client that waits for leave to
// send its body is told to go on.
bool HTTPConnection::mayReadBody(const QString &method, const QString &uri)
{
    if (!m_requestChunked && m_requestContentLength == 0)
        return true;
    if (isPasswordProtected(uri)) {
        m_requestAuthenticated = isAuthenticated();
        if (!*m_requestAuthenticated) {
            handleAuthenticationFailed(true);
            return false;
        }
    }
    m_requestBodyLimit = maximumBodySize(method, uri);
    if (!m_requestChunked && m_requestContentLength > m_requestBodyLimit) {
        handleRequestEntityTooLarge();
        return false;
    }
    if (expectsContinue())
        write(QByteArrayLiteral("HTTP/1.1 100 Continue\r\n\r\n"), kHeadWriteTimeout,
              kTagContinueResponse);
    return true;
}

// HTTP/1.0 knows no interim answers.
bool HTTPConnection::expectsContinue() const
{
    const QString expect = m_request->headerField(QStringLiteral("Expect"));
    return m_request->version() == HTTPVersion1_1 && !expect.isNull() &&
           expect.compare(QLatin1String("100-continue"), Qt::CaseInsensitive) == 0;
}

void HTTPConnection::readBody(const QByteArray &data)
{
    m_requestContentLengthReceived += uint64_t(data.size());
    processBodyData(data);
    if (!m_socket)
        return;
    if (m_requestContentLengthReceived < m_requestContentLength) {
        const uint64_t left = m_requestContentLength - m_requestContentLengthReceived;
        m_socket->readDataToLength(size_t(std::min<uint64_t>(left, kPieceSize)), kBodyReadTimeout,
                                   kTagRequestBody);
    } else {
        finishBody();
        replyToHTTPRequest();
    }
}

} // namespace server
