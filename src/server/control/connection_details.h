#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// How a client reaches the server: the host name and the addresses of the
// machine's wired and wireless interfaces.
namespace server {

struct NetworkInterface
{
    QString name;
    QString ipv4Address; // empty for an interface without one
    bool up = false;
    bool running = false;
    bool loopback = false;
};

// Ethernet and Wi-Fi by name: "en…", "eth…" and "wl…".
bool isEthernetOrWiFiInterface(const QString &name);

// "Use the credentials above…", the host address and one address per IPv4
// interface that is Ethernet or Wi-Fi, up or running and no loopback, in
// the order given.
QString connectionDetailsText(const QString &hostName, quint64 port,
                              const QList<NetworkInterface> &interfaces);

// The same introduction, then one address per line for a server that
// listens on the given addresses only.
QString listeningDetailsText(const QStringList &addresses, quint64 port);

// The machine's host name, ending in ".local".
QString localHostName();
// The machine's interfaces with an IPv4 address, as the system lists them.
QList<NetworkInterface> ipv4Interfaces();

} // namespace server
