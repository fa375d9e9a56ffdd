#include "sync/sync_sources.h"

#include "foundation/compare.h"
#include "platform/trash.h"
#include "store/log.h"
#include "sync/syncthing_devices.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>
#include <algorithm>

namespace tl::sync {

namespace {

QStringList entriesOf(const QString &folder, QDir::Filters kind)
{
    return QDir(folder).entryList(kind | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                  QDir::Name);
}

bool trashIfPresent(const QString &path)
{
    if (!QFileInfo::exists(path))
        return true;
    if (platform::trashItem(path))
        return true;
    logLine(QStringLiteral("could not move to the trash: %1").arg(path));
    return false;
}

// The local file is the version this computer holds.
QString thisComputer()
{
    return QSysInfo::machineHostName();
}

class NullSource : public SyncStatusSource, public VersionStore
{
public:
    QString name() const override { return {}; }
    QList<ItemStatus> report() override { return {}; }
    bool requestDownload(const QString &) override { return false; }
    VersionStore &versions() override { return *this; }
    bool isClientFile(const QString &) const override { return false; }

    FileVersion currentVersion(const QString &item) override { return {item, {}, {}, {}, {}}; }
    QList<FileVersion> unresolvedConflictVersions(const QString &) override { return {}; }
    bool markResolved(const QString &, const FileVersion &) override { return true; }
    bool remove(const QString &, const FileVersion &) override { return false; }
    bool replaceItem(const QString &, const FileVersion &) override { return false; }
    bool removeOtherVersions(const QString &) override { return true; }
};

} // namespace

ConflictCopySource::ConflictCopySource(SyncClient client, QString root)
    : m_client(client), m_root(std::move(root))
{
}

QString ConflictCopySource::name() const
{
    return clientName(m_client);
}

QList<ItemStatus> ConflictCopySource::report()
{
    QList<ItemStatus> items;
    QStringList inConflict;
    QStringList folders{m_root};
    while (!folders.isEmpty()) {
        const QString folder = folders.takeFirst();
        // The client's own folders (versions, caches) are hidden; none holds items.
        for (const QString &name : entriesOf(folder, QDir::Dirs))
            if (!name.startsWith(u'.') && !isClientOwnFile(m_client, name))
                folders << folder + u'/' + name;
        for (const QString &name : entriesOf(folder, QDir::Files)) {
            if (const auto copy = parseConflictCopyName(m_client, name)) {
                const QString original = folder + u'/' + copy->original;
                if (!inConflict.contains(original)) {
                    inConflict << original;
                    items.append({original, false, true, true, true});
                }
            } else if (const auto target = placeholderTarget(m_client, name)) {
                items.append({folder + u'/' + *target, false, false, true, false});
            }
        }
    }
    return items;
}

bool ConflictCopySource::requestDownload(const QString &path)
{
    // The client fetches a placeholder when it is opened through its own
    // file system; nothing here can ask it directly.
    logLine(QStringLiteral("download failed: %1").arg(path));
    return false;
}

bool ConflictCopySource::isClientFile(const QString &path) const
{
    return isClientOwnFile(m_client, QFileInfo(path).fileName());
}

FileVersion ConflictCopySource::currentVersion(const QString &item)
{
    const QFileInfo info(item);
    FileVersion version{item, thisComputer(), {}, {}, {}};
    if (info.exists())
        version.modified = info.lastModified();
    return version;
}

QList<FileVersion> ConflictCopySource::unresolvedConflictVersions(const QString &item)
{
    const QFileInfo info(item);
    struct Copy
    {
        QDateTime stamp;
        FileVersion version;
    };
    QList<Copy> copies;
    for (const QString &name : entriesOf(info.path(), QDir::Files)) {
        const auto copy = parseConflictCopyName(m_client, name);
        if (!copy || !canonicallyEqual(copy->original, info.fileName()))
            continue;
        const QString location = info.path() + u'/' + name;
        copies.append({copy->stamp,
                       {location,
                        computerNamed(copy->computer),
                        QFileInfo(location).lastModified(),
                        {},
                        {}}});
    }
    std::stable_sort(copies.begin(), copies.end(),
                     [](const Copy &a, const Copy &b) { return a.stamp < b.stamp; });
    QList<FileVersion> versions;
    for (const Copy &copy : copies)
        versions << copy.version;
    return versions;
}

bool ConflictCopySource::markResolved(const QString &, const FileVersion &)
{
    // A copy is unresolved as long as it lies beside the file.
    return true;
}

bool ConflictCopySource::remove(const QString &, const FileVersion &version)
{
    return trashIfPresent(version.location);
}

bool ConflictCopySource::replaceItem(const QString &item, const FileVersion &version)
{
    if (!QFileInfo::exists(version.location) || !trashIfPresent(item))
        return false;
    if (QFile::rename(version.location, item))
        return true;
    logLine(QStringLiteral("could not put %1 in place of %2").arg(version.location, item));
    return false;
}

bool ConflictCopySource::removeOtherVersions(const QString &item)
{
    bool removed = true;
    for (const FileVersion &version : unresolvedConflictVersions(item))
        removed = trashIfPresent(version.location) && removed;
    return removed;
}

QString ConflictCopySource::computerNamed(const QString &nameInCopy) const
{
    if (m_client != SyncClient::Syncthing || nameInCopy.isEmpty())
        return nameInCopy;
    const QString device = syncthingDeviceName(nameInCopy);
    return device.isEmpty() ? nameInCopy : device;
}

std::unique_ptr<SyncStatusSource> syncSourceForLibrary(const QString &root)
{
    if (const std::optional<SyncClient> client = syncClientOfLibrary(root))
        return std::make_unique<ConflictCopySource>(*client, root);
    return std::make_unique<NullSource>();
}

} // namespace tl::sync
