#pragma once

#include <QtGlobal>
#include <functional>

namespace tl {

// Runs work(i) for every i below count on up to `threads` threads at once,
// the calling thread among them, and returns when all are done. For work that
// mostly waits on the disk, whose waits then overlap; `work` must be safe to
// run on several threads.
void forEachConcurrently(qsizetype count, int threads, const std::function<void(qsizetype)> &work);

} // namespace tl
