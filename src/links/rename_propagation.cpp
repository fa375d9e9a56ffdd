#include "links/rename_propagation.h"

#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "foundation/serial_queue.h"
#include "links/backlinks.h"
#include "links/link_rewrite.h"
#include "links/reference_scan.h"
#include "links/rewrite_batch.h"
#include "links/rewrite_journal.h"
#include "links/tree_walk.h"
#include "platform/alerts.h"
#include "platform/staged_writes.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/plist_file.h"

#include <QElapsedTimer>
#include <QFileInfo>

namespace tl::links {

namespace {

bool exists(const QString &path)
{
    return store::existsInEitherCanonicalForm(path);
}

// `path` is `folder` or lies below it.
bool isAtOrBelow(const QString &path, const QString &folder)
{
    return path == folder || path.startsWith(folder + u'/');
}

QString replacingPrefix(const QString &path, const QString &prefix, const QString &replacement)
{
    return replacement + path.mid(prefix.size());
}

// The note goes only once the rewrite is on disk; a rewrite that could not
// get there is finished at the next start.
void runJournaled(const PendingRewrite &rewrite, const QString &note)
{
    SerialQueue::main().post([note, rewrite] {
        const bool done = rewrite.kind == PendingRewrite::Kind::Book
                              ? renameAllLinksNow(rewrite.from, rewrite.to, rewrite.tag)
                              : adjustLinksAndBacklinksNow(rewrite.from, rewrite.to, rewrite.tag);
        if (done)
            finishRewrite(note);
    });
}

void runJournaled(PendingRewrite::Kind kind, const QString &from, const QString &to)
{
    const PendingRewrite rewrite{kind, from, to, platform::StagedWrites::newTag()};
    runJournaled(rewrite, beginRewrite(rewrite));
}

} // namespace

bool isLinkBearing(const QString &path)
{
    static const QStringList kinds{"md", "markdown", "text", "mdown", "rmd", "txt", "html"};
    return kinds.contains(store::lowerCasedExtension(path));
}

bool adjustLinksAndBacklinksNow(const QString &from, const QString &to, const QByteArray &tag)
{
    const QString root = store::libraryRoot();
    RewriteBatch batch(tag);
    batch.renameLinks(to, from, to);
    for (const QString &linker : backlinksOf(to))
        batch.renameLinks(root + linker, from, to);
    if (!batch.commit())
        return false;
    // The backlink lists change once the documents hold their new text.
    BacklinkLists lists(batch.tag());
    if (QFileInfo::exists(store::propertiesFilePath(to)))
        lists.setReferencedPath(to, store::tl_normalizedPath(to));
    if (isLinkBearing(to)) {
        for (const QString &referenced : tl_verifiedArrayOfReferencedDocuments(to))
            lists.changeBacklinkFrom(referenced, from, to);
    }
    return lists.commit();
}

void tl_adjustLinksAndBacklinksAfterRenameFrom(const QString &from, const QString &to)
{
    if (exists(from)) {
        logLine(
            QStringLiteral("not changing links & backlinks because old path still exists\n%1\n%2")
                .arg(from, to));
        return;
    }
    runJournaled(PendingRewrite::Kind::Document, from, to);
}

bool renameAllLinksNow(const QString &from, const QString &to, const QByteArray &tag)
{
    QElapsedTimer timer;
    timer.start();
    const QString root = store::libraryRoot();
    RewriteBatch batch(tag);
    QStringList documents;
    // Each moved item's new backlink list, stored once the documents are
    // rewritten: until then its mismatch tells a resumed run where to look.
    QList<std::pair<QString, QStringList>> backlinkLists;
    int items = 0;
    const auto visit = [&](const WalkEntry &entry) {
        if (isSkippedByLinkWalks(entry.path))
            return false;
        ++items;
        if (!entry.isFolder && isLinkBearing(entry.path))
            documents.append(entry.path);
        if (!hasMismatch(entry.path))
            return true;
        const QString old = replacingPrefix(entry.path, to, from);
        const bool oldExists = exists(root + referencedPathOf(entry.path));
        QStringList handled;
        for (const QString &backlink : backlinksOf(entry.path)) {
            QString linker = root + backlink;
            if (isAtOrBelow(linker, from)) {
                linker = replacingPrefix(linker, from, to);
                batch.renameLinks(linker, from, to);
            } else if (oldExists) {
                continue;
            } else {
                batch.renameLinks(linker, old, entry.path);
            }
            handled.append(store::tl_normalizedPath(linker));
        }
        backlinkLists.append({entry.path, handled});
        return true;
    };
    // The book itself may be linked to as well.
    visit({to, true});
    walkTree(to, visit);
    for (const QString &document : documents)
        batch.renameLinks(document, replacingPrefix(document, to, from), document);
    if (!batch.commit())
        return false;
    BacklinkLists lists(batch.tag());
    for (const auto &[item, backlinks] : backlinkLists) {
        if (backlinks.isEmpty())
            lists.removeBacklinks(item);
        else
            lists.setBacklinks(item, backlinks);
    }
    for (const QString &document : documents) {
        const QString old = replacingPrefix(document, to, from);
        const bool oldExists = exists(old);
        for (const QString &referenced : tl_verifiedArrayOfReferencedDocuments(document)) {
            if (oldExists)
                lists.addBacklink(referenced, document);
            else
                lists.changeBacklinkFrom(referenced, old, document);
        }
    }
    if (!lists.commit())
        return false;
    logLine(QStringLiteral("***** updated references in %1 items in %2")
                .arg(items)
                .arg(double(timer.elapsed()) / 1000));
    return true;
}

void tl_renameAllLinksFrom(const QString &from, const QString &to)
{
    runJournaled(PendingRewrite::Kind::Book, from, to);
}

void tl_askToAdjustLinksAndBacklinksAfterRenameFrom(const QString &from, const QString &to)
{
    const QStringList backlinks = backlinksOf(to);
    if (backlinks.isEmpty() && tl_arrayOfAllReferencesInDocument(to).isEmpty())
        return;
    const QString count =
        backlinks.size() == 1
            ? QStringLiteral("One document is linking to this document.")
            : QStringLiteral("%1 documents are linking to this document.").arg(backlinks.size());
    const int answer = platform::alerts().run(
        {QStringLiteral("Update Links"),
         count + u'\n' + QStringLiteral("Do you want to update the links?"),
         {QStringLiteral("Update"), QStringLiteral("Do not Update"), QStringLiteral("Cancel")}});
    if (answer == 0)
        tl_adjustLinksAndBacklinksAfterRenameFrom(from, to);
    else if (answer == 1)
        tl_removeBacklinks(to);
}

QStringList finishInterruptedRewrites()
{
    QStringList report;
    for (const auto &[note, rewrite] : unfinishedRewrites()) {
        report << QStringLiteral("finishing an interrupted link rewrite after the move of %1 to %2")
                      .arg(rewrite.from, rewrite.to);
        logLine(report.last());
        runJournaled(rewrite, note);
    }
    return report;
}

void waitForLinkRewrites()
{
    SerialQueue::main().waitUntilIdle();
}

} // namespace tl::links
