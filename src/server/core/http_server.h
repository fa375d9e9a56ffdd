#pragma once

#include "server/core/http_connection.h"
#include "server/core/service_publisher.h"

#include <QMap>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <mutex>
#include <system_error>
#include <vector>

namespace server {

class AsyncSocket;
class SerialQueue;

// The listening server. It accepts clients on its own queue ("HTTPServer")
// and gives each a connection of the connection class, all of which share
// one queue ("HTTPConnection"). With no interface set it listens on all
// interfaces, IPv6 and IPv4 alike.
class HTTPServer
{
public:
    using ConnectionFactory = std::function<std::shared_ptr<HTTPConnection>(
        std::shared_ptr<AsyncSocket> socket, HTTPConfig config)>;
    using PublisherFactory = std::function<std::unique_ptr<ServicePublisher>()>;

    HTTPServer();
    ~HTTPServer();

    HTTPServer(const HTTPServer &) = delete;
    HTTPServer &operator=(const HTTPServer &) = delete;

    // Listens and publishes the service. On failure gives the error; an
    // address in use is recognised with isAddressInUse() (EADDRINUSE).
    bool start(std::error_code *error = nullptr);
    // Withdraws the service and closes the listener; without keeping them,
    // also stops every connection.
    void stop(bool keepExistingConnections = false);
    bool isRunning() const;
    static bool isAddressInUse(const std::error_code &error);

    // The bound port while running, else 0.
    uint16_t listeningPort() const;
    // The addresses listened on while running ("0.0.0.0" or "::" for all).
    QStringList listeningAddresses() const;
    size_t numberOfHTTPConnections() const;
    size_t numberOfWebSocketConnections() const { return 0; }

    // 0 means any free port.
    uint16_t port() const;
    void setPort(uint16_t port);
    // Empty: all interfaces. Otherwise an address ("127.0.0.1", "::1"),
    // "localhost" or "loopback", or the name of an interface ("lo", "eth0").
    QString interface() const;
    void setInterface(const QString &interface);
    QString documentRoot() const;
    void setDocumentRoot(const QString &documentRoot);

    void setConnectionFactory(ConnectionFactory factory);
    template <class Connection> void setConnectionClass()
    {
        setConnectionFactory([](std::shared_ptr<AsyncSocket> socket, HTTPConfig config) {
            return std::make_shared<Connection>(std::move(socket), std::move(config));
        });
    }

    // Credentials handed to each connection as it is accepted.
    QString username() const;
    void setUsername(const QString &username);
    QString password() const;
    void setPassword(const QString &password);

    // Service publication. Nothing is published until a type is set.
    QString domain() const;
    void setDomain(const QString &domain);
    QString type() const;
    void setType(const QString &type);
    QString name() const;
    void setName(const QString &name);
    QString publishedName() const;
    QMap<QString, QByteArray> TXTRecordDictionary() const;
    void setTXTRecordDictionary(const QMap<QString, QByteArray> &record);
    void republishBonjour();
    // Replaces Avahi, for tests.
    void setPublisherFactory(PublisherFactory factory);

private:
    struct Registry;
    struct Listener;
    void acceptNext(const std::shared_ptr<Listener> &listener);
    bool listen(std::error_code &error);
    void publishBonjour();
    void unpublishBonjour();

    std::shared_ptr<SerialQueue> m_serverQueue;
    std::shared_ptr<SerialQueue> m_connectionQueue;
    std::shared_ptr<Registry> m_registry;

    std::vector<std::shared_ptr<Listener>> m_listeners; // on the server queue

    mutable std::mutex m_mutex;
    uint16_t m_port = 0;
    uint16_t m_listeningPort = 0;
    QStringList m_listeningAddresses;
    QString m_interface;
    QString m_documentRoot;
    ConnectionFactory m_factory;
    QString m_username;
    QString m_password;
    QString m_domain = QStringLiteral("local.");
    QString m_type;
    QString m_name = QStringLiteral("");
    QMap<QString, QByteArray> m_txtRecord;
    bool m_isRunning = false;
    PublisherFactory m_publisherFactory;
    std::unique_ptr<ServicePublisher> m_publisher; // on the server queue
};

} // namespace server
