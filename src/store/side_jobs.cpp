#include "store/side_jobs.h"

namespace tl::store {

namespace {
void run(const PathJob &job, const QString &source, const QString &target)
{
    if (job)
        job(source, target);
}
} // namespace

SideJobs &sideJobs()
{
    static SideJobs jobs;
    return jobs;
}

void tl_changePathInTagDBToPath(const QString &source, const QString &target)
{
    run(sideJobs().changePathInTagDB, source, target);
}

void tl_moveTaskToPath(const QString &source, const QString &target)
{
    run(sideJobs().moveTask, source, target);
}

void tl_copyTaskDetailsToPath(const QString &source, const QString &target)
{
    run(sideJobs().copyTaskDetails, source, target);
}

void tl_copyEmbeddedPhotosToPath(const QString &source, const QString &target)
{
    run(sideJobs().copyEmbeddedPhotos, source, target);
}

void tl_renameAllLinksFrom(const QString &source, const QString &target)
{
    run(sideJobs().renameAllLinks, source, target);
}

void tl_adjustLinksAndBacklinksAfterRenameFrom(const QString &source, const QString &target)
{
    run(sideJobs().adjustLinksAndBacklinksAfterRename, source, target);
}

} // namespace tl::store
