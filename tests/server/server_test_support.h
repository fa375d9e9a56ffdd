#pragma once

// Helpers shared by the server tests: a connection driven over the fake
// socket on a manual queue, a reader of raw HTTP responses, a digest client
// and a catcher of log lines.

#include "server/core/fake_socket.h"
#include "server/core/http_connection.h"
#include "server/core/serial_queue.h"
#include "store/library_root.h"
#include "store/log.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <arpa/inet.h>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <netinet/in.h>
#include <optional>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace servertest {

// Bytes of a given size in a pattern that does not repeat at short distances,
// so that a piece out of place shows.
inline QByteArray pattern(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = char('a' + (i * 7 + i / 251) % 26);
    return bytes;
}

// A blocking TCP socket connected to the loopback address, or -1.
inline int connectToLoopback(uint16_t port)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (fd >= 0 && ::connect(fd, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0)
        return fd;
    if (fd >= 0)
        ::close(fd);
    return -1;
}

// One HTTP response taken apart.
struct Response
{
    QByteArray statusLine;
    int status = 0;
    std::vector<std::pair<QByteArray, QByteArray>> headers;
    QByteArray body;
    QByteArray raw;

    QByteArray header(const QByteArray &name) const
    {
        for (const auto &h : headers)
            if (h.first.compare(name, Qt::CaseInsensitive) == 0)
                return h.second;
        return {};
    }
    bool hasHeader(const QByteArray &name) const
    {
        for (const auto &h : headers)
            if (h.first.compare(name, Qt::CaseInsensitive) == 0)
                return true;
        return false;
    }
};

// Reads one response from the front of bytes and removes it. The body is as
// long as Content-Length says, or absent when withBody is false (HEAD).
inline std::optional<Response> takeResponse(QByteArray &bytes, bool withBody = true)
{
    const qsizetype end = bytes.indexOf("\r\n\r\n");
    if (end < 0)
        return std::nullopt;
    Response r;
    const QList<QByteArray> lines = bytes.left(end).split('\n');
    r.statusLine = lines.value(0).trimmed();
    const QList<QByteArray> parts = r.statusLine.split(' ');
    r.status = parts.value(1).toInt();
    for (qsizetype i = 1; i < lines.size(); ++i) {
        const QByteArray line = lines[i].trimmed();
        const qsizetype colon = line.indexOf(':');
        r.headers.emplace_back(line.left(colon), line.mid(colon + 1).trimmed());
    }
    qsizetype length = 0;
    if (withBody && r.hasHeader("Content-Length"))
        length = r.header("Content-Length").toLongLong();
    if (bytes.size() < end + 4 + length)
        return std::nullopt;
    r.body = bytes.mid(end + 4, length);
    r.raw = bytes.left(end + 4 + length);
    bytes.remove(0, end + 4 + length);
    return r;
}

// A plain blocking client socket on the loopback address.
class RawClient
{
public:
    explicit RawClient(uint16_t port) : m_fd(connectToLoopback(port)) {}
    ~RawClient()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    bool connected() const { return m_fd >= 0; }
    void send(const QByteArray &bytes)
    {
        (void)::send(m_fd, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL);
    }

    // The next response, or nothing when the peer closed or five seconds passed.
    std::optional<Response> receive(bool withBody = true)
    {
        for (;;) {
            QByteArray copy = m_pending;
            if (auto r = takeResponse(copy, withBody)) {
                m_pending = copy;
                return r;
            }
            if (!readSome())
                return std::nullopt;
        }
    }
    // True when the peer has closed (reads give end of stream).
    bool closedByPeer()
    {
        while (readSome()) {
        }
        return m_closed;
    }

private:
    bool readSome()
    {
        pollfd p{m_fd, POLLIN, 0};
        if (::poll(&p, 1, 5000) <= 0)
            return false;
        char buffer[65536];
        const ssize_t n = ::recv(m_fd, buffer, sizeof buffer, 0);
        if (n <= 0) {
            m_closed = true;
            return false;
        }
        m_pending.append(buffer, n);
        return true;
    }

    int m_fd;
    bool m_closed = false;
    QByteArray m_pending;
};

inline QByteArray md5Hex(const QByteArray &text);

// The parameters of a "WWW-Authenticate: Digest ..." challenge.
inline std::map<QByteArray, QByteArray> challengeParameters(const QByteArray &header)
{
    std::map<QByteArray, QByteArray> out;
    QByteArray rest = header.mid(header.indexOf(' ') + 1);
    for (const QByteArray &part : rest.split(',')) {
        const QByteArray item = part.trimmed();
        const qsizetype eq = item.indexOf('=');
        QByteArray value = item.mid(eq + 1);
        if (value.startsWith('"'))
            value = value.mid(1, value.size() - 2);
        out[item.left(eq)] = value;
    }
    return out;
}

struct DigestClient
{
    QByteArray username = "Tavelle";
    QByteArray password = "secret";
    QByteArray realm;
    QByteArray nonce;
    QByteArray cnonce = "0a4f113b";
    unsigned nc = 0;
    bool quoteQop = true;

    // "Digest ..." for the next request; counts nc up unless told which to use.
    QByteArray authorization(const QByteArray &method, const QByteArray &uri,
                             std::optional<unsigned> useNc = {})
    {
        const unsigned count = useNc ? *useNc : ++nc;
        const QByteArray ncText = QByteArray::number(count, 16).rightJustified(8, '0');
        const QByteArray ha1 = md5Hex(username + ':' + realm + ':' + password);
        const QByteArray ha2 = md5Hex(method + ':' + uri);
        const QByteArray response =
            md5Hex(ha1 + ':' + nonce + ':' + ncText + ':' + cnonce + ":auth:" + ha2);
        return "Digest username=\"" + username + "\", realm=\"" + realm + "\", nonce=\"" + nonce +
               "\", uri=\"" + uri + "\", " +
               (quoteQop ? QByteArray("qop=\"auth\"") : QByteArray("qop=auth")) + ", nc=" + ncText +
               ", cnonce=\"" + cnonce + "\", response=\"" + response + "\"";
    }

