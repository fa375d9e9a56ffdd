#include "search/search_index.h"

#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "search/searchable_items.h"
#include "search/searchable_text.h"
#include "search/sqlite_database.h"
#include "store/library_folders.h"
#include "store/log.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QMutex>
#include <QtConcurrent>
#include <sys/stat.h>

namespace tl::search {

namespace {

using detail::Database;
using detail::Statement;

// Raised whenever the tables change shape: an index of another shape is rebuilt.
constexpr int kSchemaVersion = 1;

// Documents read per batch: one batch is read on the worker threads while the
// one before is written.
constexpr qsizetype kBatchSize = 2048;

const char *const kSchema = R"(
CREATE TABLE IF NOT EXISTS items(
    id INTEGER PRIMARY KEY,
    path TEXT NOT NULL UNIQUE,
    name TEXT NOT NULL,
    modified INTEGER NOT NULL,
    size INTEGER NOT NULL);
CREATE VIRTUAL TABLE IF NOT EXISTS content
    USING fts5(words, tokenize = 'unicode61 remove_diacritics 2');
PRAGMA user_version = 1;
)";

struct StoredStamp
{
    qint64 id;
    qint64 modified;
    qint64 size;
};

// An item read for the index: its stamp, and its words joined by blanks
// (nothing for an item without text).
// An item to write: new ones have no id yet.
struct Change
{
    ItemStamp stamp;
    qint64 id = -1;
};

struct ReadItem
{
    ItemStamp stamp;
    qint64 id;
    std::optional<QString> words;
};

// The range of paths below a folder, for "path >= ?1 AND path < ?2": the
// character after "/" closes it.
std::pair<QString, QString> rangeBelow(const QString &folder)
{
    return {folder + u'/', folder + u'0'};
}

std::optional<ItemStamp> stampOf(const QString &path)
{
    struct stat st
    {
    };
    if (::stat(QFile::encodeName(path).constData(), &st) != 0)
        return std::nullopt;
    const bool isFolder = S_ISDIR(st.st_mode);
    return ItemStamp{path, qint64(st.st_mtim.tv_sec) * 1000000000 + st.st_mtim.tv_nsec,
                     isFolder ? 0 : qint64(st.st_size), isFolder};
}

QString contentQuery(const QStringList &words)
{
    return u'"' + words.join(u' ') + QStringLiteral("\"*");
}

} // namespace

struct SearchIndex::Private
{
    QString root;
    QString databasePath;
    // Updates write through one connection while searches read through the
    // other; the write-ahead log lets them run at once.
    QMutex writing;
    Database writer;
    QMutex reading;
    Database reader;

    bool openBoth()
    {
        QDir().mkpath(path::deletingLastComponent(databasePath));
        if (!writer.open(databasePath) || !prepare(writer) || !reader.open(databasePath))
            return false;
        reader.exec("PRAGMA query_only = 1");
        return reader.failure() == 0;
    }

    bool prepare(Database &db)
    {
        // A cache: a write cut short by a crash leaves a damaged file, which
        // is rebuilt, so no write waits for the disk.
        if (!db.exec("PRAGMA journal_mode = WAL; PRAGMA synchronous = OFF; "
                     "PRAGMA cache_size = -65536"))
            return false;
        Statement version(db, QStringLiteral("PRAGMA user_version"));
        const qint64 found = version.step() ? version.integer(0) : -1;
        if (db.failure() != 0)
            return false;
        if (found == kSchemaVersion)
            return true;
        if (found != 0 && !db.exec("DROP TABLE IF EXISTS items; DROP TABLE IF EXISTS content"))
            return false;
        return db.exec(kSchema);
    }

    // Throws the file away and starts an empty index; both locks held.
    bool startAfresh()
    {
        logLine(QStringLiteral("search index: starting afresh at %1").arg(databasePath));
        writer.close();
        reader.close();
        for (const char *suffix : {"", "-wal", "-shm"})
            QFile::remove(databasePath + QLatin1String(suffix));
        return openBoth();
    }

    // Opens the index, throwing away a damaged one.
    void open()
    {
        if (!openBoth() && (writer.isDamaged() || reader.isDamaged() || !writer.isOpen()))
            startAfresh();
    }

