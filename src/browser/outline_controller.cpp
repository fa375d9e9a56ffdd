#include "browser/outline_controller.h"

#include "browser/browser_keys.h"
#include "browser/later_sources.h"
#include "browser/outside_moves.h"
#include "browser/smart_books.h"
#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "foundation/scheduler.h"
#include "links/rename_propagation.h"
#include "platform/alerts.h"
#include "platform/file_watcher.h"
#include "platform/settings.h"
#include "shell/app_delegate.h"
#include "shell/app_state.h"
#include "shell/shell_hooks.h"
#include "shell/shell_keys.h"
#include "store/custom_order.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/location_settings.h"
#include "store/log.h"
#include "store/plist_file.h"
#include "store/properties_carry.h"
#include "store/recent_items.h"
#include "store/side_jobs.h"
#include "store/task_records.h"

#include <QDir>
#include <QFileInfo>

namespace tl::browser {

namespace S = keys::setting;
using store::TLStaticFunctions::tl_readLocationSpecificSettings;

namespace {

constexpr char kSmartBooksCollapsed[] = "TLSmartBooksCollapsed";

NotificationCenter &center()
{
    return NotificationCenter::defaultCenter();
}

platform::Settings &settings()
{
    return platform::settings();
}

bool isPackage(const QString &path)
{
    return store::packageExtensions().contains(store::lowerCasedExtension(path));
}

QString bookOf(const QString &path)
{
    return path::deletingLastComponent(path);
}

// The settings the user is told about when a new library brings others.
struct LibrarySettings
{
    QString inbox;
    bool manageLinks;
    bool manageContexts;
    QString markers;

