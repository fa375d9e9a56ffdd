#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

// How each sync client names what it leaves in a synced folder: conflict
// copies, placeholders of files not yet downloaded, and its own files.
namespace tl::sync {

enum class SyncClient { Syncthing, Nextcloud, Dropbox };

QString clientName(SyncClient client);

// What a conflict copy's name tells: the file it is a version of, when the
// conflict arose, and the computer (empty when the client names none).
struct ConflictCopyName
{
    QString original;
    QDateTime stamp;
    QString computer;
};
// Nothing for a name that only looks like a conflict copy.
std::optional<ConflictCopyName> parseConflictCopyName(SyncClient client, const QString &fileName);
// The name of the file a placeholder stands for.
std::optional<QString> placeholderTarget(SyncClient client, const QString &fileName);
// Temporary files, journals and markers of the client: never items.
bool isClientOwnFile(SyncClient client, const QString &fileName);

// The client whose marker lies in the folder or the nearest folder above.
std::optional<SyncClient> detectSyncClient(const QString &folder);

// The client syncing the library, looked for once for each library: the look
// lists every folder above it.
std::optional<SyncClient> syncClientOfLibrary(const QString &root);

// Whether the file is a conflict copy by the naming of the client that syncs
// the current library; the store's rule.
bool isConflictCopyInLibrary(const QString &path);

} // namespace tl::sync
