#pragma once

#include "sync/conflict_names.h"
#include "sync/versions.h"

#include <memory>

namespace tl::sync {

// A client that keeps versions as conflict copies beside the file, named by
// its rules. Resolving moves a losing copy or file to the trash, never
// deletes it.
class ConflictCopySource : public SyncStatusSource, public VersionStore
{
public:
    ConflictCopySource(SyncClient client, QString root);

    QString name() const override;
    QList<ItemStatus> report() override;
    bool requestDownload(const QString &path) override;
    VersionStore &versions() override { return *this; }
    bool isClientFile(const QString &path) const override;

    FileVersion currentVersion(const QString &item) override;
    QList<FileVersion> unresolvedConflictVersions(const QString &item) override;
    bool markResolved(const QString &item, const FileVersion &version) override;
    bool remove(const QString &item, const FileVersion &version) override;
    bool replaceItem(const QString &item, const FileVersion &version) override;
    bool removeOtherVersions(const QString &item) override;

private:
    QString computerNamed(const QString &nameInCopy) const;

    SyncClient m_client;
    QString m_root;
};

// The source of the client found for the library; with none, a source that
// reports nothing.
std::unique_ptr<SyncStatusSource> syncSourceForLibrary(const QString &root);

} // namespace tl::sync
