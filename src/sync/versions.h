#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

// What the program needs of a sync client: the versions of a file and the
// state of the items it syncs. Each client is an adapter behind these two
// faces; the resolution rules work on the faces alone.
namespace tl::sync {

struct FileVersion
{
    // Where the version's contents lie: the item itself for the current
    // version, a conflict copy or a stored version otherwise.
    QString location;
    QString computerName;
    // Nothing for a deletion.
    std::optional<QDateTime> modified;
    // The person who saved it, for shared items.
    QString originatorGiven;
    QString originatorFamily;

    bool hasOriginator() const { return !originatorGiven.isEmpty() || !originatorFamily.isEmpty(); }
};

class VersionStore
{
public:
    virtual ~VersionStore() = default;

    virtual FileVersion currentVersion(const QString &item) = 0;
    // Oldest first, as the client lists them.
    virtual QList<FileVersion> unresolvedConflictVersions(const QString &item) = 0;
    virtual bool markResolved(const QString &item, const FileVersion &version) = 0;
    // Takes the version out of the store; a loser is never deleted outright.
    virtual bool remove(const QString &item, const FileVersion &version) = 0;
    // The item takes the version's contents.
    virtual bool replaceItem(const QString &item, const FileVersion &version) = 0;
    // Drops every version but the current.
    virtual bool removeOtherVersions(const QString &item) = 0;
};

// One item the client reports as not in sync or in conflict.
struct ItemStatus
{
    QString path;
    bool isFolder = false;
    bool downloaded = true;
    bool uploaded = true;
    bool hasConflict = false;
};

class SyncStatusSource
{
public:
    virtual ~SyncStatusSource() = default;

    // The client's name as the command shows it; empty for no client.
    virtual QString name() const = 0;
    // Items not fully downloaded, not fully uploaded, or in conflict.
    virtual QList<ItemStatus> report() = 0;
    virtual bool requestDownload(const QString &path) = 0;
    virtual VersionStore &versions() = 0;
    // Whether the client's own files (temporary files, journals, stubs)
    // should be left out of listings and counts.
    virtual bool isClientFile(const QString &path) const = 0;
};

} // namespace tl::sync
