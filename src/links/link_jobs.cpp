#include "links/link_jobs.h"

#include "links/attachments.h"
#include "store/side_jobs.h"

namespace tl::links {

void registerLinkJobs()
{
    store::SideJobs &jobs = store::sideJobs();
    jobs.copyEmbeddedPhotos = tl_copyEmbeddedPhotosToPath;
}

} // namespace tl::links
