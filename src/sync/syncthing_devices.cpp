#include "sync/syncthing_devices.h"

#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QXmlStreamReader>

namespace tl::sync {

namespace {

QString deviceNameIn(const QString &configPath, const QString &shortId)
{
    QFile file(configPath);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader xml(&file);
    while (!xml.atEnd() && !xml.hasError()) {
        xml.readNext();
        if (!xml.isStartElement() || xml.name() != QLatin1String("device"))
            continue;
        const QXmlStreamAttributes attributes = xml.attributes();
        if (attributes.value(QLatin1String("id")).startsWith(shortId))
            return attributes.value(QLatin1String("name")).toString();
    }
    return {};
}

} // namespace

QString syncthingDeviceName(const QString &shortId)
{
    // Newer versions keep the configuration in the state folder.
    const QString state =
        qEnvironmentVariable("XDG_STATE_HOME", QDir::homePath() + "/.local/state");
    const QString config = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    for (const QString &folder : {state, config}) {
        const QString name =
            deviceNameIn(folder + QStringLiteral("/syncthing/config.xml"), shortId);
        if (!name.isEmpty())
            return name;
    }
    return {};
}

} // namespace tl::sync
