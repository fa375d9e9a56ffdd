#pragma once

#include "server/core/async_socket.h"
#include "server/core/http_message.h"
#include "server/core/http_range.h"
#include "server/core/http_response.h"
#include "server/core/multipart_ranges.h"

#include <QStringList>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

namespace server {

class HTTPConnection;
class HTTPServer;
class SerialQueue;

// What the server gives each connection it accepts; made afresh every time.
struct HTTPConfig
{
    HTTPServer *server = nullptr; // valid while the server lives
    QString documentRoot;
    // The queue the connection works on; without one it makes its own.
    std::shared_ptr<SerialQueue> queue;
    // Told when the connection has died; the server drops it from its list.
    std::function<void(HTTPConnection &)> connectionDidDie;
};

// One client connection: reads requests, authenticates them, and writes the
// responses. Subclasses decide what is served by overriding the virtual
// operations, in the order the connection uses them: supportsMethod,
// expectsRequestBodyFromMethod, isPasswordProtected,
// useDigestAccessAuthentication, realm, passwordForUser,
// httpResponseForMethod, prepareForBodyWithSize, processBodyData, finishBody,
// finishResponse, directoryIndexFileNames, filePathForURI.
//
// All work happens on the connection's queue. Make connections with
// std::make_shared and call start().
class HTTPConnection : public SocketDelegate, public std::enable_shared_from_this<HTTPConnection>
{
public:
    // Read tags.
    static constexpr long kTagRequestHeader = 10;
    static constexpr long kTagRequestBody = 11;
    static constexpr long kTagRequestChunkSize = 12;
    static constexpr long kTagRequestChunkData = 13;
    static constexpr long kTagRequestChunkTrailer = 14;
    static constexpr long kTagRequestChunkFooter = 15;
    // Write tags.
    static constexpr long kTagContinueResponse = 20;
    static constexpr long kTagPartialResponseHeader = 21;
    static constexpr long kTagPartialResponseBody = 22;
    static constexpr long kTagChunkedResponseHeader = 30;
    static constexpr long kTagChunkedResponseBody = 31;
    static constexpr long kTagChunkedResponseFooter = 32;
    static constexpr long kTagPartialRangeResponseBody = 40;
    static constexpr long kTagPartialRangesResponseBody = 50;
    static constexpr long kTagResponse = 90;
    static constexpr long kTagFinalResponse = 91;

    // Limits and times.
    static constexpr size_t kMaxHeaderLineLength = 8190;
    static constexpr int kMaxHeaderLines = 100;
    static constexpr size_t kMaxChunkLineLength = 200;
    static constexpr size_t kPieceSize = 524288;
    static constexpr double kHeaderReadTimeout = 30;
    static constexpr double kHeadWriteTimeout = 30;
    // Counted from the last bytes that arrived, so a slow body that keeps
    // coming is never cut off.
    static constexpr double kBodyReadTimeout = 30;
    static constexpr double kNoTimeout = -1;
    static constexpr double kNonceLifetime = 300;
    // The content length that stands for a chunked request body.
    static constexpr uint64_t kChunkedContentLength = UINT64_MAX;
    // Files above this size are served by HTTPAsyncFileResponse.
    static constexpr uint64_t kAsyncFileThreshold = 16777216;

    HTTPConnection(std::shared_ptr<AsyncSocket> socket, HTTPConfig config);
    ~HTTPConnection() override;

    HTTPConnection(const HTTPConnection &) = delete;
    HTTPConnection &operator=(const HTTPConnection &) = delete;

    // Starts reading requests, once; hops onto the queue.
    void start();
    // Closes the socket; hops onto the queue.
    void stop();

    // Credentials the server hands over before start().
    void setUser(const QString &user) { m_user = user; }
    void setPassword(const QString &password) { m_password = password; }
    const QString &user() const { return m_user; }

    const HTTPConfig &config() const { return m_config; }
    SerialQueue &queue() const { return *m_queue; }

    // From responses, on any thread. Ignored unless sender is the current response.
    void responseHasAvailableData(HTTPResponse *sender);
    void responseDidAbort(HTTPResponse *sender);

    // Recent nonces are shared by all connections and live kNonceLifetime seconds.
    static QString generateNonce();
    static bool hasRecentNonce(const QString &nonce);

