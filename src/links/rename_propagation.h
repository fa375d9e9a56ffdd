#pragma once

#include <QString>
#include <QStringList>

// Links follow moves: when an item moved, the documents that link to it, the
// moved document's own relative links and the backlink lists of what it
// links to are rewritten, one move after the other on the serial queue.
namespace tl::links {

// After a document moved from `from` to `to`. Nothing when `from` still
// exists: a copy is no rename.
void tl_adjustLinksAndBacklinksAfterRenameFrom(const QString &from, const QString &to);
// After a book moved from `from` to `to`: everything below it.
void tl_renameAllLinksFrom(const QString &from, const QString &to);

// Asks whether to update the links to an item that has backlinks or
// references, and does what the answer says.
void tl_askToAdjustLinksAndBacklinksAfterRenameFrom(const QString &from, const QString &to);

// The same work, done at once on the calling thread, the documents written
// together as one batch whose temporary files carry `tag` (empty: a fresh
// one). False when the batch must run again (see RewriteBatch::commit).
bool adjustLinksAndBacklinksNow(const QString &from, const QString &to, const QByteArray &tag = {});
bool renameAllLinksNow(const QString &from, const QString &to, const QByteArray &tag = {});

// Finishes the rewrites a crash interrupted (on the serial queue); answers
// one line for each, to report.
QStringList finishInterruptedRewrites();

// Waits for every rewrite posted so far.
void waitForLinkRewrites();

// Whether a document's kind may hold links that are kept up to date.
bool isLinkBearing(const QString &path);

} // namespace tl::links
