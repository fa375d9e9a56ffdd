#pragma once

#include <QString>
#include <QStringList>

namespace server {

// Whether path stays at or below the root once the symbolic links of its
// existing part are resolved (the root's too). A missing rest is taken as it
// is; a dangling link counts as a name that does not exist.
bool staysBelowRoot(const QString &path, const QString &root);

// Maps a request URI to a path below the document root, with its symbolic
// links leading nowhere outside it. With allowDirectory
// the path is the answer, existing or not; otherwise a directory gives the
// first of indexNames that is a plain file in it, or nothing. Nothing (a null
// string) also for a URI that leads outside the root; failure then says why,
// in the words of the log.
QString mapURIToFilePath(const QString &documentRoot, const QString &uri, bool allowDirectory,
                         const QStringList &indexNames, QString &failure);

} // namespace server
