#pragma once

// File operations on item paths. Every operation answers false or nothing on
// failure and logs one line; none throws. None of them loses data on a failure
// path: writes go through a temporary file, moves keep the source until the
// copy is complete, and partial copies are removed.

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <optional>

namespace tl::platform {

// Writes data to a temporary file in the same folder, flushes it to disk and
// renames it over path. An existing file keeps its permission bits, its owner
// (where allowed) and all its user extended attributes; a symbolic link is
// followed, so the link itself survives. The modification date becomes now.
// On failure the original is untouched and the temporary file is removed.
// Missing parent folders are made.
bool writeFileAtomically(const QString &path, const QByteArray &data);

// The same without waiting for the disk, for copies whose source stays (an
// import's notes and resources): a crash may leave the copy empty, but never
// half written, and the import can run again.
bool writeCopyAtomically(const QString &path, const QByteArray &data);

// Whether a file name is that of the temporary file writeFileAtomically makes
// beside its target (".NAME.NUMBER.tmp"); watchers leave such files out.
bool isAtomicWriteTemporary(const QString &fileName);

// Truncates path and writes data into the same file (same inode, attributes
// kept). Missing parent folders are made.
bool writeFileInPlace(const QString &path, const QByteArray &data);

// The whole content of a regular file; nothing for a folder or a missing file.
std::optional<QByteArray> readFile(const QString &path);

// Renames source to destination; across devices copies the whole item (files,
// folders, symbolic links, permission bits, modification dates, user extended
// attributes) and removes the source only once the copy is complete. Fails
// when destination exists. On failure the source is intact and no partial copy
// is left behind.
bool moveItem(const QString &source, const QString &destination);

// Copies the whole item as moveItem does across devices. Fails when
// destination exists; a partial copy is removed.
bool copyItem(const QString &source, const QString &destination);

// Removes the item and everything below it. Symbolic links are removed, never
// followed. False when nothing exists at path.
bool removeItem(const QString &path);

// Makes the folder and its intermediate folders. True when a folder already
// exists there.
bool makeFolder(const QString &path);

// The file system's birth time, where the file system records one.
std::optional<QDateTime> creationDate(const QString &path);
std::optional<QDateTime> modificationDate(const QString &path);
bool setModificationDate(const QString &path, const QDateTime &date);

// Whether the folder may answer a name that differs only in case: FAT,
// exFAT, NTFS and SMB mounts, or an ext4 folder with case folding on. A
// folder that cannot be asked counts as one that may.
bool folderMayIgnoreCase(const QString &folder);

} // namespace tl::platform
