#include "tasks/task_details.h"

#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "foundation/plist.h"
#include "store/keys.h"
#include "store/plist_file.h"
#include "tasks/task_keys.h"

#include <QFile>
#include <QHash>
#include <QXmlStreamReader>
#include <limits>

namespace tl::tasks {

namespace {

// The keys of the top-level dictionary of an XML property list, in the
// order written; empty for the binary form, whose order is not kept.
QStringList topLevelKeys(const QByteArray &bytes)
{
    QStringList keys;
    QXmlStreamReader xml(bytes);
    int depth = 0;
    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::StartElement) {
            ++depth;
            // plist, dict, key: a key of the top dictionary stands at depth 3.
            if (depth == 3 && xml.name() == u"key") {
                keys << xml.readElementText();
                --depth;
            }
        } else if (token == QXmlStreamReader::EndElement) {
            --depth;
        }
    }
    return keys;
}

} // namespace

TaskDetails TaskDetails::ofBook(const QString &book)
{
    TaskDetails details;
    details.book = book;
    QFile file(details.plistPath());
    details.exists = file.exists();
    if (!details.exists || !file.open(QIODevice::ReadOnly))
        return details;
    details.bytes = file.readAll();
    details.map = plist::parse(details.bytes).value_or(QVariant()).toMap();
    return details;
}

TaskDetails TaskDetails::ofItem(const QString &itemPath)
{
    return ofBook(path::deletingLastComponent(itemPath));
}

QString TaskDetails::plistPath() const
{
    return path::appendingComponent(book, QLatin1String(names::TasklistDetails));
}

std::optional<QString> TaskDetails::keyFor(const QString &itemPath) const
{
    const QString name = path::lastComponent(itemPath);
    QStringList keys;
    QHash<QString, bool> seen;
    for (const QString &key : topLevelKeys(bytes))
        if (map.contains(key) && !std::exchange(seen[key], true))
            keys << key;
    // Keys of the binary form, or of a file that changed under us, in the
    // dictionary's own order.
    if (keys.size() != map.size())
        keys = map.keys();
    for (const QString &key : keys)
        if (key == name || localizedCompare(key, name) == 0)
            return key;
    return std::nullopt;
}

QStringList TaskDetails::recordKeys() const
{
    QStringList keys;
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        if (!isCounterKey(it.key()))
            keys << it.key();
    return keys;
}

qint64 TaskDetails::counter(const char *key) const
{
    // Leading digits with an optional sign, clamped to 32 bits; anything
    // else reads 0.
    const QString text = map.value(QLatin1String(key)).toString().trimmed();
    qsizetype end = 0;
    if (end < text.size() && (text[end] == u'-' || text[end] == u'+'))
        ++end;
    while (end < text.size() && text[end].isDigit())
        ++end;
    bool ok = false;
    const qint64 value = text.left(end).toLongLong(&ok);
    if (!ok)
        return end > 1 ? (text[0] == u'-' ? std::numeric_limits<qint32>::min()
                                          : std::numeric_limits<qint32>::max())
                       : 0;
    return std::clamp<qint64>(value, std::numeric_limits<qint32>::min(),
                              std::numeric_limits<qint32>::max());
}

void TaskDetails::setCounter(const char *key, qint64 value)
{
    map.insert(QLatin1String(key), QString::number(quint64(value)));
}

bool TaskDetails::save(bool atomically) const
{
    return store::writePlistFile(plistPath(), map, atomically);
}

bool isCounterKey(const QString &key)
{
    return key == QLatin1String(keys::DueItemCount) || key == QLatin1String(keys::DoneItemCount);
}

bool isFinishedState(const QString &state)
{
    return state == QLatin1String(keys::Done) || state == QLatin1String(keys::Canceled) ||
           state == QLatin1String(keys::NoTask);
}

std::optional<QDateTime> dueDateOf(const QVariantMap &record)
{
    const QVariant date = record.value(QLatin1String(keys::DueDate));
    if (date.typeId() != QMetaType::QDateTime)
        return std::nullopt;
    return date.toDateTime();
}

void postFileModification(const QString &path)
{
    NotificationCenter::defaultCenter().post(QLatin1String(events::HandleFileModificationInstantly),
                                             {{QStringLiteral("path"), path}});
}

void postTaskIconUpdate(const QString &path)
{
    NotificationCenter::defaultCenter().post(QLatin1String(events::UpdateTaskIcon),
                                             {{QStringLiteral("object"), path}});
}

} // namespace tl::tasks