    void takeChallenge(const Response &r)
    {
        const auto params = challengeParameters(r.header("WWW-Authenticate"));
        realm = params.at("realm");
        nonce = params.at("nonce");
        nc = 0;
    }
};

// Catches the plain log lines written while it lives, from the library's
// TLMacLog.txt: the current library's, or one of its own when no library is
// chosen.
class LogCatcher
{
public:
    LogCatcher()
    {
        QString root = tl::store::libraryRoot();
        if (root.isEmpty()) {
            root = m_ownRoot.path();
            tl::store::setLibraryRootOverride(root);
            m_overridden = true;
        }
        // The file stays: the log keeps it open by its path and inode.
        m_path = root + QStringLiteral("/TLMacLog.txt");
        QFile file(m_path);
        if (file.open(QIODevice::WriteOnly | QIODevice::Append))
            m_start = file.size();
    }
    ~LogCatcher()
    {
        if (m_overridden)
            tl::store::setLibraryRootOverride({});
    }
    // The lines without their time stamps; a line may hold line ends.
    QStringList lines() const
    {
        QFile reader(m_path);
        if (!reader.open(QIODevice::ReadOnly) || !reader.seek(m_start))
            return {};
        QStringList lines;
        for (const QString &part : QString::fromUtf8(reader.readAll()).split(QLatin1Char('\n'))) {
            // "2026-01-02 03:04:05.678 " begins every line the log writes.
            const bool stamped = part.size() > 24 && part[4] == QLatin1Char('-') &&
                                 part[13] == QLatin1Char(':') && part[19] == QLatin1Char('.') &&
                                 part[23] == QLatin1Char(' ');
            if (stamped)
                lines << part.mid(24);
            else if (!lines.isEmpty())
                lines.last() += QLatin1Char('\n') + part;
        }
        return lines;
    }
    bool contains(const QString &text) const
    {
        for (const QString &line : lines())
            if (line.contains(text))
                return true;
        return false;
    }

private:
    QTemporaryDir m_ownRoot;
    QString m_path;
    qint64 m_start = 0;
    bool m_overridden = false;
};

// A connection that also takes POST and PUT bodies and answers "/echo" with
// the body it received. Authentication can be switched off.
class TestConnection : public server::HTTPConnection
{
public:
    using HTTPConnection::HTTPConnection;

    bool requireAuthentication = true;
    bool acceptBodies = true;
    QByteArray receivedBody;
    std::vector<qsizetype> bodyPieces;
    std::optional<uint64_t> preparedSize;
    int finishedBodies = 0;
    int finishedResponses = 0;
    std::function<std::shared_ptr<server::HTTPResponse>(const QString &, const QString &)>
        responder;

    bool supportsMethod(const QString &method, const QString &path) override
    {
        if (acceptBodies && (method == QLatin1String("POST") || method == QLatin1String("PUT")))
            return true;
        return HTTPConnection::supportsMethod(method, path);
    }
    bool isPasswordProtected(const QString &) override { return requireAuthentication; }
    void prepareForBodyWithSize(uint64_t size) override
    {
        preparedSize = size;
        receivedBody.clear();
        bodyPieces.clear();
    }
    void processBodyData(const QByteArray &data) override
    {
        receivedBody += data;
        bodyPieces.push_back(data.size());
    }
    void finishBody() override { ++finishedBodies; }
    void finishResponse() override
    {
        ++finishedResponses;
        HTTPConnection::finishResponse();
    }
    std::shared_ptr<server::HTTPResponse> httpResponseForMethod(const QString &method,
                                                                const QString &path) override;

    using HTTPConnection::filePathForURI;
    QString logPrefixForTest() const { return logPrefix(); }
};

// A connection over the fake socket on a manual queue.
template <class Connection = TestConnection> struct Harness
{
    std::shared_ptr<server::SerialQueue> queue = server::SerialQueue::createManual();
    std::shared_ptr<server::FakeSocket> socket = server::FakeSocket::create(queue);
    std::shared_ptr<Connection> connection;
    bool died = false;

    explicit Harness(const QString &documentRoot, const QString &user = QStringLiteral("Tavelle"),
                     const QString &password = QStringLiteral("secret"))
    {
        server::HTTPConfig config;
        config.documentRoot = documentRoot;
        config.queue = queue;
        config.connectionDidDie = [this](server::HTTPConnection &) { died = true; };
        connection = std::make_shared<Connection>(socket, config);
        if (!user.isEmpty())
            connection->setUser(user);
        if (!password.isEmpty())
            connection->setPassword(password);
        connection->start();
        queue->drain();
    }

    void send(const QByteArray &bytes)
    {
        socket->feed(bytes);
        queue->drain();
    }

    // Runs the queue until the predicate holds; for work that a response's
    // own thread hands back. Gives up after five seconds.
    bool runUntil(const std::function<bool()> &done)
    {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(5);
        for (;;) {
            queue->drain();
            if (done())
                return true;
            if (std::chrono::steady_clock::now() > limit)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    QByteArray output() { return socket->takeWritten(); }

    std::optional<Response> exchange(const QByteArray &request, bool withBody = true)
    {
        send(request);
        QByteArray out = output();
        return takeResponse(out, withBody);
    }
};

} // namespace servertest

#include <QCryptographicHash>

inline QByteArray servertest::md5Hex(const QByteArray &text)
{
    return QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex();
}
