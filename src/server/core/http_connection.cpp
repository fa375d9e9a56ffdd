#include "server/core/http_connection.h"

#include "server/core/http_date.h"
#include "server/core/responses/http_async_file_response.h"
#include "server/core/responses/http_file_response.h"
#include "server/core/serial_queue.h"
#include "server/core/uri_mapping.h"
#include "store/log.h"

#include <cstdio>

namespace server {

namespace {

const QString kRealm = QStringLiteral("webdav@tavelle.local");

} // namespace

HTTPConnection::HTTPConnection(std::shared_ptr<AsyncSocket> socket, HTTPConfig config)
    : m_queue(config.queue ? config.queue : SerialQueue::create("HTTPConnection")),
      m_socket(std::move(socket)), m_config(std::move(config))
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
    char pointer[32];
    std::snprintf(pointer, sizeof pointer, "%p", static_cast<const void *>(this));
    return QStringLiteral("HTTPConnection[%1]").arg(QLatin1String(pointer));
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

// ---- overridable defaults ----

bool HTTPConnection::supportsMethod(const QString &method, const QString &)
{
    return method == QLatin1String("GET") || method == QLatin1String("HEAD");
}

bool HTTPConnection::expectsRequestBodyFromMethod(const QString &method, const QString &)
{
    return method == QLatin1String("POST") || method == QLatin1String("PUT");
}

bool HTTPConnection::isPasswordProtected(const QString &)
{
    return true;
}

bool HTTPConnection::useDigestAccessAuthentication()
{
    return true;
}

QString HTTPConnection::realm()
{
    return kRealm;
}

std::optional<QString> HTTPConnection::passwordForUser(const QString &username)
{
    if (!m_user.isEmpty() && m_user == username && !m_password.isEmpty())
        return m_password;
    return std::nullopt;
}

std::shared_ptr<HTTPResponse> HTTPConnection::httpResponseForMethod(const QString &,
                                                                    const QString &path)
{
    const QString filePath = filePathForURI(path, false);
    if (filePath.isNull())
        return nullptr;
    auto response = HTTPFileResponse::create(filePath, this);
    if (response && response->contentLength() > kAsyncFileThreshold)
        return HTTPAsyncFileResponse::create(response->filePath(), this);
    return response;
}

void HTTPConnection::prepareForBodyWithSize(uint64_t)
{
}

uint64_t HTTPConnection::maximumBodySize(const QString &, const QString &)
{
    return UINT64_MAX;
}

void HTTPConnection::processBodyData(const QByteArray &)
{
}

void HTTPConnection::finishBody()
{
}

void HTTPConnection::finishResponse()
{
    m_request.reset();
    m_httpResponse.reset();
    m_ranges.clear();
    m_multipart = {};
}

QStringList HTTPConnection::directoryIndexFileNames()
{
    return {QStringLiteral("index.html"), QStringLiteral("index.htm")};
}

QString HTTPConnection::filePathForURI(const QString &path, bool allowDirectory)
{
    QString failure;
    const QString filePath = mapURIToFilePath(m_config.documentRoot, path, allowDirectory,
                                              directoryIndexFileNames(), failure);
    if (filePath.isNull())
        tl::logLine(logPrefix() + QStringLiteral(": ") + failure);
    return filePath;
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
    if (isPasswordProtected(uri) &&
        !(m_requestAuthenticated ? *m_requestAuthenticated : isAuthenticated())) {
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

bool HTTPConnection::shouldDie() const
{
    const QString version = m_request ? m_request->version() : QString();
    const QString connection =
        m_request ? m_request->headerField(QStringLiteral("Connection")) : QString();
    if (version == HTTPVersion1_1)
        return !connection.isNull() &&
               connection.compare(QLatin1String("close"), Qt::CaseInsensitive) == 0;
    if (version == HTTPVersion1_0)
        return connection.isNull() ||
               connection.compare(QLatin1String("Keep-Alive"), Qt::CaseInsensitive) != 0;
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
    tl::logLine(QStringLiteral("HTTP Server: Error 400 - Bad Request (%1)")
                    .arg(uri.isEmpty() ? QStringLiteral("(null)") : uri));
    HTTPMessage response(400, {}, HTTPVersion1_1);
    response.setHeaderField(QStringLiteral("Content-Length"), QStringLiteral("0"));
    response.setHeaderField(QStringLiteral("Connection"), QStringLiteral("close"));
    // The end of the bad request is unknown, so the connection closes after this.
    sendErrorResponse(response, kTagFinalResponse);
}

void HTTPConnection::handleUnknownMethod(const QString &method)
{
    tl::logLine(QStringLiteral("HTTP Server: Error 405 - Method Not Allowed: %1 (%2)")
                    .arg(method, requestURI()));
    HTTPMessage response(405, {}, HTTPVersion1_1);
    response.setHeaderField(QStringLiteral("Content-Length"), QStringLiteral("0"));
    response.setHeaderField(QStringLiteral("Connection"), QStringLiteral("close"));
    sendErrorResponse(response, kTagFinalResponse);
}

void HTTPConnection::handleVersionNotSupported(const QString &version)
{
    tl::logLine(QStringLiteral("HTTP Server: Error 505 - Version Not Supported: %1 (%2)")
                    .arg(version, requestURI()));
    HTTPMessage response(505, {}, HTTPVersion1_1);
    response.setHeaderField(QStringLiteral("Content-Length"), QStringLiteral("0"));
    sendErrorResponse(response, kTagResponse);
}

void HTTPConnection::handleRequestEntityTooLarge()
{
    tl::logLine(
        QStringLiteral("HTTP Server: Error 413 - Request Entity Too Large (%1)").arg(requestURI()));
    HTTPMessage response(413, {}, HTTPVersion1_1);
    response.setHeaderField(QStringLiteral("Content-Length"), QStringLiteral("0"));
    response.setHeaderField(QStringLiteral("Connection"), QStringLiteral("close"));
    // The rest of the body stays unread, so the connection closes after this.
    sendErrorResponse(response, kTagFinalResponse);
}

void HTTPConnection::handleResourceNotFound()
{
    HTTPMessage response(404, {}, HTTPVersion1_1);
    response.setHeaderField(QStringLiteral("Content-Length"), QStringLiteral("0"));
    sendErrorResponse(response, kTagResponse);
}

QByteArray HTTPConnection::preprocessErrorResponse(HTTPMessage &response)
{
    return response.messageData();
}

QByteArray HTTPConnection::preprocessResponse(HTTPMessage &response)
{
    response.setHeaderField(QStringLiteral("Date"), httpDate());
    response.setHeaderField(QStringLiteral("Accept-Ranges"), QStringLiteral("bytes"));
    if (m_httpResponse)
        for (const auto &field : m_httpResponse->httpHeaders())
            response.setHeaderField(field.first, field.second);
    return response.messageData();
}

// ---- responses that report ----

void HTTPConnection::responseHasAvailableData(HTTPResponse *sender)
{
    auto self = weak_from_this().lock();
    if (!self)
        return;
    m_queue->post([self, sender] {
        if (sender != self->m_httpResponse.get()) {
            tl::logLine(
                self->logPrefix() +
                QStringLiteral(": responseHasAvailableData: - Sender is not current httpResponse"));
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
            tl::logLine(self->logPrefix() +
                        QStringLiteral(": responseDidAbort: - Sender is not current httpResponse"));
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
