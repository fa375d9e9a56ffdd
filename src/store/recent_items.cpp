#include "store/recent_items.h"

#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "platform/settings.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_folders.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/plist_file.h"

#include <QFileInfo>

namespace tl::store {

namespace {
const char kRecentItemCount[] = "recentItemCount";

QVariantList toVariantList(const QStringList &list)
{
    QVariantList result;
    for (const QString &s : list)
        result << s;
    return result;
}
} // namespace

QString recentItemsPath()
{
    const QString root = libraryRoot();
    return root.isEmpty() ? QString() : root + u'/' + QLatin1String(names::RecentItemsFile);
}

QStringList recentItems()
{
    QStringList result;
    for (const QVariant &v : readPlistArray(recentItemsPath()))
        result << v.toString();
    return result;
}

void tl_addToRecentItems(const QString &path)
{
    if (path.isEmpty() || path::lastComponent(path).startsWith(QLatin1String(names::NewNoteTmp)))
        return;
    static const char *const ownFiles[] = {"TLResources/Misc/AvailableTags.txt",
                                           "TLResources/Misc/ExcludedTags.txt",
                                           names::SettingsFile};
    for (const char *own : ownFiles)
        if (path.endsWith(QLatin1String(own)))
            return;
    if (recentItemsPath().isEmpty())
        return;
    const QString entry = tl_normalizedPath(path);
    QStringList list = recentItems();
    if (!list.isEmpty() && list.first() == entry)
        return;
    list.removeOne(entry);
    logLine(QStringLiteral("Adding to recentItems: %1").arg(entry));
    const qint64 n = platform::settings().integer(kRecentItemCount);
    const qsizetype limit = qsizetype(std::max<qint64>(0, 20 + n * 20));
    if (list.size() > limit)
        list.resize(limit);
    list.prepend(entry);
    writePlistFile(recentItemsPath(), toVariantList(list), true);
}

} // namespace tl::store

namespace tl::store::TLStaticFunctions {

QStringList verifiedListOfRecentItems()
{
    const QString root = libraryRoot();
    const QStringList stored = recentItems();
    QStringList list;
    for (const QString &entry : stored)
        if (tl_fileExistsAtPathIsDirectory(root + entry))
            list << entry;
    if (list.size() != stored.size())
        writePlistFile(recentItemsPath(), toVariantList(list), true);
    const qint64 n = platform::settings().integer(kRecentItemCount);
    const qsizetype shown = qsizetype(9 + n * 10);
    if (list.size() > 10 + n * 10 && shown >= 0)
        list.remove(shown, list.size() - 1 - shown);
    return list;
}

void showMostRecentDocument()
{
    QStringList open;
    const QVariantList windows =
        readPlistDictionary(appStatePath()).value("documentsToOpenOnStartup").toList();
    for (const QVariant &w : windows)
        open << w.toMap().value("path").toString();
    const QString root = libraryRoot();
    const QStringList list = recentItems();
    for (qsizetype i = 0; i < list.size(); ++i) {
        const QString full = root + list[i];
        if (QFileInfo::exists(full) && !open.contains(full)) {
            showRecentDocumentAtIndex(i);
            return;
        }
    }
    NotificationCenter::defaultCenter().post(events::NewBookSelected, {{"path", root}});
}

void showRecentDocumentAtIndex(qsizetype index)
{
    const QString root = libraryRoot();
    const QStringList list = recentItems();
    NotificationCenter &center = NotificationCenter::defaultCenter();
    if (!list.isEmpty()) {
        const QString entry = list[std::clamp<qsizetype>(index, 0, list.size() - 1)];
        if (QFileInfo::exists(root + entry)) {
            center.post(events::ShowItemAtPath, {{"path", entry}});
            return;
        }
    }
    center.post(events::NewBookSelected, {{"path", root}});
}

} // namespace tl::store::TLStaticFunctions