    // ---- operations a subclass may override ----
    virtual bool supportsMethod(const QString &method, const QString &path);
    virtual bool expectsRequestBodyFromMethod(const QString &method, const QString &path);
    virtual bool isPasswordProtected(const QString &path);
    virtual bool useDigestAccessAuthentication();
    virtual bool isSecureServer() { return false; }
    virtual QString realm();
    virtual std::optional<QString> passwordForUser(const QString &username);
    // The response, or nothing for 404.
    virtual std::shared_ptr<HTTPResponse> httpResponseForMethod(const QString &method,
                                                                const QString &path);
    // contentLength is kChunkedContentLength for a chunked body.
    virtual void prepareForBodyWithSize(uint64_t contentLength);
    // The most bytes of a body the connection takes for the method; a
    // larger one gets 413 without being read.
    virtual uint64_t maximumBodySize(const QString &method, const QString &path);
    // One piece of the request body, at most kPieceSize bytes.
    virtual void processBodyData(const QByteArray &data);
    virtual void finishBody();
    // The response is out; drop what belongs to this request. Call the base.
    virtual void finishResponse();
    virtual QStringList directoryIndexFileNames();
    // The file path for a URI below the document root, or null.
    virtual QString filePathForURI(const QString &path, bool allowDirectory);

protected:
    // The connection has ended. Call the base.
    virtual void die();
    // Serializes a response's header with Date, Accept-Ranges and the
    // response's own fields; error responses go out as they are.
    virtual QByteArray preprocessResponse(HTTPMessage &response);
    virtual QByteArray preprocessErrorResponse(HTTPMessage &response);

    // The request being read or answered; null between requests.
    HTTPMessage *request() const { return m_request.get(); }
    // The request URL's relative string.
    QString requestURI() const;
    bool isAuthenticated();
    // "HTTPConnection[0x...]", the start of the connection's log lines.
    QString logPrefix() const;

    // SocketDelegate
    void socketDidReadData(AsyncSocket &socket, const QByteArray &data, long tag) override;
    void socketDidWriteData(AsyncSocket &socket, long tag) override;
    void socketDidDisconnect(AsyncSocket &socket, const std::error_code &error) override;

private:
    void startReadingRequest();
    void readHeaderLine(const QByteArray &data);
    void readChunkSizeLine(const QByteArray &data);
    void readChunkData(const QByteArray &data);
    void readChunkTrailer(const QByteArray &data);
    void readChunkFooter(const QByteArray &data);
    void readBody(const QByteArray &data);
    bool mayReadBody(const QString &method, const QString &uri);
    bool expectsContinue() const;
    void replyToHTTPRequest();
    bool isWebSocketRequest() const;
    bool shouldDie() const;

    void sendResponseHeadersAndBody();
    void sendPiece(const QByteArray &data, bool chunked);
    void continueSendingStandardResponseBody();
    void continueSendingSingleRangeResponseBody();
    void continueSendingMultiRangeResponseBody();
    void continueSendingBody();
    size_t writeQueueSize() const;
    void write(const QByteArray &data, double timeout, long tag);

    void handleInvalidRequest();
    void handleUnknownMethod(const QString &method);
    void handleVersionNotSupported(const QString &version);
    void handleAuthenticationFailed(bool unreadBody = false);
    void handleRequestEntityTooLarge();
    void handleResourceNotFound();
    void sendErrorResponse(HTTPMessage &response, long tag);

    std::shared_ptr<SerialQueue> m_queue;
    std::shared_ptr<AsyncSocket> m_socket;
    HTTPConfig m_config;
    bool m_started = false;

    std::unique_ptr<HTTPMessage> m_request;
    int m_numHeaderLines = 0;
    bool m_sentResponseHeaders = false;

    QString m_nonce;
    uint64_t m_lastNC = 0;

    std::shared_ptr<HTTPResponse> m_httpResponse;
    std::vector<ByteRange> m_ranges;
    MultipartRanges m_multipart;
    size_t m_rangeIndex = 0;

    // Known before the body is read, so that it is read only when it may be.
    std::optional<bool> m_requestAuthenticated;
    uint64_t m_requestBodyLimit = UINT64_MAX;
    bool m_requestChunked = false;
    uint64_t m_requestContentLength = 0;
    uint64_t m_requestContentLengthReceived = 0;
    uint64_t m_requestChunkSize = 0;
    uint64_t m_requestChunkSizeReceived = 0;

    std::deque<size_t> m_responseDataSizes;

    QString m_password;
    QString m_user;
};

} // namespace server
