#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <optional>

// The TLTasklistDetails.plist of one book, read whole, changed and written
// whole: the records by file name and the two cached counters.
namespace tl::tasks {

struct TaskDetails
{
    QString book;
    // Whether the book is a task list at all; without the file nothing is stored.
    bool exists = false;
    QVariantMap map;
    // The file as read, for the order of its keys, which only lookups need.
    QByteArray bytes;

    static TaskDetails ofBook(const QString &book);
    // The details of an item's parent book.
    static TaskDetails ofItem(const QString &itemPath);

    QString plistPath() const;
    // The key of an item's record: the first key in the file's order that is
    // canonically equivalent to the item's name.
    std::optional<QString> keyFor(const QString &itemPath) const;
    QVariantMap record(const QString &key) const { return map.value(key).toMap(); }
    // The record keys, without the two counters.
    QStringList recordKeys() const;

    // Counters are decimal strings read as 32-bit integers; absent reads 0.
    qint64 counter(const char *key) const;
    void setCounter(const char *key, qint64 value);

    bool save(bool atomically) const;
};

bool isCounterKey(const QString &key);
// "done", "canceled" and "no_task": the states that count as finished.
bool isFinishedState(const QString &state);
// A record's due date, when it has one.
std::optional<QDateTime> dueDateOf(const QVariantMap &record);

void postFileModification(const QString &path);
void postTaskIconUpdate(const QString &path);

} // namespace tl::tasks
