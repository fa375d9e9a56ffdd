#include "store/list_row.h"

#include "foundation/clock.h"
#include "foundation/compare.h"
#include "foundation/dates.h"
#include "foundation/path_string.h"
#include "platform/file_ops.h"
#include "platform/settings.h"
#include "store/custom_order.h"
#include "store/extensions.h"
#include "store/keys.h"
#include "store/plist_file.h"
#include "store/task_records.h"

#include <QFileInfo>
#include <algorithm>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>

namespace tl::store {

namespace P = keys::property;
namespace S = keys::setting;

namespace {

QHash<QString, qsizetype> indexByComposedName(const QStringList &list)
{
    QHash<QString, qsizetype> index;
    for (qsizetype i = list.size() - 1; i >= 0; --i)
        index.insert(precomposed(list[i]), i);
    return index;
}

QStringList stringList(const QVariant &value)
{
    QStringList result;
    for (const QVariant &v : value.toList())
        result << v.toString();
    return result;
}

struct Attributes
{
    bool isDirectory = false;
    QDateTime modified;
    std::optional<QDateTime> created;
};

// One statx call gives the kind and both dates of a row.
Attributes attributesOf(const QString &path)
{
    Attributes a;
    struct statx st
    {
    };
    if (statx(AT_FDCWD, QFile::encodeName(path).constData(), 0,
              STATX_TYPE | STATX_MTIME | STATX_BTIME, &st) != 0)
        return a;
    a.isDirectory = S_ISDIR(st.stx_mode);
    a.modified = QDateTime::fromMSecsSinceEpoch(
        qint64(st.stx_mtime.tv_sec) * 1000 + st.stx_mtime.tv_nsec / 1000000, Qt::UTC);
    if (st.stx_mask & STATX_BTIME)
        a.created = QDateTime::fromMSecsSinceEpoch(
            qint64(st.stx_btime.tv_sec) * 1000 + st.stx_btime.tv_nsec / 1000000, Qt::UTC);
    return a;
}

// Sort dates of finished and undated tasks, in seconds since 2001.
constexpr double kOpenWithoutDate = 30785400000.0;
constexpr double kDoneBase = 36910080000.0;
constexpr double kCanceledBase = 43061760000.0;

struct TaskPart
{
    QDateTime sortDate;
    QString icon;
    QString isRepeating;
};

TaskPart taskPartOf(const QString &itemPath, const std::optional<QVariantMap> &details)
{
    const QVariantMap record = details ? *details : taskRecordForItem(itemPath);
    TaskPart part;
    part.sortDate = distantFuture();
    const QVariant dueDate = record.value(QStringLiteral("DueDate"));
    const QString state = record.value(QStringLiteral("State")).toString();
    if (dueDate.typeId() == QMetaType::QDateTime)
        part.sortDate = dueDate.toDateTime();
    else if (state == u"no_task")
        part.sortDate = distantPast();
    part.icon = tl_taskIconForStateIsDue(state.isEmpty() ? QStringLiteral("open") : state,
                                         part.sortDate < clock().now());
    part.isRepeating =
        record.contains(QStringLiteral("RepeatType")) ? QStringLiteral("1") : QString();

    const bool done = part.icon.contains(u"done");
    const bool canceled = part.icon.contains(u"canceled");
    if (!done && !canceled) {
        if (part.sortDate == distantFuture())
            part.sortDate = dateFromSecondsSinceReferenceDate(kOpenWithoutDate);
        return part;
    }
    // Without a record the completion date is unknown: the distant future.
    const QDateTime completed =
        record.value(QStringLiteral("Changed"), distantFuture()).toDateTime();
    double seconds = done ? kDoneBase : kCanceledBase;
    if (completed != distantFuture())
        seconds -= secondsSinceReferenceDate(completed);
    part.sortDate = dateFromSecondsSinceReferenceDate(seconds);
    return part;
}

template <typename Less> void stableSort(QList<ListRow> &rows, Less less)
{
    std::stable_sort(rows.begin(), rows.end(), less);
}

} // namespace

std::optional<QDateTime> ListRow::openTaskDueDate() const
{
    if (taskIcon.isEmpty() || taskIcon.contains(u"done") || taskIcon.contains(u"canceled") ||
        dueDate == dateFromSecondsSinceReferenceDate(kOpenWithoutDate) || !dueDate.isValid())
        return std::nullopt;
    return dueDate;
}

QVariantMap ListRow::toDictionary() const
{
    QVariantMap d{{"title", title},
                  {"path", path},
                  {"parent", parent},
                  {"modDate", modDate},
                  {"DueDate", dueDate},
                  {"creationDate", creationDate},
                  {"custom", custom},
                  {"taskIcon", taskIcon},
                  {"taskIsRepeating", taskIsRepeating},
                  {"pinnedSequence", pinnedSequence},
                  {QLatin1String(P::FavoriteTag), favorite}};
    if (cellColor)
        d.insert(P::CellColor, *cellColor);
    if (smartType != 0)
        d.insert(QStringLiteral("smartType"), smartType);
    return d;
}

BookOrder BookOrder::fromProperties(const QVariantMap &properties)
{
    BookOrder order{stringList(properties.value(P::Books)),
                    stringList(properties.value(P::Notes)),
                    stringList(properties.value(P::Pinned)),
                    {},
                    {},
                    {}};
    order.bookIndex = indexByComposedName(order.books);
    order.noteIndex = indexByComposedName(order.notes);
    order.pinIndex = indexByComposedName(order.pinned);
    return order;
}

BookOrder BookOrder::ofBook(const QString &bookPath)
{
    return fromProperties(readPlistDictionary(
        path::appendingComponent(bookPath, QLatin1String(names::BookProperties))));
}

ListRow tl_rowForItem(const QString &itemPath, const std::optional<BookOrder> &parentOrder)
{
    return tl_dictionaryForItemAsTask(itemPath, false, std::nullopt, parentOrder);
}

ListRow tl_dictionaryForItemAsTask(const QString &itemPath, bool asTask,
                                   const std::optional<QVariantMap> &details,
                                   const std::optional<BookOrder> &parentOrder)
{
    ListRow row;
    row.title = path::lastComponent(itemPath);
    row.path = itemPath;
    row.parent = path::deletingLastComponent(itemPath);
    row.dueDate = distantFuture();
    if (asTask) {
        const TaskPart task = taskPartOf(itemPath, details);
        row.dueDate = task.sortDate;
        row.taskIcon = task.icon;
        row.taskIsRepeating = task.isRepeating;
    }

    const Attributes attributes = attributesOf(itemPath);
    row.modDate = attributes.modified;
    const bool isFolder = attributes.isDirectory;

    // A folder's row reads its parent's BookProperties.plist, as it always has.
    const QString propertiesFile =
        isFolder ? path::appendingComponent(row.parent, QLatin1String(names::BookProperties))
                 : path::appendingExtension(itemPath, "plist");
    QVariantMap properties = readPlistDictionary(propertiesFile);

    const QVariant storedDate = properties.value(P::CreationDate);
    if (storedDate.typeId() == QMetaType::QDateTime && !isDistantPast(storedDate.toDateTime())) {
        row.creationDate = storedDate.toDateTime();
    } else {
        row.creationDate = attributes.created.value_or(attributes.modified);
        if (platform::settings().boolValue(S::AlwaysSaveCreationDate) &&
            row.creationDate.isValid()) {
            properties.insert(P::CreationDate, row.creationDate);
            writePlistFile(propertiesFile, properties, false);
        }
    }

    const BookOrder order = parentOrder ? *parentOrder : BookOrder::ofBook(row.parent);
    const bool isPackage = isFolder && packageExtensions().contains(lowerCasedExtension(itemPath));
    const bool asBook = isFolder && !isPackage;
    const QStringList &sequence = asBook ? order.books : order.notes;
    const QString composedTitle = precomposed(row.title);
    // Lists handed in without their index are searched by the collator.
    const auto indexIn = [&](const QStringList &list, const QHash<QString, qsizetype> &byName) {
        if (byName.isEmpty() && !list.isEmpty())
            return int(tl_localizedIndexOfObject(list, row.title).value_or(-1));
        return int(byName.value(composedTitle, -1));
    };
    long index = -1;
    if (!sequence.isEmpty()) {
        index = indexIn(sequence, asBook ? order.bookIndex : order.noteIndex);
        if (index < 0)
            index = platform::settings().boolValue(S::ManualSortNewAtTop) ? -1 : 9000;
    }
    row.custom = QString::asprintf("%.4ld", index);

    const int pinIndex = indexIn(order.pinned, order.pinIndex);
    row.pinnedSequence = pinIndex < 0 ? std::numeric_limits<qint64>::max() : pinIndex;
    row.favorite = stringList(properties.value(P::Tags)).contains(QLatin1String(P::FavoriteTag))
                       ? QStringLiteral("1")
                       : QString();
    if (properties.contains(P::CellColor)) {
        const QString colour = properties.value(P::CellColor).toString();
        row.cellColor = colour == u"white" ? QStringLiteral("default") : colour;
    }
    return row;
}

QByteArray rowNameSortKey(const QString &title, bool numeric)
{
    // Each collation key ends in a zero byte and holds none inside, so the
    // joined keys order as the folded comparison, then the exact one, then
    // the code units (big-endian, so bytes order as units do).
    QByteArray key =
        numeric ? localizedStandardSortKey(title) : localizedCaseInsensitiveSortKey(title);
    key += localizedSortKey(title);
    key.reserve(key.size() + title.size() * 2);
    for (const QChar c : title) {
        key += char(c.unicode() >> 8);
        key += char(c.unicode() & 0xff);
    }
    return key;
}

namespace {
// Stable sort by name, collating each title once.
void sortByName(QList<ListRow> &rows, bool numeric, bool descending)
{
    std::vector<std::pair<QByteArray, qsizetype>> keyed;
    keyed.reserve(size_t(rows.size()));
    for (qsizetype i = 0; i < rows.size(); ++i)
        keyed.emplace_back(rowNameSortKey(rows[i].title, numeric), i);
    std::stable_sort(keyed.begin(), keyed.end(), [descending](const auto &a, const auto &b) {
        return descending ? b.first < a.first : a.first < b.first;
    });
    QList<ListRow> sorted;
    sorted.reserve(rows.size());
    for (const auto &[key, index] : keyed)
        sorted.append(std::move(rows[index]));
    rows = std::move(sorted);
}
} // namespace

void tl_sortByParameter(QList<ListRow> &rows, const QString &requestedKey, bool descending)
{
    if (rows.isEmpty())
        return;
    const QString key = requestedKey.isEmpty() ? QStringLiteral("title") : requestedKey;
    const bool numeric = platform::settings().boolValue(S::UseNumericOrder);
    if (key == u"title" && descending) {
        sortByName(rows, numeric, true);
    } else if (key == u"custom") {
        const bool newAtTop = platform::settings().boolValue(S::ManualSortNewAtTop);
        stableSort(rows, [newAtTop](const ListRow &a, const ListRow &b) {
            return newAtTop ? b.creationDate < a.creationDate : a.creationDate < b.creationDate;
        });
    } else {
        sortByName(rows, numeric, false);
    }

    if (key != u"title") {
        const auto byDate = [descending](QDateTime ListRow::*field) {
            return [field, descending](const ListRow &a, const ListRow &b) {
                return descending ? b.*field < a.*field : a.*field < b.*field;
            };
        };
        if (key == u"modDate")
            stableSort(rows, byDate(&ListRow::modDate));
        else if (key == u"DueDate")
            stableSort(rows, byDate(&ListRow::dueDate));
        else if (key == u"creationDate")
            stableSort(rows, byDate(&ListRow::creationDate));
        else if (key == u"custom")
            // Byte-wise, so "-0001" (new at top) sorts first.
            stableSort(rows, [](const ListRow &a, const ListRow &b) {
                return a.custom.toUtf8() < b.custom.toUtf8();
            });
    }
    if (key != u"custom")
        stableSort(rows, [](const ListRow &a, const ListRow &b) {
            return a.pinnedSequence < b.pinnedSequence;
        });
}

} // namespace tl::store
