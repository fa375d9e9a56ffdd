#include "tasks/task_lists.h"

#include "foundation/clock.h"
#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "platform/settings.h"
#include "store/conflict_copies.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "tasks/task_details.h"
#include "tasks/task_keys.h"
#include "tasks/task_list.h"

#include <QFile>
#include <QFileInfo>
#include <dirent.h>
#include <functional>
#include <sys/stat.h>

namespace tl::tasks {

namespace {

const QString kPlistName = QLatin1String(names::TasklistDetails);

bool isDirectory(const QString &folder, const dirent *entry)
{
    if (entry->d_type != DT_UNKNOWN)
        return entry->d_type == DT_DIR;
    struct stat st
    {
    };
    const QByteArray full = QFile::encodeName(folder + u'/' + QFile::decodeName(entry->d_name));
    return ::lstat(full.constData(), &st) == 0 && S_ISDIR(st.st_mode);
}

// Each entry of a folder with whether it is a folder, from the entry types
// the directory itself holds, so no file is looked at on its own.
void forEachEntry(const QString &folder, const std::function<void(const QString &, bool)> &visit)
{
    DIR *dir = ::opendir(QFile::encodeName(folder).constData());
    if (!dir)
        return;
    while (const dirent *entry = ::readdir(dir)) {
        if (qstrcmp(entry->d_name, ".") == 0 || qstrcmp(entry->d_name, "..") == 0)
            continue;
        visit(QFile::decodeName(entry->d_name), isDirectory(folder, entry));
    }
    ::closedir(dir);
}

void collectTaskLists(const QString &folder, QStringList &books)
{
    forEachEntry(folder, [&](const QString &name, bool directory) {
        if (!directory) {
            if (name == kPlistName)
                books << folder;
            return;
        }
        if (name.contains(u".Trash") || name.contains(u".TLTrash") ||
            store::packageExtensions().contains(store::lowerCasedExtension(name)))
            return;
        collectTaskLists(folder + u'/' + name, books);
    });
}

QStringList walkForTaskLists()
{
    const QString root = store::libraryRoot();
    QStringList books;
    if (!root.isEmpty())
        collectTaskLists(root, books);
    return books;
}

// The stored list, whether it was last written here or read from disk.
QStringList storedTaskLists()
{
    return platform::settings().object(QLatin1String(keys::AllTaskLists)).toStringList();
}

QString storedEntry(const QString &book)
{
    const QString relative = store::tl_normalizedPath(book);
    return relative.isEmpty() ? QStringLiteral("/") : relative;
}

// A stored entry or an argument as a book relative to the root, without
// slashes at either end: the plist's folder, "" for the root.
QString relativeBook(QString entry)
{
    if (entry.endsWith(kPlistName) || entry.endsWith(QLatin1String(names::TasklistDetailsInactive)))
        entry = path::deletingLastComponent(entry);
    const QString root = store::libraryRoot();
    if (entry == root || entry.startsWith(root + u'/'))
        entry = entry.mid(root.size());
    while (entry.startsWith(u'/'))
        entry.remove(0, 1);
    while (entry.endsWith(u'/'))
        entry.chop(1);
    return entry;
}

qint64 documentCount(const QString &book)
{
    qint64 total = 0;
    forEachEntry(book, [&](const QString &name, bool directory) {
        if (directory || name.endsWith(u".plist") || store::tl_pathIsPlaceholderStub(name) ||
            store::tl_pathIsConflictCopy(name) || name.endsWith(u".__sidecar") ||
            path::extension(name) == u"autosave" || name.startsWith(u".DS_Store"))
            return;
        ++total;
    });
    return total;
}

} // namespace

QStringList tl_listOfTasklists()
{
    const QStringList books = walkForTaskLists();
    QStringList entries;
    for (const QString &book : books)
        entries << storedEntry(book);
    platform::settings().set(QLatin1String(keys::AllTaskLists),
                             entries.isEmpty() ? QVariant() : QVariant(entries));
    return books;
}

void updateListOfTasklists()
{
    platform::Settings &settings = platform::settings();
    const QString collected = QLatin1String(keys::TasklistCollectDate);
    const QVariant last = settings.object(collected);
    const QDateTime now = clock().now();
    if (last.typeId() == QMetaType::QDateTime && last.toDateTime().msecsTo(now) < 2000 &&
        last.toDateTime() <= now) {
        logLine(QStringLiteral("skip collecting task lists"));
        return;
    }
    settings.set(QLatin1String(keys::RebuildingAllTasklistsFlag), true);
    const QStringList books = tl_listOfTasklists();
    settings.remove(QLatin1String(keys::RebuildingAllTasklistsFlag));
    for (const QString &book : books)
        tl_correctTaskCountAtPath(book);
    settings.set(collected, now);
}

QStringList allTaskListBooks()
{
    if (platform::settings().boolValue(QLatin1String(keys::RebuildingAllTasklistsFlag)))
        return walkForTaskLists();
    const QString root = store::libraryRoot();
    QStringList books;
    bool rootSeen = false;
    for (const QString &entry : storedTaskLists()) {
        const bool isRoot = entry.isEmpty() || entry == u"/";
        if (isRoot && std::exchange(rootSeen, true))
            continue;
        books << (isRoot ? root : path::appendingComponent(root, entry));
    }
    return books;
}

void updateListOfTasklistRemovingAdding(const QString &removal, const QString &addition)
{
    platform::Settings &settings = platform::settings();
    QStringList entries = storedTaskLists();
    const QStringList before = entries;
    const auto matches = [](const QString &entry, const QString &argument) {
        return !argument.isEmpty() &&
               localizedCompare(relativeBook(entry), relativeBook(argument)) == 0;
    };
    entries.removeIf(
        [&](const QString &entry) { return matches(entry, removal) || matches(entry, addition); });
    if (!addition.isEmpty())
        entries << u'/' + relativeBook(addition);
    if (entries != before)
        settings.set(QLatin1String(keys::AllTaskLists),
                     entries.isEmpty() ? QVariant() : QVariant(entries));
}

QVariantMap tl_allOpenTasksCountingDescendants(const QString &receiver, bool descendants)
{
    const QString root = store::libraryRoot();
    QString book = receiver;
    if (!store::tl_itemIsChildOfTavelle(book) && book != root)
        book = path::appendingComponent(root, receiver);
    QStringList books{book};
    if (descendants) {
        const QString prefix = book + u'/';
        for (const QString &list : allTaskListBooks())
            if (list.startsWith(prefix) &&
                QFileInfo::exists(path::appendingComponent(list, kPlistName)))
                books << list;
    }
    qint64 total = 0;
    qint64 done = 0;
    qint64 due = 0;
    for (const QString &each : books) {
        total += documentCount(each);
        const TaskDetails details = TaskDetails::ofBook(each);
        done += std::min(total, details.counter(keys::DoneItemCount));
        due += details.counter(keys::DueItemCount);
    }
    const auto text = [](qint64 n) { return QString::number(quint64(std::max<qint64>(n, 0))); };
    return {{QStringLiteral("totalTasks"), text(total)},
            {QStringLiteral("dueTasks"), text(due)},
            {QStringLiteral("doneTasks"), text(std::min(done, total))}};
}

} // namespace tl::tasks
