// libFuzzer target: a whole connection over the fake socket, the chunked
// body reader above all. The first byte picks the mode:
//   bit 0: put a chunked POST header before the input (the chunked reader)
//   bit 1: answer without authentication
//   bit 2: feed the input in small pieces
//   bit 3: let writes wait, completing them one batch at a time
// The connection must never crash, never hand over more body than it got,
// and never keep more than a piece of response unsent.
#include "server/core/fake_socket.h"
#include "server/core/http_connection.h"
#include "server/core/responses/http_data_response.h"
#include "server/core/serial_queue.h"

#include <QDir>
#include <QFile>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

class FuzzConnection : public server::HTTPConnection
{
public:
    using HTTPConnection::HTTPConnection;
    bool open = false;
    uint64_t bodyBytes = 0;

    bool supportsMethod(const QString &method, const QString &path) override
    {
        return method == QLatin1String("POST") || method == QLatin1String("PUT") ||
               HTTPConnection::supportsMethod(method, path);
    }
    bool isPasswordProtected(const QString &) override { return !open; }
    void processBodyData(const QByteArray &data) override
    {
        if (data.isEmpty() || size_t(data.size()) > kPieceSize)
            __builtin_trap();
        bodyBytes += uint64_t(data.size());
    }
    std::shared_ptr<server::HTTPResponse> httpResponseForMethod(const QString &method,
                                                                const QString &path) override
    {
        if (path.startsWith(QLatin1String("/echo")))
            return std::make_shared<server::HTTPDataResponse>(
                QByteArray::number(qulonglong(bodyBytes)));
        return HTTPConnection::httpResponseForMethod(method, path);
    }
};

const QString &documentRoot()
{
    static const QString root = [] {
        const QString path = QDir::tempPath() + QStringLiteral("/tavelle-fuzz-root");
        QDir().mkpath(path + QStringLiteral("/dir"));
        QFile file(path + QStringLiteral("/file.txt"));
        if (file.open(QIODevice::WriteOnly))
            file.write(QByteArray(70000, 'x'));
        QFile index(path + QStringLiteral("/dir/index.html"));
        if (index.open(QIODevice::WriteOnly))
            index.write("<p>index</p>");
        return path;
    }();
    return root;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    const uint8_t mode = data[0];
    QByteArray input(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    if (mode & 1)
        input.prepend("POST /echo HTTP/1.1\r\nHost: f\r\nTransfer-Encoding: chunked\r\n\r\n");

    auto queue = server::SerialQueue::createManual();
    auto socket = server::FakeSocket::create(queue);
    socket->setAutoCompleteWrites(!(mode & 8));
    server::HTTPConfig config;
    config.documentRoot = documentRoot();
    config.queue = queue;
    auto connection = std::make_shared<FuzzConnection>(socket, config);
    connection->open = mode & 2;
    connection->setUser(QStringLiteral("Tavelle"));
    connection->setPassword(QStringLiteral("secret"));
    connection->start();
    queue->drain();

    const qsizetype step = (mode & 4) ? 7 : input.size();
    for (qsizetype from = 0; from < input.size(); from += step) {
        socket->feed(input.mid(from, step));
        queue->drain();
        if (mode & 8) {
            for (int i = 0; i < 64 && socket->hasWritesInFlight(); ++i) {
                socket->completeWrites();
                queue->drain();
            }
        }
    }
    socket->feedEnd();
    queue->drain();

    if (connection->bodyBytes > uint64_t(input.size()))
        __builtin_trap();
    if (socket->mostUnsentBytes() > server::HTTPConnection::kPieceSize + 4096)
        __builtin_trap();
    connection->stop();
    queue->drain();
    return 0;
}
