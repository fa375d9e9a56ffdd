#include "server/core/http_server.h"

#include "server/core/asio_socket.h"
#include "server/core/serial_queue.h"
#include "store/log.h"

#include <algorithm>
#include <asio/error.hpp>
#include <asio/ip/tcp.hpp>
#include <asio/ip/v6_only.hpp>
#include <asio/steady_timer.hpp>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>

namespace server {

struct HTTPServer::Registry
{
    std::mutex mutex;
    std::vector<std::shared_ptr<HTTPConnection>> connections;

    void remove(HTTPConnection &connection)
    {
        std::shared_ptr<HTTPConnection> keep; // released outside the lock
        std::lock_guard lock(mutex);
        auto found = std::find_if(connections.begin(), connections.end(),
                                  [&](const auto &c) { return c.get() == &connection; });
        if (found != connections.end()) {
            keep = std::move(*found);
            connections.erase(found);
        }
    }
};

struct HTTPServer::Listener
{
    Listener(asio::io_context &context) : acceptor(context), retry(context) {}
    asio::ip::tcp::acceptor acceptor;
    asio::steady_timer retry;
};

namespace {

std::vector<asio::ip::address> addressesOfInterface(const QString &interface, bool &dualStack)
{
    dualStack = false;
    std::vector<asio::ip::address> addresses;
    if (interface.isEmpty()) {
        dualStack = true;
        addresses.push_back(asio::ip::address_v6::any());
        return addresses;
    }
    if (interface.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 ||
        interface.compare(QLatin1String("loopback"), Qt::CaseInsensitive) == 0) {
        addresses.push_back(asio::ip::address_v4::loopback());
        addresses.push_back(asio::ip::address_v6::loopback());
        return addresses;
    }
    std::error_code ec;
    const auto literal = asio::ip::make_address(interface.toStdString(), ec);
    if (!ec) {
        addresses.push_back(literal);
        return addresses;
    }
    struct ifaddrs *list = nullptr;
    if (getifaddrs(&list) != 0)
        return addresses;
    const QByteArray name = interface.toUtf8();
    for (struct ifaddrs *entry = list; entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || name != entry->ifa_name)
            continue;
        if (entry->ifa_addr->sa_family == AF_INET) {
            const auto *in = reinterpret_cast<const sockaddr_in *>(entry->ifa_addr);
            addresses.push_back(asio::ip::address_v4(ntohl(in->sin_addr.s_addr)));
        } else if (entry->ifa_addr->sa_family == AF_INET6) {
            const auto *in6 = reinterpret_cast<const sockaddr_in6 *>(entry->ifa_addr);
            asio::ip::address_v6::bytes_type bytes;
            std::copy(std::begin(in6->sin6_addr.s6_addr), std::end(in6->sin6_addr.s6_addr),
                      bytes.begin());
            addresses.push_back(asio::ip::address_v6(bytes, in6->sin6_scope_id));
        }
    }
    freeifaddrs(list);
    return addresses;
}

} // namespace

HTTPServer::HTTPServer()
    : m_serverQueue(SerialQueue::create("HTTPServer")),
      m_connectionQueue(SerialQueue::create("HTTPConnection")),
      m_registry(std::make_shared<Registry>())
{
    setConnectionClass<HTTPConnection>();
}

HTTPServer::~HTTPServer()
{
    stop(false);
    // Let the connections' disconnections run while this server still stands.
    m_connectionQueue->sync([] {});
    m_connectionQueue->sync([] {});
    m_serverQueue->sync([this] { m_listeners.clear(); });
    // A cancelled accept still holds a socket of the connection queue: the
    // server queue must go first, while the connection queue stands.
    m_serverQueue.reset();
}

bool HTTPServer::isAddressInUse(const std::error_code &error)
{
    // Asio reports through a category of its own, which does not map onto std::errc.
    return error == asio::error::address_in_use || error == std::errc::address_in_use;
}

