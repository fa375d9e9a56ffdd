#include "search/search_index.h"

#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "search/blank_tokenizer.h"
#include "search/item_writer.h"
#include "search/name_list.h"
#include "search/read_item_queue.h"
#include "search/searchable_items.h"
#include "search/searchable_text.h"
#include "search/sqlite_database.h"
#include "search/stored_stamps.h"
#include "store/library_folders.h"
#include "store/log.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMutex>
#include <QRandomGenerator>
#include <QtConcurrent>
#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <mutex>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace tl::search {

namespace {

using detail::BuildWriter;
using detail::Change;
using detail::Database;
using detail::ItemWriter;
using detail::NameList;
using detail::ReadItem;
using detail::ReadItemQueue;
using detail::Statement;
using detail::StoredStamps;

// Raised whenever the tables change shape: an index of another shape is rebuilt.
constexpr int kSchemaVersion = 6;

// Documents read per batch: one batch is read on the worker threads while the
// one before is written.
constexpr qsizetype kBatchSize = 2048;

// The index is two files: the items with everything written since the last
// build, and beside it the words of that build, which never change after it.
// Both carry the same stamp, so halves of two indexes are never read as one.
const char *const kItemsSchema = R"(
CREATE TABLE items(
    id INTEGER PRIMARY KEY,
    path TEXT NOT NULL,
    name TEXT NOT NULL,
    modified INTEGER NOT NULL,
    size INTEGER NOT NULL);
CREATE VIRTUAL TABLE later USING fts5(
    words, tokenize = 'blank', detail = none, columnsize = 0);
CREATE TABLE outdated(id INTEGER PRIMARY KEY);
CREATE TABLE pairing(stamp INTEGER NOT NULL);
PRAGMA user_version = 6;
)";

const char *const kWordsSchema = R"(
CREATE VIRTUAL TABLE built USING fts5(
    words, tokenize = 'blank', detail = none, content = '', columnsize = 0);
CREATE TABLE pairing(stamp INTEGER NOT NULL);
PRAGMA user_version = 6;
)";

// Made after a build's items are in: sorting every path once is quicker than
// inserting each into the index.
const char *const kPathIndex = "CREATE UNIQUE INDEX IF NOT EXISTS items_by_path ON items(path)";

// The tables say which items hold a word, not where: a phrase's items are
// those holding all its words, then looked at again in their text.
//
// A build from nothing writes its words into `built`, which keeps no copy of
// them and so is the quickest to fill, but cannot forget a row without being
// told its words again; its rows are written meanwhile on another thread.
// Items written after it go into `later`, which keeps its words and can, and
// their ids into `outdated`: the rows of `built` for those ids no longer
// count.

// A whole library into an empty file that nothing else reads yet: no journal
// and no sharing, as the file is put in place only once complete.
const char *const kBuildingPragmas = "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; "
                                     "PRAGMA locking_mode = EXCLUSIVE; PRAGMA cache_size = -262144";

// Words of a build held in memory before they are written: enough for a large
// library to be written at once rather than in pieces merged afterwards.
const char *const kBuildingWords = "INSERT INTO built(built, rank) VALUES('hashsize', 8388608)";

// The words writer sets a build's pace. Walkers that yield to it leave it the
// core it needs, so it does not catch up alone once the walk is over. On
// Linux the nice value is a thread's own, and the threads it starts inherit it.
void yieldToTheWordsWriter()
{
    ::setpriority(PRIO_PROCESS, id_t(::gettid()), 10);
}

QString wordsPathOf(const QString &databasePath)
{
    return databasePath + QStringLiteral("-words");
}

// Makes the tables of both files, empty, with one stamp.
bool createPair(Database &items, Database &words)
{
    const qint64 stamp = qint64(QRandomGenerator::global()->generate64() >> 1);
    const QString insert = QStringLiteral("INSERT INTO pairing(stamp) VALUES(?1)");
    return items.exec(kItemsSchema) && words.exec(kWordsSchema) &&
           Statement(items, insert).bind(1, stamp).run() &&
           Statement(words, insert).bind(1, stamp).run();
}

