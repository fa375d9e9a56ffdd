#include "store/reading_order.h"

#include "foundation/path_string.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/list_row.h"
#include "store/plist_file.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

namespace tl::store {

namespace {

void appendHierarchy(const QString &book, QStringList &result)
{
    const QVariantMap bookProperties =
        readPlistDictionary(path::appendingComponent(book, QLatin1String(names::BookProperties)));
    const BookOrder order = BookOrder::fromProperties(bookProperties);

    QList<ListRow> documents;
    QList<ListRow> books;
    QDirIterator it(book, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    while (it.hasNext()) {
        const QString entry = it.next();
        if (tl_pathIsExcludedFromDisplay(entry))
            continue;
        const QFileInfo info = it.fileInfo();
        const bool isBook =
            info.isDir() && !packageExtensions().contains(lowerCasedExtension(entry));
        (isBook ? books : documents).append(tl_rowForItem(entry, order));
    }

    const QString key = bookProperties.value(keys::property::SortOrderForNotes).toString();
    const bool descending =
        bookProperties.value(keys::property::SortNotesDescending).toString() == u"YES";
    tl_sortByParameter(documents, key, descending);
    tl_sortByParameter(books, key, descending);

    for (const ListRow &row : documents)
        result << row.path;
    for (const ListRow &row : books)
        appendHierarchy(row.path, result);
}

} // namespace

QStringList tl_sortedListOfAllItemsInHierarchy(const QString &book)
{
    QStringList result;
    appendHierarchy(book, result);
    return result;
}

} // namespace tl::store