    QHash<QString, StoredStamp> storedBelow(const QString &folder)
    {
        QHash<QString, StoredStamp> stored;
        const auto [from, to] = rangeBelow(folder);
        Statement rows(writer, QStringLiteral("SELECT path, id, modified, size FROM items "
                                              "WHERE path >= ?1 AND path < ?2"));
        rows.bind(1, from).bind(2, to);
        while (rows.step())
            stored.insert(rows.text(0), {rows.integer(1), rows.integer(2), rows.integer(3)});
        return stored;
    }

    // Brings the items below the folder (and the folder itself when asked)
    // in line with the disk.
    bool syncBelow(const QString &folder, bool withFolder)
    {
        writer.clearFailure();
        QHash<QString, StoredStamp> stored = storedBelow(folder);
        QList<Change> changed;
        const auto consider = [&](const ItemStamp &item) {
            const auto it = stored.constFind(item.path);
            if (it == stored.cend()) {
                changed << Change{item};
                return;
            }
            if (it->modified != item.modified || it->size != item.size)
                changed << Change{item, it->id};
            stored.erase(it);
        };
        if (withFolder) {
            const std::optional<ItemStamp> self = stampOf(folder);
            if (self)
                consider(*self);
        }
        forEachSearchableItem(folder, consider);
        QList<qint64> gone;
        for (const StoredStamp &s : std::as_const(stored))
            gone << s.id;
        return write(changed, gone);
    }

    bool write(const QList<Change> &changed, const QList<qint64> &gone)
    {
        if (changed.isEmpty() && gone.isEmpty())
            return writer.failure() == 0;
        if (!writer.exec("BEGIN IMMEDIATE"))
            return false;
        Statement forgetContent(writer, QStringLiteral("DELETE FROM content WHERE rowid = ?1"));
        Statement forgetItem(writer, QStringLiteral("DELETE FROM items WHERE id = ?1"));
        for (qint64 id : gone) {
            forgetContent.bind(1, id).run();
            forgetItem.bind(1, id).run();
        }
        const SearchableText reader;
        const auto readOne = [&reader](const Change &change) {
            ReadItem item{change.stamp, change.id, std::nullopt};
            if (!change.stamp.isFolder) {
                if (std::optional<QString> text = reader.textOf(change.stamp.path))
                    item.words = joinedSearchWords(*text);
            }
            return item;
        };
        Statement insert(writer, QStringLiteral("INSERT INTO items(path, name, modified, size) "
                                                "VALUES(?1, ?2, ?3, ?4)"));
        Statement update(writer, QStringLiteral("UPDATE items SET path = ?1, name = ?2, "
                                                "modified = ?3, size = ?4 WHERE id = ?5"));
        Statement storeContent(writer,
                               QStringLiteral("INSERT INTO content(rowid, words) VALUES(?1, ?2)"));
        const auto batch = [&changed](qsizetype at) { return changed.mid(at, kBatchSize); };
        QFuture<ReadItem> reading = QtConcurrent::mapped(batch(0), readOne);
        for (qsizetype at = 0; at < changed.size(); at += kBatchSize) {
            const QList<ReadItem> items = reading.results();
            if (at + kBatchSize < changed.size())
                reading = QtConcurrent::mapped(batch(at + kBatchSize), readOne);
            for (const ReadItem &item : items) {
                Statement &store = item.id < 0 ? insert : update;
                store.bind(1, item.stamp.path)
                    .bind(2, caseAndDiacriticFolded(path::lastComponent(item.stamp.path)))
                    .bind(3, item.stamp.modified)
                    .bind(4, item.stamp.size);
                if (item.id >= 0)
                    store.bind(5, item.id);
                if (!store.run())
                    continue;
                qint64 id = item.id;
                if (id < 0)
                    id = writer.lastInsertRowid();
                else
                    forgetContent.bind(1, id).run();
                if (item.words)
                    storeContent.bind(1, id).bind(2, *item.words).run();
            }
        }
        if (writer.failure() != 0) {
            writer.exec("ROLLBACK");
            return false;
        }
        return writer.exec("COMMIT");
    }

    qint64 storedId(const QString &path)
    {
        Statement id(writer, QStringLiteral("SELECT id FROM items WHERE path = ?1"));
        id.bind(1, path);
        return id.step() ? id.integer(0) : -1;
    }

