#include "server/core/http_connection.h"

#include "server/core/http_authentication_request.h"
#include "server/core/http_url.h"
#include "server/core/responses/http_async_file_response.h"
#include "server/core/responses/http_file_response.h"
#include "server/core/serial_queue.h"
#include "server/core/server_clock.h"
#include "server/core/server_log.h"

#include <QCryptographicHash>
#include <QFile>
#include <QUuid>

#include <sys/stat.h>

#include <ctime>
#include <mutex>
#include <numeric>
#include <unordered_map>

namespace server {

namespace {

const QString kRealm = QStringLiteral("webdav@tavelle.local");

// Recent nonces, shared by all connections. A nonce lives kNonceLifetime
// seconds from its making; at most kMostNonces are kept, the oldest going first.
class NonceStore
{
public:
    static constexpr size_t kMostNonces = 65536;

    QString make()
    {
        const QString nonce = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
        std::lock_guard lock(m_mutex);
        const double now = secondsNow();
        prune(now);
        m_order.push_back({nonce, now});
        m_made.emplace(nonce, now);
        while (m_order.size() > kMostNonces) {
            m_made.erase(m_order.front().first);
            m_order.pop_front();
        }
        return nonce;
    }

    bool contains(const QString &nonce)
    {
        std::lock_guard lock(m_mutex);
        const double now = secondsNow();
        prune(now);
        // The age is checked here too: pruning stops at the first young
        // nonce, and a clock set by a test need not run forward.
        const auto found = m_made.find(nonce);
        return found != m_made.end() && isYoung(found->second, now);
    }

private:
    static bool isYoung(double made, double now) { return now - made < HTTPConnection::kNonceLifetime; }

    void prune(double now)
    {
        while (!m_order.empty() && !isYoung(m_order.front().second, now)) {
            m_made.erase(m_order.front().first);
            m_order.pop_front();
        }
    }

