#include "links/backlink_upkeep.h"

#include "contexts/context_keys.h"
#include "contexts/tag_files.h"
#include "foundation/clock.h"
#include "foundation/compare.h"
#include "foundation/dates.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "links/backlinks.h"
#include "links/links_keys.h"
#include "links/reference_scan.h"
#include "links/rename_propagation.h"
#include "links/tree_walk.h"
#include "platform/alerts.h"
#include "platform/file_ops.h"
#include "platform/settings.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"

#include <QElapsedTimer>

namespace tl::links {

namespace {

// In Info.plist: the item count of the last check of the whole library.
constexpr char kNumberOfDocumentsWithBacklinks[] = "numberOfDocumentsWithBacklinks";

bool manageLinks()
{
    return platform::settings().boolValue(QLatin1String(keys::setting::ManageLinks));
}

void reloadShownDocumentIfBacklinksShow()
{
    if (platform::settings().boolValue(QStringLiteral("appendBacklinksToText")))
        NotificationCenter::defaultCenter().post(QLatin1String(events::ReloadCurrentDocument), {});
}

QString refreshMessage(int documents, int references)
{
    if (documents == 0)
        return QStringLiteral("No editable documents");
    const QString links = references == 0   ? QStringLiteral("No links found")
                          : references == 1 ? QStringLiteral("One link found")
                                            : QStringLiteral("Found %1 Links").arg(references);
    const QString in = documents == 1 ? QStringLiteral("in one document")
                                      : QStringLiteral("in %1 Documents").arg(documents);
    return links + u' ' + in;
}

QString checkMessage(bool repair, bool remove, int count)
{
    if (remove)
        return count == 0   ? QStringLiteral("No Backlinks to Remove")
               : count == 1 ? QStringLiteral("Removed Backlinks from One Document")
                            : QStringLiteral("Removed Backlinks from %1 Documents").arg(count);
    if (count == 0)
        return QStringLiteral("No Broken Backlinks");
    if (repair)
        return count == 1 ? QStringLiteral("One Broken Backlink Repaired")
                          : QStringLiteral("%1 Broken Backlinks Repaired").arg(count);
    return count == 1 ? QStringLiteral("One Broken Backlink Found")
                      : QStringLiteral("Found %1 broken backlinks").arg(count);
}

// An item with neither backlinks nor references has nothing to break.
bool hasNothingToBreak(const QString &item)
{
    return backlinksOf(item).isEmpty() &&
           (!isLinkBearing(item) || tl_arrayOfAllReferencesInDocument(item).isEmpty());
}

QStringList commonTrailingComponentsStripped(QStringList &a, QStringList &b)
{
    while (!a.isEmpty() && !b.isEmpty() && localizedCompare(a.last(), b.last()) == 0) {
        a.removeLast();
        b.removeLast();
    }
    return a;
}

void offerRepair(const QStringList &items, const QStringList &stored)
{
    QString text = QStringLiteral(
        "The paths of these documents differ from the backlinks used by other documents. "
        "Tavelle can repair these backlinks and make them point to the correct documents again.");
    for (qsizetype i = 0; i < items.size(); ++i)
        text += QStringLiteral("\n\n%1\n( %2 )")
                    .arg(store::tl_pathFormattedForDisplay(items[i]),
                         store::tl_pathFormattedForDisplay(stored[i]));
    if (platform::alerts().run({checkMessage(false, false, int(items.size())),
                                text,
                                {QStringLiteral("Repair"), QStringLiteral("Cancel")}}) != 0)
        return;
    for (const QString &item : items)
        tl_repairBrokenBacklink(item);
}

} // namespace

QStringList tl_refreshBacklinksForReferencedDocuments(const QString &document)
{
    if (!manageLinks())
        return {};
    if (hasMismatch(document)) {
        logLine(QStringLiteral("Resolving link mismatch for %1").arg(document));
        tl_adjustLinksAndBacklinksAfterRenameFrom(store::libraryRoot() + referencedPathOf(document),
                                                  document);
        return {};
    }
    const QStringList references = tl_verifiedArrayOfReferencedDocuments(document);
    for (const QString &referenced : references)
        tl_addBacklink(referenced, document);
    const QString normalized = store::tl_normalizedPath(document);
    if (!references.isEmpty() && referencedPathOf(document) != normalized) {
        logLine(QStringLiteral("setting backlinkRef for %1").arg(document));
        setReferencedPath(document, normalized);
    }
    return references;
}

RefreshReport tl_refreshAllBacklinksStartingAtReferenceDate(const QString &book, bool sinceLast)
{
    QElapsedTimer timer;
    timer.start();
    const QString root = store::libraryRoot();
    const bool wholeLibrary = book == root;
    const QString dateKey = QLatin1String(contexts::keys::AutocollectDateBacklinks);
    QDateTime limit = distantPast();
    if (sinceLast && wholeLibrary && contexts::infoValue(dateKey).isValid())
        limit = contexts::infoValue(dateKey).toDateTime();
    const QDateTime started = tl::clock().now();

    RefreshReport report;
    int items = 0;
    walkTree(book, [&](const WalkEntry &entry) {
        ++items;
        if (entry.isFolder) {
            if (!referencedPathOf(entry.path).isEmpty())
                setReferencedPath(entry.path, store::tl_normalizedPath(entry.path));
            return true;
        }
        if (!isLinkBearing(entry.path))
            return false;
        if (sinceLast && platform::modificationDate(entry.path).value_or(started) < limit)
            return false;
        ++report.documents;
        report.references += int(tl_refreshBacklinksForReferencedDocuments(entry.path).size());
        return false;
    });
    if (wholeLibrary)
        contexts::setInfoValue(dateKey, started);
    report.message = refreshMessage(report.documents, report.references);
    reloadShownDocumentIfBacklinksShow();
    logLine(QStringLiteral("***** %1 items, %2 refs in %3")
                .arg(items)
                .arg(report.references)
                .arg(double(timer.elapsed()) / 1000));
    return report;
}

void tl_repairBrokenBacklink(const QString &item)
{
    const QString root = store::libraryRoot();
    const QString stored = root + referencedPathOf(item);
    if (store::tl_fileExistsAtPathIsDirectory(stored)) {
        logLine(
            QStringLiteral("### MISMATCH, but referencedPath still exists, removing pops %1 (%2)")
                .arg(item, stored));
        tl_removeBacklinks(item);
        return;
    }
    logLine(QStringLiteral("### MISMATCH: should be %1, but is %2").arg(stored, item));
    bool isFolder = false;
    if (!store::tl_fileExistsAtPathIsDirectory(item, &isFolder))
        return;
    if (!isFolder || isPackageExtension(store::lowerCasedExtension(item))) {
        tl_adjustLinksAndBacklinksAfterRenameFrom(stored, item);
        return;
    }
    QStringList was = path::components(stored);
    QStringList now = path::components(item);
    commonTrailingComponentsStripped(was, now);
    if (!was.isEmpty() && !now.isEmpty())
        tl_renameAllLinksFrom(path::joinedComponents(was), path::joinedComponents(now));
    setReferencedPath(item, store::tl_normalizedPath(item));
}

CheckReport tl_findBrokenBacklinksSilently(const QString &book, bool silently, bool repair,
                                           bool remove)
{
    QElapsedTimer timer;
    timer.start();
    CheckReport report;
    QStringList mismatched;
    QStringList stored;
    int count = 0;
    walkTree(book, [&](const WalkEntry &entry) {
        if (isSkippedByLinkWalks(entry.path))
            return false;
        ++report.items;
        if (remove) {
            if (tl_removeBacklinks(entry.path)) {
                logLine(QStringLiteral("deleting backlink for: %1").arg(entry.path));
                ++count;
            }
            return true;
        }
        if (!hasMismatch(entry.path))
            return true;
        if (!entry.isFolder && hasNothingToBreak(entry.path)) {
            setReferencedPath(entry.path, store::tl_normalizedPath(entry.path));
            return true;
        }
        ++count;
        if (repair) {
            tl_repairBrokenBacklink(entry.path);
        } else {
            mismatched << entry.path;
            stored << store::libraryRoot() + referencedPathOf(entry.path);
        }
        return true;
    });
    if (book == store::libraryRoot())
        contexts::setInfoValue(QLatin1String(kNumberOfDocumentsWithBacklinks), report.items);
    report.mismatches = count;
    for (qsizetype i = 0; i < mismatched.size(); ++i)
        report.found << QStringLiteral("%1 ( %2 )").arg(mismatched[i], stored[i]);
    report.message = checkMessage(repair, remove, count);
    if (!silently && !mismatched.isEmpty())
        offerRepair(mismatched, stored);
    if (count == 0)
        reloadShownDocumentIfBacklinksShow();
    logLine(QStringLiteral("***** backlink consistency check: %1 items, %2 mismatches, in %3")
                .arg(report.items)
                .arg(count)
                .arg(double(timer.elapsed()) / 1000));
    return report;
}

void repairAfterCollection(const QString &item)
{
    if (!manageLinks() || !hasMismatch(item))
        return;
    if (hasNothingToBreak(item)) {
        logLine(QStringLiteral("collectTags: Autocorrecting backlinkref mismatch for %1: %2")
                    .arg(item, referencedPathOf(item)));
        setReferencedPath(item, store::tl_normalizedPath(item));
        return;
    }
    tl_repairBrokenBacklink(item);
}

QStringList backlinksAfterSave(const QString &document, const QStringList &previousReferences,
                               const QString &renamedFrom)
{
    if (!manageLinks())
        return previousReferences;
    if (!renamedFrom.isEmpty()) {
        for (const QString &referenced : previousReferences)
            tl_changeBacklinkFrom(referenced, renamedFrom, document);
        tl_adjustLinksAndBacklinksAfterRenameFrom(renamedFrom, document);
        return tl_verifiedArrayOfReferencedDocuments(document);
    }
    const QStringList references = tl_verifiedArrayOfReferencedDocuments(document);
    for (const QString &old : previousReferences) {
        if (!references.contains(old))
            tl_changeBacklinkFrom(old, document, QString());
    }
    for (const QString &added : references) {
        if (!previousReferences.contains(added))
            tl_addBacklink(added, document);
    }
    return references;
}

} // namespace tl::links