    void forgetBelow(const QString &path)
    {
        writer.clearFailure();
        const auto [from, to] = rangeBelow(path);
        Statement ids(writer, QStringLiteral("SELECT id FROM items WHERE path = ?3 OR "
                                             "(path >= ?1 AND path < ?2)"));
        ids.bind(1, from).bind(2, to).bind(3, path);
        QList<qint64> gone;
        while (ids.step())
            gone << ids.integer(0);
        write({}, gone);
    }

    // The statement of a query: one condition per term, all joined by AND.
    QString querySql(const QList<PreparedTerm> &terms, Field field, bool wholeLibrary) const
    {
        // Every item lies below the root: the whole library is read in one
        // pass over the table rather than through the index of paths.
        QString sql = wholeLibrary
                          ? QStringLiteral("SELECT path FROM items WHERE ?1 IS NOT ?2")
                          : QStringLiteral("SELECT path FROM items WHERE path >= ?1 AND path < ?2");
        int parameter = 3;
        for (const PreparedTerm &term : terms) {
            QStringList either;
            if (field != Field::Content && !term.foldedText.isEmpty())
                either << QStringLiteral("instr(name, ?%1) > 0").arg(parameter++);
            if (field != Field::Name && !term.words.isEmpty())
                either << QStringLiteral(
                              "id IN (SELECT rowid FROM content WHERE content MATCH ?%1)")
                              .arg(parameter++);
            sql += QStringLiteral(" AND (%1)")
                       .arg(either.isEmpty() ? QStringLiteral("0") : either.join(" OR "));
        }
        return sql;
    }

    std::optional<QStringList> runQuery(const Query &query, const QString &scope)
    {
        const QList<PreparedTerm> terms = preparedTerms(query.terms);
        if (terms.isEmpty())
            return QStringList();
        reader.clearFailure();
        Statement statement(reader, querySql(terms, query.field, scope == root));
        const auto [from, to] = rangeBelow(scope);
        statement.bind(1, from).bind(2, to);
        int parameter = 3;
        for (const PreparedTerm &term : terms) {
            if (query.field != Field::Content && !term.foldedText.isEmpty())
                statement.bind(parameter++, term.foldedText);
            if (query.field != Field::Name && !term.words.isEmpty())
                statement.bind(parameter++, contentQuery(term.words));
        }
        QStringList hits;
        while (statement.step())
            hits << statement.text(0);
        if (reader.failure() != 0)
            return std::nullopt;
        return hits;
    }
};

SearchIndex::SearchIndex(const QString &root, const QString &databasePath)
    : d(std::make_unique<Private>())
{
    d->root = root;
    d->databasePath = databasePath;
    d->open();
}

SearchIndex::~SearchIndex() = default;

QString SearchIndex::databasePathOfLibrary()
{
    return store::cachesRootFolder() + QStringLiteral("/SearchIndex.sqlite");
}

bool SearchIndex::bringUpToDate()
{
    QMutexLocker lock(&d->writing);
    if (d->syncBelow(d->root, false))
        return true;
    if (!d->writer.isDamaged())
        return false;
    QMutexLocker readLock(&d->reading);
    return d->startAfresh() && d->syncBelow(d->root, false);
}

void SearchIndex::refreshItem(const QString &path)
{
    QMutexLocker lock(&d->writing);
    const std::optional<ItemStamp> stamp = stampOf(path);
    if (!stamp || !isSearchableItemPath(path)) {
        d->forgetBelow(path);
        return;
    }
    if (stamp->isFolder)
        d->syncBelow(path, true);
    else
        d->write({Change{*stamp, d->storedId(path)}}, {});
}

bool SearchIndex::rebuild()
{
    QMutexLocker lock(&d->writing);
    QMutexLocker readLock(&d->reading);
    return d->startAfresh() && d->syncBelow(d->root, false);
}

QStringList SearchIndex::search(const Query &query, const QString &scope)
{
    {
        QMutexLocker lock(&d->reading);
        if (std::optional<QStringList> hits = d->runQuery(query, scope))
            return *hits;
        if (!d->reader.isDamaged())
            return {};
    }
    // Never trusted once damaged: built anew, then asked again.
    rebuild();
    QMutexLocker lock(&d->reading);
    return d->runQuery(query, scope).value_or(QStringList());
}

} // namespace tl::search
