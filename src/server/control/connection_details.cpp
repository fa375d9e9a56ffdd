#include "server/control/connection_details.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netinet/in.h>
#include <unistd.h>

namespace server {

bool isEthernetOrWiFiInterface(const QString &name)
{
    return name.startsWith(QLatin1String("en")) || name.startsWith(QLatin1String("eth")) ||
           name.startsWith(QLatin1String("wl"));
}

namespace {
const char kIntroduction[] =
    "Use the credentials above to connect to one of the given server addresses.";
} // namespace

QString connectionDetailsText(const QString &hostName, quint64 port,
                              const QList<NetworkInterface> &interfaces)
{
    QString text = QLatin1String(kIntroduction);
    text += QStringLiteral("\n\nhttp://%1:%2").arg(hostName).arg(port);
    for (const NetworkInterface &interface : interfaces) {
        if (interface.ipv4Address.isEmpty() || !isEthernetOrWiFiInterface(interface.name) ||
            !(interface.up || interface.running) || interface.loopback)
            continue;
        text += QStringLiteral("\nhttp://%1:%2").arg(interface.ipv4Address).arg(port);
    }
    return text;
}

QString listeningDetailsText(const QStringList &addresses, quint64 port)
{
    QString text = QLatin1String(kIntroduction) + QLatin1Char('\n');
    for (const QString &address : addresses) {
        const QString host = address.contains(QLatin1Char(':'))
                                 ? QLatin1Char('[') + address + QLatin1Char(']')
                                 : address;
        text += QStringLiteral("\nhttp://%1:%2").arg(host).arg(port);
    }
    return text;
}

QString localHostName()
{
    char name[256] = {};
    if (::gethostname(name, sizeof name - 1) != 0)
        name[0] = 0;
    QString host = QString::fromLocal8Bit(name);
    if (!host.endsWith(QLatin1String(".local")))
        host += QLatin1String(".local");
    return host;
}

QList<NetworkInterface> ipv4Interfaces()
{
    QList<NetworkInterface> list;
    ifaddrs *all = nullptr;
    if (::getifaddrs(&all) != 0)
        return list;
    for (const ifaddrs *entry = all; entry; entry = entry->ifa_next) {
        if (!entry->ifa_addr || entry->ifa_addr->sa_family != AF_INET)
            continue;
        char address[INET_ADDRSTRLEN] = {};
        const auto *in = reinterpret_cast<const sockaddr_in *>(entry->ifa_addr);
        if (!::inet_ntop(AF_INET, &in->sin_addr, address, sizeof address))
            continue;
        list.append({QString::fromLocal8Bit(entry->ifa_name), QString::fromLatin1(address),
                     (entry->ifa_flags & IFF_UP) != 0, (entry->ifa_flags & IFF_RUNNING) != 0,
                     (entry->ifa_flags & IFF_LOOPBACK) != 0});
    }
    ::freeifaddrs(all);
    return list;
}

} // namespace server