    static LibrarySettings current()
    {
        platform::Settings &s = settings();
        const QString markers = s.string(QLatin1String(S::ContextMarkers));
        return {s.string(QLatin1String(S::DefaultInbox)),
                s.boolValue(QLatin1String(S::ManageLinks)),
                s.boolValue(QLatin1String(S::ContextsEnabled)) &&
                    s.boolValue(QLatin1String(S::ExtractContextsAutomatically)),
                markers.isEmpty() ? QStringLiteral("@#") : markers};
    }
};

QString activeText(bool on)
{
    return on ? QStringLiteral("Active") : QStringLiteral("Inactive");
}

QString changedSettingsMessage(const LibrarySettings &before, const LibrarySettings &after)
{
    QString message;
    const auto line = [&message](const char *name, const QString &value) {
        message += QStringLiteral("%1: %2\n").arg(QLatin1String(name), value);
    };
    if (before.inbox != after.inbox)
        line("Default Inbox", after.inbox.isEmpty()
                                  ? QStringLiteral("---")
                                  : store::tl_pathFormattedForDisplay(after.inbox));
    if (before.manageLinks != after.manageLinks)
        line("Link Management", activeText(after.manageLinks));
    if (before.manageContexts != after.manageContexts)
        line("Manage Contexts", activeText(after.manageContexts));
    if (before.markers != after.markers)
        line("Context Markers", after.markers);
    return message;
}

// The first document of the root a new library shows when it has no recent items.
QString firstDocumentOfRoot()
{
    QStringList names =
        QDir(store::libraryRoot()).entryList(QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot);
    std::sort(names.begin(), names.end(), LocalizedLess());
    for (const QString &name : names) {
        const QString full = path::appendingComponent(store::libraryRoot(), name);
        if (!store::tl_pathIsExcludedFromDisplay(full) &&
            store::knownExtensions().contains(store::lowerCasedExtension(name)))
            return full;
    }
    return {};
}

void collectExpanded(TLKSOutlineItem *item, const QSet<QString> &expanded, QStringList &out)
{
    if (!item->childrenAreBuilt())
        return;
    for (const auto &child : item->children()) {
        if (child->groupItemType == NoGroup && expanded.contains(child->fullPath()))
            out << child->fullPath();
        collectExpanded(child.get(), expanded, out);
    }
}

} // namespace

TLKSOutlineViewController::TLKSOutlineViewController() = default;

TLKSOutlineViewController::~TLKSOutlineViewController()
{
    for (const QString &key : std::as_const(m_pendingKeys))
        Scheduler::main().cancel(key);
}

QString TLKSOutlineViewController::ownKey(const QString &name) const
{
    return QStringLiteral("%1 %2").arg(name).arg(quintptr(this));
}

void TLKSOutlineViewController::scheduleOwn(const QString &name, std::function<void()> work,
                                            double delaySeconds)
{
    const QString key = ownKey(name);
    m_pendingKeys.insert(key);
    Scheduler::main().schedule(key, delaySeconds, [this, key, work = std::move(work)] {
        work();
        // The same work may have been asked for again meanwhile.
        if (!Scheduler::main().isPending(key))
            m_pendingKeys.remove(key);
    });
}

bool TLKSOutlineViewController::initFileCoordinationAndTaskLists()
{
    m_watcher = std::make_unique<platform::FileWatcher>();
    m_watcher->onReport = [this](const platform::FileWatchReport &r) { handleWatchReport(r); };
    const bool watching = m_watcher->watch(store::libraryRoot());
    updateListOfTasklists();
    // Link rewrites a crash cut short are finished for this library.
    links::finishInterruptedRewrites();
    return watching;
}

void TLKSOutlineViewController::handleWatchReport(const platform::FileWatchReport &report)
{
    using Kind = platform::FileWatchReport::Kind;
    center().post(events::LibraryItemChanged, report.toDictionary());
    switch (report.kind) {
    case Kind::Moved:
        switch (classifyOutsideMove(report)) {
        case OutsideMove::Move:
            presentedSubitemAtURLDidMoveToURL(report.path, report.newPath);
            return;
        case OutsideMove::Replacement:
            // A name that may have shown for a moment is gone; the target
            // changed, or is new.
            if (!store::tl_pathIsExcludedFromDisplay(report.path))
                presentedSubitemDidChangeAtURL(report.path);
            presentedSubitemDidChangeAtURL(report.newPath);
            return;
        case OutsideMove::SetAside:
            // Rewritten by then, or really gone.
            scheduleOwn(QStringLiteral("setAside %1").arg(report.path),
                        [this, path = report.path] { presentedSubitemDidChangeAtURL(path); });
            return;
        }
        return;
    case Kind::Rescanned:
        // Lost events: the tree and the list read the disk again.
        m_model.refreshChildren(TLKSOutlineItem::booksItem());
        m_model.refreshChildren(TLKSOutlineItem::smartBooksItem());
        center().post(events::ReloadCurrentBook);
        return;
    case Kind::WatchLimitReached:
        logLine(report.message);
        return;
    default:
        presentedSubitemDidChangeAtURL(report.path);
    }
}

void TLKSOutlineViewController::newRootSelected()
{
    const bool server = settings().contains(QLatin1String(S::LaunchLocalWebDAVServer));
    if (server)
        shell::shellHooks().terminateServer();
    initFileCoordinationAndTaskLists();
    const LibrarySettings before = LibrarySettings::current();

    m_model.resetTree();
    m_smartBooksCollapsed = false;
    center().post(events::ReloadContextSmartBook);

    if (server)
        shell::shellHooks().launchServer();
    shell::appDelegate().initAppSettings();

    if (!store::TLStaticFunctions::verifiedListOfRecentItems().isEmpty())
        store::TLStaticFunctions::showMostRecentDocument();
    else
        center().post(events::ShowItemAtPath, {{"path", firstDocumentOfRoot()}});

    const QString message = changedSettingsMessage(before, LibrarySettings::current());
    if (!message.isEmpty())
        platform::alerts().run({QLatin1String(kChangedSettingsAlert), message, {"OK"}});
    tl_expandSavedPaths();
}

void TLKSOutlineViewController::setExpanded(TLKSOutlineItem *item, bool expanded)
{
    if (item->groupItemType == SmartBooksGroup)
        m_smartBooksCollapsed = !expanded;
    else if (expanded)
        m_expanded.insert(item->fullPath());
    else
        m_expanded.remove(item->fullPath());
    tl_saveExpandedPaths();
}

bool TLKSOutlineViewController::isExpanded(TLKSOutlineItem *item) const
{
    if (item->groupItemType == SmartBooksGroup)
        return !m_smartBooksCollapsed;
    return item->groupItemType == BooksGroup || m_expanded.contains(item->fullPath());
}

void TLKSOutlineViewController::tl_saveExpandedPaths()
{
    QStringList open;
    collectExpanded(&TLKSOutlineItem::rootItem(), m_expanded, open);
    QVariantList saved;
    if (m_smartBooksCollapsed)
        saved << QString::fromLatin1(kSmartBooksCollapsed);
    // Only the deepest open paths: their parents open with them.
    for (qsizetype i = 0; i < open.size(); ++i) {
        const bool prefixOfLater =
            std::any_of(open.begin() + i + 1, open.end(),
                        [&](const QString &p) { return p.startsWith(open[i]); });
        if (!prefixOfLater)
            saved << open[i];
    }
    QVariantMap state = shell::readAppState();
    state.insert(QLatin1String(shell::kExpandedPaths), saved);
    shell::writeAppState(state);
}

QStringList TLKSOutlineViewController::tl_expandSavedPaths()
{
    QStringList opened;
    m_expanded.clear();
    m_smartBooksCollapsed = false;
    const QString root = store::libraryRoot();
    for (const QVariant &entry :
         shell::readAppState().value(QLatin1String(shell::kExpandedPaths)).toList()) {
        const QString saved = entry.toString();
        if (saved == QLatin1String(kSmartBooksCollapsed)) {
            m_smartBooksCollapsed = true;
            continue;
        }
        // Parents open before their children.
        QStringList chain;
        for (QString p = saved; p.size() > root.size() && p.startsWith(root);
             p = path::deletingLastComponent(p)) {
            if (TLKSOutlineItem::childAtPath(p) && !m_expanded.contains(p)) {
                m_expanded.insert(p);
                chain.prepend(p);
            }
        }
        opened += chain;
    }
    return opened;
}

void TLKSOutlineViewController::scheduleSmartBookUpdate()
{
    // Every change asks for the same update of every smart book: changes
    // while one waits are in it, so a burst, wherever it is, ends in one.
    const QString name = QStringLiteral("smartBooks");
    if (Scheduler::main().isPending(ownKey(name)))
        return;
    scheduleOwn(name, [this] {
        for (int type = kFirstListedSmartType; type <= kLastListedSmartType; ++type)
            updateSmartBookOfType(type);
    });
}

void TLKSOutlineViewController::presentedSubitemDidChangeAtURL(const QString &path)
{
    const QString root = store::libraryRoot();
    const QString name = path::lastComponent(path);
    // A task list's row counts its tasks: any change in it may change them.
    if (name == QLatin1String(names::TasklistDetails) ||
        name == QLatin1String(names::TasklistDetailsInactive) ||
        store::tl_bookIsTasklist(bookOf(path)))
        reloadBadgeOf(bookOf(path));
    bool isDirectory = false;
    if (store::tl_fileExistsAtPathIsDirectory(path, &isDirectory)) {
        const QString resources = path::appendingComponent(root, QLatin1String(names::TLResources));
        if (isDirectory && path.startsWith(resources + u'/'))
            return;
        if (isDirectory && isPackage(path)) {
            center().post(events::FileModifiedOnDisk, {{"path", path}});
            return;
        }
        if (path == path::appendingComponent(root, "TLResources/Misc/AvailableTags.txt")) {
            updateSmartBookOfType(Contexts);
            center().post(events::ReloadContextSmartBook);
            return;
        }
        if (path == path::appendingComponent(root, QLatin1String(names::SettingsFile))) {
            tl_readLocationSpecificSettings();
            return;
        }
        if (store::tl_pathIsExcludedFromDisplay(path) && !path.endsWith(u".plist")) {
            if (path.contains(QStringLiteral("/TLImages/")))
                center().post(events::FileModifiedOnDisk, {{"path", path}});
            logLine(QStringLiteral("ignoring change: %1").arg(path));
            return;
        }
        logLine(QStringLiteral("Changed: %1").arg(path));
        if (name == QLatin1String(names::TasklistDetails) ||
            name == QLatin1String(names::TasklistDetailsInactive)) {
            const bool active = name == QLatin1String(names::TasklistDetails);
            updateListOfTasklistRemovingAdding(active ? bookOf(path) : QString(),
                                               active ? QString() : bookOf(path));
            center().post(events::UpdateAllTaskLists);
        } else if (isDirectory && store::tl_bookIsTasklist(path)) {
            updateListOfTasklistsQuick();
        }
        if (path.endsWith(u".plist")) {
            m_plistsToCollect << path;
            scheduleOwn(
                QStringLiteral("collectTags"),
                [this] { tl_collectTagsInPlists(std::exchange(m_plistsToCollect, {})); }, 0);
            const bool bookProperties = name == QLatin1String(names::BookProperties);
            const QString owner = bookProperties ? bookOf(path) : path::deletingExtension(path);
            if (settings().boolValue(QLatin1String(S::ManageLinks))) {
                const QString referenced = store::readPlistDictionary(path)
                                               .value(QLatin1String(keys::property::ReferencedPath))
                                               .toString();
                if (!referenced.isEmpty() && referenced != store::tl_normalizedPath(owner)) {
                    logLine(QStringLiteral("collectTags: backlinkref mismatch for %1: %2")
                                .arg(owner, referenced));
                    tl_repairBrokenBacklink(owner);
                }
            }
            // A new order from another machine shows without a full reload.
            if (bookProperties) {
                if (TLKSOutlineItem *book = owner == root ? TLKSOutlineItem::booksItem()
                                                          : TLKSOutlineItem::childAtPath(owner)) {
                    m_model.resortChildren(book);
                    m_model.reloadItem(book);
                }
            }
        }
        center().post(events::FileModifiedOnDisk, {{"path", path}});
        if (isDirectory && !isPackage(path) && !TLKSOutlineItem::childAtPath(path) &&
            !store::tl_pathIsDotFile(path))
            m_model.insertChildAtPath(path);
    } else {
        logLine(QStringLiteral("DELETED: %1").arg(path));
        const QString extension = path::extension(path);
        if (name == QLatin1String(names::TasklistDetails)) {
            const QString book = bookOf(path);
            Scheduler::main().schedule(
                QStringLiteral("tasklistRemoval %1").arg(path), kFollowUpDelay,
                [book] { updateListOfTasklistRemovingAdding(book, QString()); });
        } else if (!extension.isEmpty() && extension != u"plist") {
            store::tl_changePathInTagDBToPath(path, QString());
            const QString book = bookOf(path);
            if (store::tl_bookIsTasklist(book))
                Scheduler::main().schedule(QStringLiteral("taskCleanup %1").arg(book),
                                           kFollowUpDelay,
                                           [book] { tl_taskPlistChangedAtPath(book); });
        } else if (extension.isEmpty()) {
            removeFolderWithPath(path);
            updateListOfTasklistsQuick();
        }
        center().post(events::FileDeletedFromDisk, {{"path", path}});
    }
    scheduleSmartBookUpdate();
}

void TLKSOutlineViewController::reloadBadgeOf(const QString &book)
{
    m_model.reloadItem(book == store::libraryRoot() ? TLKSOutlineItem::booksItem()
                                                    : TLKSOutlineItem::childAtPath(book));
}

void TLKSOutlineViewController::removeFolderWithPath(const QString &path)
{
    TLKSOutlineItem *item = TLKSOutlineItem::childAtPath(path);
    m_model.removeItem(item);
}

void TLKSOutlineViewController::followInbox(const QString &source, const QString &target)
{
    const QString inbox = settings().string(QLatin1String(S::DefaultInbox));
    if (inbox.isEmpty())
        return;
    const QString root = store::libraryRoot();
    const QString inboxPath = path::appendingComponent(root, inbox);
    bool changed = false;
    if (localizedCompare(inboxPath, source) == 0 || inboxPath.startsWith(source + u'/')) {
        if (store::tl_itemIsTrashed(target))
            settings().remove(QLatin1String(S::DefaultInbox));
        else
            settings().set(QLatin1String(S::DefaultInbox),
                           store::tl_normalizedPath(target + inboxPath.mid(source.size())));
        changed = true;
    }
    if (changed || source.startsWith(inboxPath + u'/') || target.startsWith(inboxPath + u'/'))
        center().post(events::UpdateDefaultInbox);
    store::TLStaticFunctions::tl_writeLocationSpecificSettings();
}

// Links follow an item another program moved: once its properties file has
// followed it, the stored path tells where it was.
void TLKSOutlineViewController::repairLinksAfterOutsideMove(const QString &target)
{
    Scheduler::main().schedule(QStringLiteral("repairLinks %1").arg(target),
                               kPropertiesFollowDelay + kFollowUpDelay,
                               [target] { tl_repairBrokenBacklink(target); });
}

void TLKSOutlineViewController::presentedSubitemAtURLDidMoveToURL(const QString &source,
                                                                  const QString &target)
{
    logLine(QStringLiteral("item moved: %1 %2").arg(source, target));
    const QString details = QLatin1String(names::TasklistDetails);
    if (source.endsWith(details) || target.endsWith(details)) {
        if (source.endsWith(details))
            updateListOfTasklistRemovingAdding(bookOf(source), QString());
        if (target.endsWith(details))
            updateListOfTasklistRemovingAdding(QString(), bookOf(target));
        center().post(events::UpdateAllTaskLists);
    }
    center().post(events::FileMoved,
                  {{"originalPath", source}, {"newPath", target}, {"silentReload", "1"}});
    followInbox(source, target);

    const bool inLibrary =
        store::tl_itemIsChildOfTavelle(target) && !store::tl_itemIsTrashed(target);
    bool isDirectory = false;
    const bool exists = store::tl_fileExistsAtPathIsDirectory(target, &isDirectory);
    if (exists && (!isDirectory || isPackage(target))) {
        if (!QFileInfo::exists(store::tl_plistPath(target)) &&
            QFileInfo::exists(store::tl_plistPath(source)))
            Scheduler::main().schedule(QStringLiteral("tryToMovePlistAlong %1").arg(source),
                                       kPropertiesFollowDelay, [source, target] {
                                           store::movePropertiesFile(source, target);
                                           store::tl_copyEmbeddedPhotosToPath(source, target);
                                       });
        if (inLibrary) {
            store::tl_changePathInTagDBToPath(source, target);
            if (store::tl_itemIsTask(target))
                store::tl_moveTaskToPath(source, target);
            store::tl_changeSortOrderToPath(source, target);
        } else {
            store::tl_changePathInTagDBToPath(source, QString());
            const QString book = bookOf(source);
            if (store::tl_bookIsTasklist(book))
                Scheduler::main().schedule(QStringLiteral("taskCleanup %1").arg(book),
                                           kFollowUpDelay,
                                           [book] { tl_taskPlistChangedAtPath(book); });
        }
        for (const QString &parent : {bookOf(source), bookOf(target)})
            m_model.reloadItem(TLKSOutlineItem::childAtPath(parent));
        if (inLibrary)
            repairLinksAfterOutsideMove(target);
        return;
    }
    if (exists && isDirectory) {
        updateListOfTasklistsQuick();
        if (inLibrary) {
            store::tl_changePathInTagDBToPath(source, target);
            store::tl_changeSortOrderToPath(source, target);
            repairLinksAfterOutsideMove(target);
        }
    }
    moveInTree(source, target);
}

void TLKSOutlineViewController::moveInTree(const QString &source, const QString &target)
{
    const QString root = store::libraryRoot();
    const bool followSelection = localizedCompare(selectedBookPath, source) == 0 ||
                                 selectedBookPath.startsWith(source + u'/');
    const auto itemOf = [&root](const QString &p) {
        return p == root ? TLKSOutlineItem::booksItem() : TLKSOutlineItem::childAtPath(p);
    };
    TLKSOutlineItem *oldParent = itemOf(bookOf(source));
    TLKSOutlineItem *newParent =
        store::tl_itemIsChildOfTavelle(target) && !store::tl_itemIsTrashed(target)
            ? itemOf(bookOf(target))
            : nullptr;
    TLKSOutlineItem *item =
        oldParent ? oldParent->childWithTitle(path::lastComponent(source)) : nullptr;

    if (item && newParent)
        m_model.moveItem(item, newParent, target);
    else if (newParent)
        m_model.insertChildAtPath(target);
    else if (item)
        m_model.removeItem(item);
    if (!item && oldParent == newParent && oldParent)
        logLine(QStringLiteral("CATCH Exception while moving entry %1 to %2 (%3 to %4)")
                    .arg(source, target)
                    .arg(-1)
                    .arg(-1));
    if (followSelection) {
        selectedBookPath = target + selectedBookPath.mid(source.size());
        center().post(events::NewBookSelected, {{"path", selectedBookPath}});
    }
}

void TLKSOutlineViewController::updateSmartBookOfType(int type)
{
    const bool shouldExist = smartBookShouldExist(type);
    TLKSOutlineItem *present = TLKSOutlineItem::smartBookOfType(type);
    if (shouldExist && !present) {
        m_model.insertSmartBook(type);
    } else if (shouldExist && present) {
        m_model.refreshChildren(present);
        m_model.reloadItem(present);
    } else if (present) {
        m_model.removeItem(present);
    }
}

void TLKSOutlineViewController::showSearchResultsBook(bool shown)
{
    if (shown)
        m_model.insertSmartBook(SearchResults);
    else
        m_model.removeItem(TLKSOutlineItem::smartBookOfType(SearchResults));
}

} // namespace tl::browser