bool HTTPServer::listen(std::error_code &error)
{
    bool dualStack = false;
    const auto addresses = addressesOfInterface(interface(), dualStack);
    if (addresses.empty()) {
        error = std::make_error_code(std::errc::no_such_device);
        return false;
    }
    uint16_t port = this->port();
    std::vector<std::shared_ptr<Listener>> listeners;
    for (size_t i = 0; i < addresses.size(); ++i) {
        auto listener = std::make_shared<Listener>(m_serverQueue->context());
        asio::ip::tcp::endpoint endpoint(addresses[i], port);
        std::error_code ec;
        listener->acceptor.open(endpoint.protocol(), ec);
        if (ec && dualStack) {
            // No IPv6 here: all IPv4 interfaces it is.
            endpoint = asio::ip::tcp::endpoint(asio::ip::address_v4::any(), port);
            ec.clear();
            listener->acceptor.open(endpoint.protocol(), ec);
        }
        if (!ec && endpoint.address().is_v6())
            listener->acceptor.set_option(asio::ip::v6_only(!dualStack), ec);
        if (!ec)
            listener->acceptor.set_option(asio::ip::tcp::acceptor::reuse_address(true), ec);
        if (!ec)
            listener->acceptor.bind(endpoint, ec);
        if (!ec)
            listener->acceptor.listen(asio::socket_base::max_listen_connections, ec);
        if (ec) {
            // A second address of the loopback pair may be missing (no IPv6).
            const bool optional = i > 0 && (ec == asio::error::address_family_not_supported ||
                                            ec.value() == EADDRNOTAVAIL);
            if (optional)
                continue;
            error = ec;
            return false;
        }
        if (port == 0)
            port = listener->acceptor.local_endpoint().port();
        listeners.push_back(std::move(listener));
    }
    QStringList bound;
    for (const auto &listener : listeners)
        bound << QString::fromStdString(listener->acceptor.local_endpoint().address().to_string());
    m_listeners = std::move(listeners);
    std::lock_guard lock(m_mutex);
    m_listeningPort = port;
    m_listeningAddresses = bound;
    return true;
}

bool HTTPServer::start(std::error_code *errorOut)
{
    bool success = false;
    std::error_code error;
    m_serverQueue->sync([&] {
        if (isRunning()) {
            success = true;
            return;
        }
        if (!listen(error)) {
            m_listeners.clear();
            tl::logLine(QStringLiteral("HTTPServer: Failed to start HTTP Server: %1")
                            .arg(QString::fromStdString(error.message())));
            return;
        }
        tl::logLine(
            QStringLiteral("HTTPServer: Started HTTP server on port %1").arg(listeningPort()));
        {
            std::lock_guard lock(m_mutex);
            m_isRunning = true;
        }
        for (auto &listener : m_listeners)
            acceptNext(listener);
        publishBonjour();
        success = true;
    });
    if (errorOut)
        *errorOut = error;
    return success;
}

void HTTPServer::acceptNext(const std::shared_ptr<Listener> &listener)
{
    listener->acceptor.async_accept(
        m_connectionQueue->context(),
        [this, listener](const std::error_code &error, asio::ip::tcp::socket socket) {
            if (error == asio::error::operation_aborted || !listener->acceptor.is_open())
                return;
            if (error) {
                // Out of descriptors and the like: try again shortly.
                listener->retry.expires_after(std::chrono::milliseconds(100));
                listener->retry.async_wait([this, listener](const std::error_code &e) {
                    if (!e && listener->acceptor.is_open())
                        acceptNext(listener);
                });
                return;
            }
            HTTPConfig config;
            config.server = this;
            config.documentRoot = documentRoot();
            config.queue = m_connectionQueue;
            std::weak_ptr<Registry> registry = m_registry;
            config.connectionDidDie = [registry](HTTPConnection &connection) {
                if (auto r = registry.lock())
                    r->remove(connection);
            };
            ConnectionFactory factory;
            QString username, password;
            {
                std::lock_guard lock(m_mutex);
                factory = m_factory;
                username = m_username;
                password = m_password;
            }
            auto asyncSocket = std::make_shared<AsioSocket>(m_connectionQueue, std::move(socket));
            auto connection = factory(asyncSocket, std::move(config));
            if (connection) {
                {
                    std::lock_guard lock(m_registry->mutex);
                    if (!username.isEmpty())
                        connection->setUser(username);
                    if (!password.isEmpty())
                        connection->setPassword(password);
                    m_registry->connections.push_back(connection);
                }
                connection->start();
            }
            acceptNext(listener);
        });
}

