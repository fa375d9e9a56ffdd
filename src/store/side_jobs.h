#pragma once

#include <QString>
#include <functional>

// The jobs that keep tasks, contexts, attachments and links in step when an
// item moves or is copied. Those subsystems sit above the store, so each
// registers its job here at start; a job nobody registered does nothing. The
// item operations call them in their fixed order.
namespace tl::store {

using PathJob = std::function<void(const QString &source, const QString &target)>;

struct SideJobs
{
    PathJob changePathInTagDB;
    PathJob moveTask;
    PathJob copyTaskDetails;
    PathJob copyEmbeddedPhotos;
    PathJob renameAllLinks;
    PathJob adjustLinksAndBacklinksAfterRename;
};

// The process's registered jobs.
SideJobs &sideJobs();

// The tag database's records follow the item.
void tl_changePathInTagDBToPath(const QString &source, const QString &target);
// The task record of a document in a task list follows it.
void tl_moveTaskToPath(const QString &source, const QString &target);
// A copy in the library takes the task record of its source along.
void tl_copyTaskDetailsToPath(const QString &source, const QString &target);
// The attachments of a document go with it into the target's book.
void tl_copyEmbeddedPhotosToPath(const QString &source, const QString &target);
// Links into a renamed book are rewritten.
void tl_renameAllLinksFrom(const QString &source, const QString &target);
// Links to a renamed document, and its backlinks, are rewritten.
void tl_adjustLinksAndBacklinksAfterRenameFrom(const QString &source, const QString &target);

} // namespace tl::store
