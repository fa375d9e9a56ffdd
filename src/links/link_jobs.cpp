#include "links/link_jobs.h"

#include "links/attachments.h"
#include "links/rename_propagation.h"
#include "store/side_jobs.h"

namespace tl::links {

void registerLinkJobs()
{
    store::SideJobs &jobs = store::sideJobs();
    jobs.copyEmbeddedPhotos = tl_copyEmbeddedPhotosToPath;
    jobs.renameAllLinks = tl_renameAllLinksFrom;
    jobs.adjustLinksAndBacklinksAfterRename = tl_adjustLinksAndBacklinksAfterRenameFrom;
}

} // namespace tl::links