void HTTPServer::stop(bool keepExistingConnections)
{
    m_serverQueue->sync([&] {
        unpublishBonjour();
        for (auto &listener : m_listeners) {
            std::error_code ignored;
            listener->retry.cancel();
            listener->acceptor.close(ignored);
        }
        m_listeners.clear();
        {
            std::lock_guard lock(m_mutex);
            m_isRunning = false;
            m_listeningPort = 0;
            m_listeningAddresses.clear();
        }
        if (!keepExistingConnections) {
            std::vector<std::shared_ptr<HTTPConnection>> connections;
            {
                std::lock_guard lock(m_registry->mutex);
                connections.swap(m_registry->connections);
            }
            for (auto &connection : connections)
                connection->stop();
        }
    });
}

bool HTTPServer::isRunning() const
{
    std::lock_guard lock(m_mutex);
    return m_isRunning;
}

uint16_t HTTPServer::listeningPort() const
{
    std::lock_guard lock(m_mutex);
    return m_isRunning || m_listeningPort ? m_listeningPort : 0;
}

QStringList HTTPServer::listeningAddresses() const
{
    std::lock_guard lock(m_mutex);
    return m_listeningAddresses;
}

size_t HTTPServer::numberOfHTTPConnections() const
{
    std::lock_guard lock(m_registry->mutex);
    return m_registry->connections.size();
}

#define TL_SERVER_PROPERTY(Type, getter, setter, member)                                           \
    Type HTTPServer::getter() const                                                                \
    {                                                                                              \
        std::lock_guard lock(m_mutex);                                                             \
        return member;                                                                             \
    }                                                                                              \
    void HTTPServer::setter(const Type &value)                                                     \
    {                                                                                              \
        std::lock_guard lock(m_mutex);                                                             \
        member = value;                                                                            \
    }

TL_SERVER_PROPERTY(QString, interface, setInterface, m_interface)
TL_SERVER_PROPERTY(QString, documentRoot, setDocumentRoot, m_documentRoot)
TL_SERVER_PROPERTY(QString, username, setUsername, m_username)
TL_SERVER_PROPERTY(QString, password, setPassword, m_password)
TL_SERVER_PROPERTY(QString, domain, setDomain, m_domain)
TL_SERVER_PROPERTY(QString, type, setType, m_type)
TL_SERVER_PROPERTY(QString, name, setName, m_name)
#undef TL_SERVER_PROPERTY

uint16_t HTTPServer::port() const
{
    std::lock_guard lock(m_mutex);
    return m_port;
}

void HTTPServer::setPort(uint16_t port)
{
    std::lock_guard lock(m_mutex);
    m_port = port;
}

QMap<QString, QByteArray> HTTPServer::TXTRecordDictionary() const
{
    std::lock_guard lock(m_mutex);
    return m_txtRecord;
}

void HTTPServer::setTXTRecordDictionary(const QMap<QString, QByteArray> &record)
{
    {
        std::lock_guard lock(m_mutex);
        m_txtRecord = record;
    }
    if (isRunning())
        republishBonjour();
}

void HTTPServer::setConnectionFactory(ConnectionFactory factory)
{
    std::lock_guard lock(m_mutex);
    m_factory = std::move(factory);
}

void HTTPServer::setPublisherFactory(PublisherFactory factory)
{
    std::lock_guard lock(m_mutex);
    m_publisherFactory = std::move(factory);
}

QString HTTPServer::publishedName() const
{
    QString name;
    m_serverQueue->sync([&] {
        if (m_publisher)
            name = m_publisher->publishedName();
    });
    return name;
}

void HTTPServer::publishBonjour()
{
    ServiceDescription service;
    PublisherFactory factory;
    {
        std::lock_guard lock(m_mutex);
        if (m_type.isEmpty())
            return;
        service = {m_domain, m_type, m_name, m_listeningPort, m_txtRecord};
        factory = m_publisherFactory;
    }
    if (!m_publisher)
        m_publisher = factory ? factory() : makeAvahiPublisher();
    if (m_publisher)
        m_publisher->publish(service);
}

void HTTPServer::unpublishBonjour()
{
    if (m_publisher)
        m_publisher->unpublish();
}

void HTTPServer::republishBonjour()
{
    m_serverQueue->sync([this] {
        unpublishBonjour();
        if (isRunning())
            publishBonjour();
    });
}

} // namespace server
