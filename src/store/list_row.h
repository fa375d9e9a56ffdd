#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <optional>

// One row of a document list: what the lists sort and show of an item.
namespace tl::store {

struct ListRow
{
    QString title;
    QString path;
    QString parent;
    QDateTime modDate;
    QDateTime dueDate;
    QDateTime creationDate;
    QString custom;
    QString taskIcon;
    QString taskIsRepeating;
    qint64 pinnedSequence = 0;
    QString favorite;
    std::optional<QString> cellColor;
    // A smart book's type on a smart book row, else 0.
    int smartType = 0;

    // The row as the dictionary the views and the command print.
    QVariantMap toDictionary() const;
    // The due moment of an open task; nothing for finished and undated
    // tasks, whose sort date is a place in the order, and for other rows.
    std::optional<QDateTime> openTaskDueDate() const;
    bool operator==(const ListRow &) const = default;
};

// The order lists of a book, read once from its BookProperties.plist.
struct BookOrder
{
    QStringList books;
    QStringList notes;
    QStringList pinned;
    // Positions by canonically composed name, so each row finds its place
    // without a collator pass over the whole list.
    QHash<QString, qsizetype> bookIndex;
    QHash<QString, qsizetype> noteIndex;
    QHash<QString, qsizetype> pinIndex;
    static BookOrder ofBook(const QString &bookPath);
    static BookOrder fromProperties(const QVariantMap &bookProperties);
};

// The row of an item. Shown as a task, its record (handed in, else looked up
// in the parent's TLTasklistDetails.plist) gives the icon and a DueDate that
// orders tasks: dated open ones, then undated open ones, then done ones and
// last cancelled ones, each finished group newest first. The parent's order
// lists are handed in when known, else read from its BookProperties.plist.
ListRow tl_dictionaryForItemAsTask(const QString &path, bool asTask,
                                   const std::optional<QVariantMap> &details = {},
                                   const std::optional<BookOrder> &parentOrder = {});
// The row of an item not shown as a task.
ListRow tl_rowForItem(const QString &path, const std::optional<BookOrder> &parentOrder = {});

// Chained stable sorts, the later deciding: base order by name (or by
// creation date for "custom"), then the key, then pins on top.
void tl_sortByParameter(QList<ListRow> &rows, const QString &key, bool descending);

// Name order of list rows: case- and width-insensitive, forced to a total
// order, numbers by value when useNumericOrder is on.
// Comparing two keys byte by byte gives that order.
QByteArray rowNameSortKey(const QString &title, bool numeric);

} // namespace tl::store