// The range of paths below a folder, for "path >= ?1 AND path < ?2": the
// character after "/" closes it.
std::pair<QString, QString> rangeBelow(const QString &folder)
{
    return {folder + u'/', folder + u'0'};
}

std::optional<ItemStamp> stampOf(const QString &path)
{
    const QByteArray encoded = QFile::encodeName(path);
    struct stat st
    {
    };
    if (::stat(encoded.constData(), &st) != 0)
        return std::nullopt;
    return encodedStamp(std::string_view(encoded.constData(), size_t(encoded.size())), st)
        .decoded();
}

// Items holding every word of a phrase, the last as a prefix.
QString contentQuery(const QStringList &words)
{
    QStringList parts;
    for (const QString &word : words)
        parts << u'"' + word + u'"';
    parts.last() += u'*';
    return parts.join(QStringLiteral(" AND "));
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
    // The files hold an index of another shape, or halves of two indexes.
    bool otherShape = false;
    // What the reader last loaded of the names, and the data version then.
    NameList names;
    qint64 namesVersion = -1;

    bool openBoth()
    {
        QDir().mkpath(path::deletingLastComponent(databasePath));
        if (!openIndex(writer, databasePath) || !prepare(writer) || !attachWords(writer) ||
            !openIndex(reader, databasePath) || !attachWords(reader))
            return false;
        reader.exec("PRAGMA query_only = 1");
        return reader.failure() == 0;
    }

    // Attaches the build's words as `words`, if they belong to these items.
    bool attachWords(Database &db)
    {
        if (!Statement(db, QStringLiteral("ATTACH DATABASE ?1 AS words"))
                 .bind(1, wordsPathOf(databasePath))
                 .run())
            return false;
        Statement version(db, QStringLiteral("PRAGMA words.user_version"));
        if (!version.step() || version.integer(0) != kSchemaVersion) {
            otherShape = db.failure() == 0;
            return false;
        }
        Statement paired(db, QStringLiteral("SELECT count(*) FROM main.pairing, words.pairing "
                                            "WHERE main.pairing.stamp = words.pairing.stamp"));
        otherShape = paired.step() && paired.integer(0) != 1;
        return !otherShape && db.failure() == 0;
    }

    static bool openIndex(Database &db, const QString &path,
                          Database::Threads threads = Database::Threads::Several)
    {
        return db.open(path, threads) && detail::registerBlankTokenizer(db.handle());
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
        // An index of another shape may name a tokenizer this one lacks, so
        // it cannot even be dropped table by table: the files go whole.
        otherShape = found != 0;
        if (otherShape)
            return false;
        const QString wordsPath = wordsPathOf(databasePath);
        QFile::remove(wordsPath);
        Database words;
        return openIndex(words, wordsPath, Database::Threads::One) && createPair(db, words) &&
               db.exec(kPathIndex);
    }

    static void removeDatabase(const QString &path)
    {
        for (const char *suffix : {"", "-wal", "-shm", "-words"})
            QFile::remove(path + QLatin1String(suffix));
    }

    // Each process builds under a name of its own beside the index: two
    // programs building at once never write into one file.
    QString buildingPath() const
    {
        return databasePath + QStringLiteral(".building-%1").arg(::getpid());
    }

    // Removes what builds of processes that are gone left behind.
    void removeAbandonedBuilds() const
    {
        const QFileInfo index(databasePath);
        const QString prefix = index.fileName() + QStringLiteral(".building");
        for (const QString &name : QDir(index.path()).entryList({prefix + u'*'}, QDir::Files)) {
            // "-PID" and "-PID-words"; an older program's build has no number.
            const QString rest = name.mid(prefix.size());
            bool numbered = false;
            const qint64 pid =
                rest.startsWith(u'-') ? rest.mid(1).section(u'-', 0, 0).toLongLong(&numbered) : 0;
            if (!numbered || (pid != ::getpid() && ::kill(pid_t(pid), 0) != 0 && errno == ESRCH))
                QFile::remove(index.path() + u'/' + name);
        }
    }

    void noteStartingAfresh() const
    {
        logLine(QStringLiteral("search index: starting afresh at %1").arg(databasePath));
    }

    // Throws the file away and starts an empty index; both locks held.
    bool startAfresh()
    {
        noteStartingAfresh();
        writer.close();
        reader.close();
        namesVersion = -1;
        otherShape = false;
        removeDatabase(databasePath);
        removeAbandonedBuilds();
        return openBoth();
    }

    // Fills a new pair of files with every item, then puts them in place of
    // the old; the writing lock held. A build cut short leaves only files
    // that are never opened as the index.
    bool buildFromNothing()
    {
        removeAbandonedBuilds();
        const QString building = buildingPath();
        removeDatabase(building);
        bool built = false;
        {
            Database items;
            Database words;
            built = openIndex(items, building, Database::Threads::One) &&
                    openIndex(words, wordsPathOf(building), Database::Threads::One) &&
                    items.exec(kBuildingPragmas) && words.exec(kBuildingPragmas) &&
                    createPair(items, words) && words.exec(kBuildingWords) && items.exec("BEGIN") &&
                    words.exec("BEGIN") && writeEverything(items, words);
        }
        QMutexLocker lock(&reading);
        if (built) {
            writer.close();
            reader.close();
            namesVersion = -1;
            otherShape = false;
            removeDatabase(databasePath);
            // The words first: new words beside old items are not a pair,
            // should the second rename never happen.
            built = renamed(wordsPathOf(building), wordsPathOf(databasePath)) &&
                    renamed(building, databasePath);
        }
        removeDatabase(building);
        return openBoth() && built;
    }

    static bool renamed(const QString &from, const QString &to)
    {
        return std::rename(QFile::encodeName(from).constData(),
                           QFile::encodeName(to).constData()) == 0;
    }

    // Reads every item on the walkers while one thread writes the rows of
    // those read so far and the one here their words, so reading, writing
    // and the walk itself overlap. The path index is made while the last
    // words are written.
    bool writeEverything(Database &itemsDb, Database &wordsDb)
    {
        ReadItemQueue queue;
        ReadItemQueue rowsWritten;
        const SearchableText text;
        std::thread walking([&] {
            yieldToTheWordsWriter();
            forEachSearchableItemInParallel(
                root,
                [&](const EncodedItemStamp &item) {
                    queue.push(detail::readItem(text, Change{item.decoded()}));
                },
                [&](const FoundFile &file) {
                    if (std::optional<ReadItem> item = detail::readFoundFile(text, file))
                        queue.push(std::move(*item));
                });
            queue.close();
        });
        bool rowsDone = false;
        std::thread writingRows([&] {
            BuildWriter rows(itemsDb, BuildWriter::Part::Rows);
            qint64 lastId = 0;
            for (std::vector<ReadItem> read = queue.takeAll(); !read.empty();
                 read = queue.takeAll()) {
                for (ReadItem &item : read) {
                    item.id = ++lastId;
                    rows.store(item);
                }
                rowsWritten.pushAll(std::move(read));
            }
            rowsWritten.close();
            rowsDone = itemsDb.failure() == 0 && itemsDb.exec(kPathIndex) && itemsDb.exec("COMMIT");
        });
        BuildWriter words(wordsDb, BuildWriter::Part::Words);
        for (std::vector<ReadItem> written = rowsWritten.takeAll(); !written.empty();
             written = rowsWritten.takeAll()) {
            for (const ReadItem &item : written)
                words.store(item);
            queue.handBack(std::move(written));
        }
        const bool wordsDone = wordsDb.failure() == 0 && wordsDb.exec("COMMIT");
        writingRows.join();
        walking.join();
        return rowsDone && wordsDone;
    }

    // Opens the index, throwing away a damaged one.
    void open()
    {
        if (!openBoth() &&
            (otherShape || writer.isDamaged() || reader.isDamaged() || !writer.isOpen()))
            startAfresh();
    }

    // Brings the items below the folder (and the folder itself when asked)
    // in line with the disk.
    bool syncBelow(const QString &folder, bool withFolder)
    {
        writer.clearFailure();
        StoredStamps stored(writer, folder, folder == root);
        if (folder == root && writer.failure() == 0 &&
            (stored.isEmpty() || outgrown(stored.size())))
            return buildFromNothing();
        QList<Change> changed;
        std::mutex changing;
        const auto consider = [&](const EncodedItemStamp &item) {
            qint64 id = -1;
            if (stored.isUnchanged(item, id))
                return;
            const std::lock_guard lock(changing);
            changed << Change{item.decoded(), id};
        };
        if (withFolder) {
            if (const std::optional<ItemStamp> self = stampOf(folder)) {
                const QByteArray path = QFile::encodeName(self->path);
                consider({std::string_view(path.constData(), size_t(path.size())), self->modified,
                          self->size, self->isFolder});
            }
        }
        forEachSearchableItemInParallel(folder, consider);
        return write(writer, changed, stored.unseen());
    }

    // Items written since the build are kept beside its rows, which no longer
    // count for them: once they are half the items, building anew costs less
    // than carrying them, and searches go on reading the old file meanwhile.
    bool outgrown(size_t items)
    {
        Statement outdated(writer, QStringLiteral("SELECT count(*) FROM outdated"));
        return outdated.step() && size_t(outdated.integer(0)) * 2 > items;
    }

    bool write(Database &db, const QList<Change> &changed, const QList<qint64> &gone)
    {
        if (changed.isEmpty() && gone.isEmpty())
            return db.failure() == 0;
        if (!db.exec("BEGIN IMMEDIATE"))
            return false;
        ItemWriter items(db);
        for (qint64 id : gone)
            items.forget(id);
        const SearchableText text;
        const auto readOne = [&text](const Change &change) {
            return detail::readItem(text, change);
        };
        const auto batch = [&changed](qsizetype at) { return changed.mid(at, kBatchSize); };
        QFuture<ReadItem> reading = QtConcurrent::mapped(batch(0), readOne);
        for (qsizetype at = 0; at < changed.size(); at += kBatchSize) {
            const QList<ReadItem> read = reading.results();
            if (at + kBatchSize < changed.size())
                reading = QtConcurrent::mapped(batch(at + kBatchSize), readOne);
            for (const ReadItem &item : read)
                items.store(item);
        }
        if (db.failure() != 0) {
            db.exec("ROLLBACK");
            return false;
        }
        return db.exec("COMMIT");
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
        write(writer, {}, gone);
    }

    // The names as the reader sees them, loaded again once another
    // connection has written.
    const NameList &currentNames()
    {
        Statement version(reader, QStringLiteral("PRAGMA data_version"));
        const qint64 seen = version.step() ? version.integer(0) : -1;
        if (seen >= 0 && seen == namesVersion)
            return names;
        names.clear();
        Statement rows(reader, QStringLiteral("SELECT id, name FROM items ORDER BY id"));
        while (rows.step())
            names.add(rows.integer(0), rows.text(1));
        namesVersion = reader.failure() == 0 ? seen : -1;
        return names;
    }

    // The ids of the items holding every word, ascending.
    std::vector<qint64> itemsWithWords(const QStringList &words)
    {
        Statement rows(reader,
                       QStringLiteral("SELECT rowid FROM words.built WHERE built MATCH ?1 AND "
                                      "rowid NOT IN (SELECT id FROM outdated) "
                                      "UNION ALL SELECT rowid FROM later WHERE later MATCH ?1"));
        rows.bind(1, contentQuery(words));
        std::vector<qint64> ids;
        while (rows.step())
            ids.push_back(rows.integer(0));
        std::sort(ids.begin(), ids.end());
        return ids;
    }

    // Those of the candidates, ascending, whose text holds the words in a row.
    std::vector<qint64> itemsWithPhrase(const std::vector<qint64> &candidates,
                                        const QStringList &words)
    {
        QList<std::pair<qint64, QString>> paths;
        Statement pathOf(reader, QStringLiteral("SELECT path FROM items WHERE id = ?1"));
        for (const qint64 id : candidates) {
            if (pathOf.bind(1, id).step())
                paths.append({id, pathOf.text(0)});
            pathOf.reset();
        }
        const SearchableText text;
        const QList<std::pair<qint64, QString>> found =
            QtConcurrent::blockingFiltered(paths, [&](const std::pair<qint64, QString> &item) {
                const std::optional<QString> itemText = text.textOf(item.second);
                return itemText && joinedWordsContainPhrase(joinedSearchWords(*itemText), words);
            });
        std::vector<qint64> ids;
        for (const auto &item : found)
            ids.push_back(item.first);
        return ids;
    }

    // The ids of the items a term finds, ascending.
    std::vector<qint64> termMatches(const PreparedTerm &term, Field field)
    {
        std::vector<qint64> byName;
        std::vector<qint64> byContent;
        if (field != Field::Content && !term.foldedText.isEmpty())
            byName = currentNames().idsContaining(term.foldedText);
        if (field != Field::Name && !term.words.isEmpty()) {
            byContent = itemsWithWords(term.words);
            if (term.words.size() > 1) {
                // Items the name already finds need no look at their text.
                std::vector<qint64> unnamed;
                std::set_difference(byContent.cbegin(), byContent.cend(), byName.cbegin(),
                                    byName.cend(), std::back_inserter(unnamed));
                byContent = itemsWithPhrase(unnamed, term.words);
            }
        }
        std::vector<qint64> either;
        std::set_union(byName.cbegin(), byName.cend(), byContent.cbegin(), byContent.cend(),
                       std::back_inserter(either));
        return either;
    }

    std::optional<QStringList> runQuery(const Query &query, const QString &scope)
    {
        const QList<PreparedTerm> terms = preparedTerms(query.terms);
        if (terms.isEmpty())
            return QStringList();
        reader.clearFailure();
        std::vector<qint64> found = termMatches(terms.first(), query.field);
        for (qsizetype t = 1; t < terms.size() && !found.empty(); ++t) {
            const std::vector<qint64> more = termMatches(terms[t], query.field);
            std::vector<qint64> both;
            std::set_intersection(found.cbegin(), found.cend(), more.cbegin(), more.cend(),
                                  std::back_inserter(both));
            found = std::move(both);
        }
        const QString below = scope + u'/';
        Statement pathOf(reader, QStringLiteral("SELECT path FROM items WHERE id = ?1"));
        QStringList hits;
        for (const qint64 id : found) {
            pathOf.bind(1, id);
            if (pathOf.step()) {
                QString path = pathOf.text(0);
                if (scope == root || path.startsWith(below))
                    hits << std::move(path);
            }
            pathOf.reset();
        }
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
    {
        QMutexLocker readLock(&d->reading);
        if (!d->startAfresh())
            return false;
    }
    return d->syncBelow(d->root, false);
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
        d->write(d->writer, {Change{*stamp, d->storedId(path)}}, {});
}

bool SearchIndex::rebuild()
{
    QMutexLocker lock(&d->writing);
    // Built beside the old file, which then goes whole: no empty index first.
    d->noteStartingAfresh();
    return d->buildFromNothing();
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
