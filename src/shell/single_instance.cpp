#include "shell/single_instance.h"

#include "platform/folders.h"

#include <QDataStream>
#include <QDir>
#include <QLocalServer>
#include <QLocalSocket>

namespace tl::shell {

namespace {

// The running program answers this byte once it has the requests.
constexpr char kTaken = '1';

constexpr char kInsertPrefix[] = "insertIntoCurrentDocument:";

} // namespace

QString instanceSocketPath()
{
    QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (folder.isEmpty() || !QDir(folder).exists()) {
        folder = platform::temporaryFolder();
        QDir().mkpath(folder);
    }
    return folder + QStringLiteral("/com.tavelle.app.socket");
}

bool isTavelleAddress(const QString &request)
{
    return request.startsWith(QStringLiteral("tavelle:"), Qt::CaseInsensitive);
}

QString insertRequest(const QString &text)
{
    return QLatin1String(kInsertPrefix) + text;
}

std::optional<QString> textToInsert(const QString &request)
{
    if (!request.startsWith(QLatin1String(kInsertPrefix)))
        return std::nullopt;
    return request.mid(qsizetype(sizeof kInsertPrefix) - 1);
}

bool handOverToRunningInstance(const QStringList &requests, int timeoutMilliseconds)
{
    QLocalSocket socket;
    socket.connectToServer(instanceSocketPath());
    if (!socket.waitForConnected(timeoutMilliseconds))
        return false;
    QByteArray message;
    QDataStream stream(&message, QIODevice::WriteOnly);
    stream << requests;
    socket.write(message);
    if (!socket.waitForBytesWritten(timeoutMilliseconds))
        return false;
    while (socket.bytesAvailable() < 1)
        if (!socket.waitForReadyRead(timeoutMilliseconds))
            return false;
    return socket.read(1) == QByteArray(1, kTaken);
}

InstanceServer::InstanceServer(QObject *parent) : QObject(parent), m_server(new QLocalServer(this))
{
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *socket = m_server->nextPendingConnection()) {
            connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QLocalSocket::readyRead, this, [this, socket] {
                QDataStream stream(socket);
                stream.startTransaction();
                QStringList requests;
                stream >> requests;
                if (!stream.commitTransaction())
                    return;
                socket->write(QByteArray(1, kTaken));
                socket->flush();
                Q_EMIT requestsReceived(requests);
            });
        }
    });
}

InstanceServer::~InstanceServer() = default;

bool InstanceServer::listen()
{
    const QString path = instanceSocketPath();
    QLocalSocket probe;
    probe.connectToServer(path);
    if (probe.waitForConnected(500))
        return false;
    // A socket nobody answers on is left from a program that ended.
    QLocalServer::removeServer(path);
    return m_server->listen(path);
}

} // namespace tl::shell