    std::mutex m_mutex;
    std::deque<std::pair<QString, double>> m_order;
    std::unordered_map<QString, double> m_made;
};

NonceStore &nonceStore()
{
    static NonceStore store;
    return store;
}

QString md5Hex(const QString &text)
{
    return QString::fromLatin1(QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Md5).toHex());
}

// "EEE, dd MMM y HH:mm:ss 'GMT'" in en_US, made at most once a second per thread.
QString httpDate()
{
    static const char *const days[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static const char *const months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                         "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    thread_local time_t cachedSecond = -1;
    thread_local QString cached;
    const time_t now = std::time(nullptr);
    if (now != cachedSecond) {
        struct tm parts;
        gmtime_r(&now, &parts);
        char text[64];
        std::snprintf(text, sizeof text, "%s, %02d %s %d %02d:%02d:%02d GMT", days[parts.tm_wday],
                      parts.tm_mday, months[parts.tm_mon], parts.tm_year + 1900, parts.tm_hour, parts.tm_min,
                      parts.tm_sec);
        cached = QString::fromLatin1(text);
        cachedSecond = now;
    }
    return cached;
}

QByteArray encodedPath(const QString &path) { return QFile::encodeName(path); }

} // namespace

HTTPConnection::HTTPConnection(std::shared_ptr<AsyncSocket> socket, HTTPConfig config)
    : m_queue(config.queue ? config.queue : SerialQueue::create("HTTPConnection")), m_socket(std::move(socket)),
      m_config(std::move(config))
{
    m_config.queue = m_queue;
}

HTTPConnection::~HTTPConnection()
{
    if (m_httpResponse)
        m_httpResponse->connectionDidClose();
}

QString HTTPConnection::logPrefix() const
{
    return QStringLiteral("HTTPConnection[%1]").arg(pointerString(this));
}

void HTTPConnection::start()
{
    auto self = shared_from_this();
    m_queue->post([self] {
        if (self->m_started)
            return;
        self->m_started = true;
        if (!self->m_socket)
            return;
        self->m_socket->setDelegate(std::static_pointer_cast<SocketDelegate>(self));
        self->startReadingRequest();
    });
}

void HTTPConnection::stop()
{
    auto self = shared_from_this();
    m_queue->post([self] {
        if (self->m_socket)
            self->m_socket->disconnect();
    });
}

// ---- nonces ----

QString HTTPConnection::generateNonce() { return nonceStore().make(); }

bool HTTPConnection::hasRecentNonce(const QString &nonce) { return nonceStore().contains(nonce); }

// ---- overridable defaults ----

bool HTTPConnection::supportsMethod(const QString &method, const QString &)
{
    return method == QLatin1String("GET") || method == QLatin1String("HEAD");
}

bool HTTPConnection::expectsRequestBodyFromMethod(const QString &method, const QString &)
{
    return method == QLatin1String("POST") || method == QLatin1String("PUT");
}

bool HTTPConnection::isPasswordProtected(const QString &) { return true; }

bool HTTPConnection::useDigestAccessAuthentication() { return true; }

QString HTTPConnection::realm() { return kRealm; }

std::optional<QString> HTTPConnection::passwordForUser(const QString &username)
{
    if (!m_user.isEmpty() && m_user == username && !m_password.isEmpty())
        return m_password;
    return std::nullopt;
}

std::shared_ptr<HTTPResponse> HTTPConnection::httpResponseForMethod(const QString &, const QString &path)
{
    const QString filePath = filePathForURI(path, false);
    if (filePath.isNull())
        return nullptr;
    auto response = HTTPFileResponse::create(filePath, this);
    if (response && response->contentLength() > kAsyncFileThreshold)
        return HTTPAsyncFileResponse::create(response->filePath(), this);
    return response;
}

void HTTPConnection::prepareForBodyWithSize(uint64_t) {}

void HTTPConnection::processBodyData(const QByteArray &) {}

void HTTPConnection::finishBody() {}

void HTTPConnection::finishResponse()
{
    m_request.reset();
    m_httpResponse.reset();
    m_ranges.clear();
    m_rangesHeaders.clear();
    m_rangesBoundary.clear();
}

QStringList HTTPConnection::directoryIndexFileNames()
{
    return {QStringLiteral("index.html"), QStringLiteral("index.htm")};
}

QString HTTPConnection::filePathForURI(const QString &path, bool allowDirectory)
{
    const QString configuredRoot = m_config.documentRoot;
    if (configuredRoot.isEmpty()) {
        logLine(logPrefix() + QStringLiteral(": No configured document root"));
        return {};
    }
    if (!configuredRoot.startsWith(QLatin1Char('/')) || configuredRoot.contains(QChar(0))) {
        logLine(logPrefix() + QStringLiteral(": Document root is invalid file path"));
        return {};
    }
    const QString documentRoot = standardizePath(configuredRoot);
    const auto relativePath = urlRelativePath(path);
    if (!relativePath) {
        logLine(logPrefix() + QStringLiteral(": Request for file outside document root"));
        return {};
    }
    QString fullPath = standardizePath(appendPathComponent(documentRoot, *relativePath));
    if (*relativePath == QLatin1String("/"))
        fullPath += QLatin1Char('/');
    const QString rootWithSlash =
        documentRoot.endsWith(QLatin1Char('/')) ? documentRoot : documentRoot + QLatin1Char('/');
    if (!fullPath.startsWith(rootWithSlash)) {
        logLine(logPrefix() + QStringLiteral(": Request for file outside document root"));
        return {};
    }
    if (allowDirectory)
        return fullPath;
    struct stat info;
    if (::stat(encodedPath(fullPath).constData(), &info) == 0 && S_ISDIR(info.st_mode)) {
        for (const QString &name : directoryIndexFileNames()) {
            const QString candidate = appendPathComponent(fullPath, name);
            struct stat candidateInfo;
            if (::stat(encodedPath(candidate).constData(), &candidateInfo) == 0 && S_ISREG(candidateInfo.st_mode))
                return candidate;
        }
        return {};
    }
    return fullPath;
}

// ---- reading a request ----

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
        logLine(logPrefix() + QStringLiteral(": Malformed request"));
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
        if (!transferEncoding.isNull() && transferEncoding.compare(QLatin1String("Chunked"), Qt::CaseInsensitive) == 0) {
            m_requestChunked = true;
            m_requestContentLength = kChunkedContentLength;
        } else {
            if (contentLength.isNull()) {
                logLine(logPrefix() + QStringLiteral(": Method expects request body, but had no specified Content-Length"));
                handleInvalidRequest();
                return;
            }
            const auto length = parseUInt64(contentLength);
            if (!length) {
                logLine(logPrefix() + QStringLiteral(": Unable to parse Content-Length header into a valid number"));
                handleInvalidRequest();
                return;
            }
            m_requestContentLength = *length;
        }
    } else if (!contentLength.isNull()) {
        const auto length = parseUInt64(contentLength);
        if (!length) {
            logLine(logPrefix() + QStringLiteral(": Unable to parse Content-Length header into a valid number"));
            handleInvalidRequest();
            return;
        }
        if (*length > 0) {
            logLine(logPrefix() + QStringLiteral(": Method not expecting request body had non-zero Content-Length"));
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
    m_requestContentLengthReceived = 0;
    prepareForBodyWithSize(m_requestContentLength);
    if (m_requestChunked) {
        m_socket->readDataToData(AsyncSocket::CRLFData(), kNoTimeout, kMaxChunkLineLength, kTagRequestChunkSize);
    } else if (m_requestContentLength > 0) {
        m_socket->readDataToLength(size_t(std::min<uint64_t>(m_requestContentLength, kPieceSize)), kNoTimeout,
                                   kTagRequestBody);
    } else {
        finishBody();
        replyToHTTPRequest();
    }
}

void HTTPConnection::readBody(const QByteArray &data)
{
    m_requestContentLengthReceived += uint64_t(data.size());
    processBodyData(data);
    if (!m_socket)
        return;
    if (m_requestContentLengthReceived < m_requestContentLength) {
        const uint64_t left = m_requestContentLength - m_requestContentLengthReceived;
        m_socket->readDataToLength(size_t(std::min<uint64_t>(left, kPieceSize)), kNoTimeout, kTagRequestBody);
    } else {
        finishBody();
        replyToHTTPRequest();
    }
}

void HTTPConnection::readChunkSizeLine(const QByteArray &data)
{
    // The size in hexadecimal, perhaps followed by extensions after ";".
    QString line = QString::fromLatin1(data).trimmed();
    const qsizetype semicolon = line.indexOf(QLatin1Char(';'));
    if (semicolon >= 0)
        line = line.left(semicolon).trimmed();
    const auto size = parseHex64(line);
    if (!size) {
        logLine(logPrefix() + QStringLiteral(": Method expects chunk size, but received something else"));
        handleInvalidRequest();
        return;
    }
    m_requestChunkSize = *size;
    m_requestChunkSizeReceived = 0;
    if (m_requestChunkSize > 0) {
        m_socket->readDataToLength(size_t(std::min<uint64_t>(m_requestChunkSize, kPieceSize)), kNoTimeout,
                                   kTagRequestChunkData);
    } else {
        m_socket->readDataToData(AsyncSocket::CRLFData(), kNoTimeout, kMaxHeaderLineLength, kTagRequestChunkFooter);
    }
}

void HTTPConnection::readChunkData(const QByteArray &data)
{
    m_requestContentLengthReceived += uint64_t(data.size());
    m_requestChunkSizeReceived += uint64_t(data.size());
    processBodyData(data);
    if (!m_socket)
        return;
    const uint64_t left = m_requestChunkSize - m_requestChunkSizeReceived;
    if (left > 0)
        m_socket->readDataToLength(size_t(std::min<uint64_t>(left, kPieceSize)), kNoTimeout, kTagRequestChunkData);
    else
        m_socket->readDataToLength(2, kNoTimeout, kTagRequestChunkTrailer);
}

void HTTPConnection::readChunkTrailer(const QByteArray &data)
{
    if (data != AsyncSocket::CRLFData()) {
        logLine(logPrefix() + QStringLiteral(": Method expects chunk trailer, but is missing"));
        handleInvalidRequest();
        return;
    }
    m_socket->readDataToData(AsyncSocket::CRLFData(), kNoTimeout, kMaxChunkLineLength, kTagRequestChunkSize);
}

void HTTPConnection::readChunkFooter(const QByteArray &data)
{
    if (++m_numHeaderLines > kMaxHeaderLines) {
        m_socket->disconnect();
        return;
    }
    if (data.size() > 2) {
        m_socket->readDataToData(AsyncSocket::CRLFData(), kNoTimeout, kMaxHeaderLineLength, kTagRequestChunkFooter);
    } else {
        finishBody();
        replyToHTTPRequest();
    }
}

// ---- replying ----

bool HTTPConnection::isWebSocketRequest() const
{
    const QString upgrade = m_request->headerField(QStringLiteral("Upgrade"));
    const QString connection = m_request->headerField(QStringLiteral("Connection"));
    if (upgrade.isNull() || connection.isNull())
        return false;
    return upgrade.compare(QLatin1String("WebSocket"), Qt::CaseInsensitive) == 0 &&
           connection.contains(QLatin1String("Upgrade"), Qt::CaseInsensitive);
}

void HTTPConnection::replyToHTTPRequest()
{
    if (!m_socket)
        return;
    const QString version = m_request->version();
    if (version != HTTPVersion1_1 && version != HTTPVersion1_0) {
        handleVersionNotSupported(version);
        return;
    }
    const QString uri = requestURI();
    if (isWebSocketRequest()) {
        // No web sockets are served.
        handleResourceNotFound();
        return;
    }
    if (isPasswordProtected(uri) && !isAuthenticated()) {
        handleAuthenticationFailed();
        return;
    }
    m_httpResponse = httpResponseForMethod(m_request->method(), uri);
    if (!m_httpResponse) {
        handleResourceNotFound();
        return;
    }
    sendResponseHeadersAndBody();
}

bool HTTPConnection::isAuthenticated()
{
    if (useDigestAccessAuthentication()) {
        const HTTPAuthenticationRequest auth(*m_request);
        if (!auth.isDigest() || auth.username().isNull())
            return false;
        const auto password = passwordForUser(auth.username());
        if (!password)
            return false;
        if (auth.uri().isNull() || requestURI() != auth.uri())
            return false;
        if (auth.nonce().isNull() || auth.nc().isNull() || auth.cnonce().isNull() || auth.qop().isNull() ||
            auth.response().isNull() || auth.realm().isNull())
            return false;
        if (m_nonce != auth.nonce()) {
            if (!hasRecentNonce(auth.nonce()))
                return false;
            m_nonce = auth.nonce();
            m_lastNC = 0;
        }
        const auto nc = parseHex64(auth.nc());
        if (!nc || *nc <= m_lastNC)
            return false;
        m_lastNC = *nc;

        const QString ha1 = md5Hex(auth.username() + QLatin1Char(':') + auth.realm() + QLatin1Char(':') + *password);
        const QString ha2 = md5Hex(m_request->method() + QLatin1Char(':') + auth.uri());
        const QString expected = md5Hex(ha1 + QLatin1Char(':') + auth.nonce() + QLatin1Char(':') + auth.nc() +
                                        QLatin1Char(':') + auth.cnonce() + QLatin1Char(':') + auth.qop() +
                                        QLatin1Char(':') + ha2);
        return expected == auth.response();
    }

    const HTTPAuthenticationRequest auth(*m_request);
    if (!auth.isBasic())
        return false;
    const auto decoded = QByteArray::fromBase64Encoding(auth.base64Credentials().toLatin1(),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        return false;
    const QString credentials = QString::fromUtf8(*decoded);
    const qsizetype colon = credentials.indexOf(QLatin1Char(':'));
    if (colon < 0)
        return false;
    const auto password = passwordForUser(credentials.left(colon));
    return password && *password == credentials.mid(colon + 1);
}

bool HTTPConnection::shouldDie() const
{
    const QString version = m_request ? m_request->version() : QString();
    const QString connection = m_request ? m_request->headerField(QStringLiteral("Connection")) : QString();
    if (version == HTTPVersion1_1)
        return !connection.isNull() && connection.compare(QLatin1String("close"), Qt::CaseInsensitive) == 0;
    if (version == HTTPVersion1_0)
        return connection.isNull() || connection.compare(QLatin1String("Keep-Alive"), Qt::CaseInsensitive) != 0;
    return false;
}

// ---- error answers ----

void HTTPConnection::sendErrorResponse(HTTPMessage &response, long tag)
{
    write(preprocessErrorResponse(response), kHeadWriteTimeout, tag);
}

void HTTPConnection::handleInvalidRequest()
{
    const QString uri = requestURI();
    logLine(QStringLiteral("HTTP Server: Error 400 - Bad Request (%1)").arg(uri.isEmpty() ? QStringLiteral("(null)") : uri));
    HTTPMessage response(400, {}, HTTPVersion1_1);
    response.setHeaderField(QStringLiteral("Content-Length"), QStringLiteral("0"));
    response.setHeaderField(QStringLiteral("Connection"), QStringLiteral("close"));
    // The end of the bad request is unknown, so the connection closes after this.
    sendErrorResponse(response, kTagFinalResponse);
}

void HTTPConnection::handleUnknownMethod(const QString &method)
{
    logLine(QStringLiteral("HTTP Server: Error 405 - Method Not Allowed: %1 (%2)").arg(method, requestURI()));
    HTTPMessage response(405, {}, HTTPVersion1_1);
    response.setHeaderField(QStringLiteral("Content-Length"), QStringLiteral("0"));
    response.setHeaderField(QStringLiteral("Connection"), QStringLiteral("close"));
    sendErrorResponse(response, kTagFinalResponse);
}

void HTTPConnection::handleVersionNotSupported(const QString &version)
{
    logLine(QStringLiteral("HTTP Server: Error 505 - Version Not Supported: %1 (%2)").arg(version, requestURI()));
    HTTPMessage response(505, {}, HTTPVersion1_1);
    response.setHeaderField(QStringLiteral("Content-Length"), QStringLiteral("0"));
    sendErrorResponse(response, kTagResponse);
}

void HTTPConnection::handleAuthenticationFailed()
{
    HTTPMessage response(401, {}, HTTPVersion1_1);
    response.setHeaderField(QStringLiteral("Content-Length"), QStringLiteral("0"));
    if (useDigestAccessAuthentication()) {
        response.setHeaderField(QStringLiteral("WWW-Authenticate"),
                                QStringLiteral("Digest realm=\"%1\", qop=\"auth\", nonce=\"%2\"")
                                    .arg(realm(), generateNonce()));
    } else {
        response.setHeaderField(QStringLiteral("WWW-Authenticate"), QStringLiteral("Basic realm=\"%1\"").arg(realm()));
    }
    sendErrorResponse(response, kTagResponse);
}

void HTTPConnection::handleResourceNotFound()
{
    HTTPMessage response(404, {}, HTTPVersion1_1);
    response.setHeaderField(QStringLiteral("Content-Length"), QStringLiteral("0"));
    sendErrorResponse(response, kTagResponse);
}

QByteArray HTTPConnection::preprocessErrorResponse(HTTPMessage &response) { return response.messageData(); }

QByteArray HTTPConnection::preprocessResponse(HTTPMessage &response)
{
    response.setHeaderField(QStringLiteral("Date"), httpDate());
    response.setHeaderField(QStringLiteral("Accept-Ranges"), QStringLiteral("bytes"));
    if (m_httpResponse)
        for (const auto &field : m_httpResponse->httpHeaders())
            response.setHeaderField(field.first, field.second);
    return response.messageData();
}

// ---- sending a response ----

void HTTPConnection::write(const QByteArray &data, double timeout, long tag)
{
    if (m_socket)
        m_socket->writeData(data, timeout, tag);
}

size_t HTTPConnection::writeQueueSize() const
{
    return std::accumulate(m_responseDataSizes.begin(), m_responseDataSizes.end(), size_t(0));
}

HTTPMessage HTTPConnection::newUniRangeResponse(uint64_t contentLength)
{
    HTTPMessage response(206, {}, HTTPVersion1_1);
    const ByteRange &range = m_ranges.front();
    response.setHeaderField(QStringLiteral("Content-Length"), QString::number(range.length));
    response.setHeaderField(QStringLiteral("Content-Range"),
                            QStringLiteral("bytes %1-%2/%3").arg(range.location).arg(range.last()).arg(contentLength));
    return response;
}

HTTPMessage HTTPConnection::newMultiRangeResponse(uint64_t contentLength)
{
    HTTPMessage response(206, {}, HTTPVersion1_1);
    m_rangesBoundary = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
    m_rangesHeaders.clear();
    uint64_t actualContentLength = 0;
    for (const ByteRange &range : m_ranges) {
        const QByteArray header = QStringLiteral("\r\n--%1\r\nContent-Range: bytes %2-%3/%4\r\n\r\n")
                                      .arg(m_rangesBoundary)
                                      .arg(range.location)
                                      .arg(range.last())
                                      .arg(contentLength)
                                      .toUtf8();
        actualContentLength += uint64_t(header.size()) + range.length;
        m_rangesHeaders.push_back(header);
    }
    actualContentLength += uint64_t(QStringLiteral("\r\n--%1--\r\n").arg(m_rangesBoundary).toUtf8().size());
    response.setHeaderField(QStringLiteral("Content-Length"), QString::number(actualContentLength));
    response.setHeaderField(QStringLiteral("Content-Type"),
                            QStringLiteral("multipart/byteranges; boundary=%1").arg(m_rangesBoundary));
    return response;
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

    HTTPMessage response = isRangeRequest
                               ? (m_ranges.size() == 1 ? newUniRangeResponse(contentLength)
                                                       : newMultiRangeResponse(contentLength))
                               : HTTPMessage(m_httpResponse->status(), {}, HTTPVersion1_1);
    if (!isRangeRequest) {
        if (isChunked)
            response.setHeaderField(QStringLiteral("Transfer-Encoding"), QStringLiteral("chunked"));
        else
            response.setHeaderField(QStringLiteral("Content-Length"), QString::number(contentLength));
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
        const QByteArray data = m_httpResponse->readDataOfLength(size_t(std::min<uint64_t>(range.length, kPieceSize)));
        if (!data.isEmpty()) {
            m_responseDataSizes.push_back(size_t(data.size()));
            write(data, kNoTimeout, uint64_t(data.size()) == range.length ? kTagResponse : kTagPartialRangeResponseBody);
        }
    } else {
        write(m_rangesHeaders.front(), kHeadWriteTimeout, kTagPartialResponseHeader);
        const ByteRange &range = m_ranges.front();
        m_httpResponse->setOffset(range.location);
        const QByteArray data = m_httpResponse->readDataOfLength(size_t(std::min<uint64_t>(range.length, kPieceSize)));
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
        write(QByteArray::number(qulonglong(data.size()), 16) + "\r\n", kHeadWriteTimeout, kTagChunkedResponseHeader);
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
    const QByteArray data = m_httpResponse->readDataOfLength(size_t(std::min<uint64_t>(bytesLeft, kPieceSize - queued)));
    if (data.isEmpty())
        return;
    m_responseDataSizes.push_back(size_t(data.size()));
    write(data, kNoTimeout, uint64_t(data.size()) == bytesLeft ? kTagResponse : kTagPartialRangeResponseBody);
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
        const QByteArray data =
            m_httpResponse->readDataOfLength(size_t(std::min<uint64_t>(bytesLeft, kPieceSize - queued)));
        if (!data.isEmpty()) {
            m_responseDataSizes.push_back(size_t(data.size()));
            write(data, kNoTimeout, kTagPartialRangesResponseBody);
        }
        return;
    }
    if (++m_rangeIndex < m_ranges.size()) {
        write(m_rangesHeaders[m_rangeIndex], kHeadWriteTimeout, kTagPartialResponseHeader);
        const ByteRange &next = m_ranges[m_rangeIndex];
        m_httpResponse->setOffset(next.location);
        const QByteArray data = m_httpResponse->readDataOfLength(size_t(std::min<uint64_t>(next.length, kPieceSize - queued)));
        if (!data.isEmpty()) {
            m_responseDataSizes.push_back(size_t(data.size()));
            write(data, kNoTimeout, kTagPartialRangesResponseBody);
        }
    } else {
        write(QStringLiteral("\r\n--%1--\r\n").arg(m_rangesBoundary).toUtf8(), kHeadWriteTimeout, kTagResponse);
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
    switch (tag) {
    case kTagPartialResponseBody:
        if (!m_responseDataSizes.empty())
            m_responseDataSizes.pop_front();
        continueSendingStandardResponseBody();
        break;
    case kTagChunkedResponseBody:
        // The line end that follows tells whether more is to come.
        if (!m_responseDataSizes.empty())
            m_responseDataSizes.pop_front();
        break;
    case kTagChunkedResponseFooter:
        continueSendingStandardResponseBody();
        break;
    case kTagPartialRangeResponseBody:
        if (!m_responseDataSizes.empty())
            m_responseDataSizes.pop_front();
        continueSendingSingleRangeResponseBody();
        break;
    case kTagPartialRangesResponseBody:
        if (!m_responseDataSizes.empty())
            m_responseDataSizes.pop_front();
        continueSendingMultiRangeResponseBody();
        break;
    case kTagResponse:
    case kTagFinalResponse:
        if (!m_responseDataSizes.empty())
            m_responseDataSizes.pop_front();
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

// ---- responses that report ----

void HTTPConnection::responseHasAvailableData(HTTPResponse *sender)
{
    auto self = weak_from_this().lock();
    if (!self)
        return;
    m_queue->post([self, sender] {
        if (sender != self->m_httpResponse.get()) {
            logLine(self->logPrefix() + QStringLiteral(": responseHasAvailableData: - Sender is not current httpResponse"));
            return;
        }
        if (!self->m_sentResponseHeaders)
            self->sendResponseHeadersAndBody();
        else
            self->continueSendingBody();
    });
}

void HTTPConnection::responseDidAbort(HTTPResponse *sender)
{
    auto self = weak_from_this().lock();
    if (!self)
        return;
    m_queue->post([self, sender] {
        if (sender != self->m_httpResponse.get()) {
            logLine(self->logPrefix() + QStringLiteral(": responseDidAbort: - Sender is not current httpResponse"));
            return;
        }
        if (self->m_socket)
            self->m_socket->disconnectAfterWriting();
    });
}

// ---- the end ----

void HTTPConnection::socketDidDisconnect(AsyncSocket &, const std::error_code &)
{
    auto self = shared_from_this();
    m_socket.reset();
    die();
}

void HTTPConnection::die()
{
    if (m_httpResponse)
        m_httpResponse->connectionDidClose();
    m_httpResponse.reset();
    if (m_config.connectionDidDie)
        m_config.connectionDidDie(*this);
}

} // namespace server
