#pragma once

// Registers the link and attachment jobs the store runs after moves.
namespace tl::links {

void registerLinkJobs();

} // namespace tl::links
