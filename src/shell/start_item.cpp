#include "shell/start_item.h"

#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "store/item_path.h"
#include "store/library_root.h"
#include "store/recent_items.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace tl::shell {

namespace {

// The root's shown entries, books and documents apart.
void shownEntries(const QString &root, QStringList &books, QStringList &documents)
{
    for (const QFileInfo &entry :
         QDir(root).entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden)) {
        const QString path = entry.absoluteFilePath();
        if (store::tl_pathIsExcludedFromDisplay(path))
            continue;
        (store::tl_pathIsBook(path) ? books : documents) << path;
    }
}

} // namespace

QString startItemPath()
{
    const QString root = store::libraryRoot();
    QStringList books, documents;
    shownEntries(root, books, documents);
    if (!documents.isEmpty())
        return root;
    for (const QString &recent : store::recentItems())
        if (QFileInfo(root + recent).isFile())
            return root + recent;
    if (books.isEmpty())
        return root;
    return *std::min_element(books.cbegin(), books.cend(), [](const QString &a, const QString &b) {
        return localizedStandardCompare(a, b) < 0;
    });
}

void showStartItem()
{
    const QString item = startItemPath();
    const bool document = QFileInfo(item).isFile();
    NotificationCenter::defaultCenter().post(
        QLatin1String(document ? events::ShowItemAtPath : events::NewBookSelected),
        {{QStringLiteral("path"), item}});
}

} // namespace tl::shell
