#include "store/side_jobs.h"

namespace tl::store {

void tl_changePathInTagDBToPath(const QString &, const QString &)
{
    // The contexts subsystem fills this in.
}

void tl_moveTaskToPath(const QString &, const QString &)
{
    // The tasks subsystem fills this in.
}

void tl_copyTaskDetailsToPath(const QString &, const QString &)
{
    // The tasks subsystem fills this in.
}

void tl_copyEmbeddedPhotosToPath(const QString &, const QString &)
{
    // The attachments of the links subsystem fill this in.
}

void tl_renameAllLinksFrom(const QString &, const QString &)
{
    // The links subsystem fills this in.
}

void tl_adjustLinksAndBacklinksAfterRenameFrom(const QString &, const QString &)
{
    // The links subsystem fills this in.
}

} // namespace tl::store
