#pragma once

#include <QString>
#include <mutex>

// One writer at a time per file within the process: a whole-file rewrite
// (a document's links, an item's backlinks) reads, changes and writes while
// holding the lock of its path. Locks are striped by path; never hold two.
namespace tl::links {

std::unique_lock<std::mutex> lockPath(const QString &path);

} // namespace tl::links
