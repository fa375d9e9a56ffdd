#include "search/item_writer.h"

#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "search/searchable_text.h"

#include <QFile>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tl::search::detail {

namespace {

std::string_view utf8(const QByteArray &bytes)
{
    return {bytes.constData(), size_t(bytes.size())};
}

ReadItem itemWithoutWords(const Change &change)
{
    return ReadItem{change.stamp,
                    change.id,
                    change.stamp.path.toUtf8(),
                    caseAndDiacriticFolded(path::lastComponent(change.stamp.path)).toUtf8(),
                    {}};
}

// Path, name, modification date and size as the first four parameters.
Statement &bindRow(Statement &statement, const ReadItem &item)
{
    return statement.bind(1, utf8(item.path))
        .bind(2, utf8(item.name))
        .bind(3, item.stamp.modified)
        .bind(4, item.stamp.size);
}

} // namespace

ReadItem readItem(const SearchableText &reader, const Change &change)
{
    ReadItem item = itemWithoutWords(change);
    if (!change.stamp.isFolder)
        item.words =
            reader.distinctWordsOf(change.stamp.path, change.stamp.size).value_or(std::string());
    return item;
}

std::optional<ReadItem> readFoundFile(const SearchableText &reader, const FoundFile &file)
{
    const QString path =
        QFile::decodeName(QByteArray(file.path.data(), qsizetype(file.path.size())));
    struct stat st
    {
    };
    // Opened through its folder, a plain-text file gives its stamp and its
    // text without the path being looked up twice.
    const int fd = reader.isPlainText(path)
                       ? ::openat(file.folder, file.name, O_RDONLY | O_CLOEXEC | O_NONBLOCK)
                       : -1;
    if (fd >= 0 && ::fstat(fd, &st) == 0 && S_ISREG(st.st_mode)) {
        ReadItem item = itemWithoutWords(Change{encodedStamp(file.path, st).decoded()});
        item.words =
            SearchableText::distinctWordsOfPlainText(fd, item.stamp.size).value_or(std::string());
        ::close(fd);
        return item;
    }
    if (fd >= 0)
        ::close(fd);
    if (::fstatat(file.folder, file.name, &st, 0) != 0)
        return std::nullopt;
    return readItem(reader, Change{encodedStamp(file.path, st).decoded()});
}

ItemWriter::ItemWriter(Database &db)
    : m_db(db), m_outdate(db, QStringLiteral("INSERT OR IGNORE INTO outdated(id) VALUES(?1)")),
      m_forgetWords(db, QStringLiteral("DELETE FROM later WHERE rowid = ?1")),
      m_forgetItem(db, QStringLiteral("DELETE FROM items WHERE id = ?1")),
      m_insert(db, QStringLiteral("INSERT INTO items(path, name, modified, size) "
                                  "VALUES(?1, ?2, ?3, ?4)")),
      m_update(db, QStringLiteral("UPDATE items SET path = ?1, name = ?2, "
                                  "modified = ?3, size = ?4 WHERE id = ?5")),
      m_storeWords(db, QStringLiteral("INSERT INTO later(rowid, words) VALUES(?1, ?2)"))
{
}

void ItemWriter::forget(qint64 id)
{
    m_outdate.bind(1, id).run();
    m_forgetWords.bind(1, id).run();
    m_forgetItem.bind(1, id).run();
}

void ItemWriter::store(const ReadItem &item)
{
    Statement &store = item.id < 0 ? m_insert : m_update;
    bindRow(store, item);
    if (item.id >= 0)
        store.bind(5, item.id);
    if (!store.run())
        return;
    const qint64 id = item.id < 0 ? m_db.lastInsertRowid() : item.id;
    // A new item may take the id of one forgotten since the build.
    m_outdate.bind(1, id).run();
    if (item.id >= 0)
        m_forgetWords.bind(1, id).run();
    if (!item.words.empty())
        m_storeWords.bind(1, id).bind(2, item.words).run();
}

BuildWriter::BuildWriter(Database &db, Part part)
    : m_part(part),
      m_insert(db, part == Part::Rows
                       ? QStringLiteral("INSERT INTO items(path, name, modified, size, id) "
                                        "VALUES(?1, ?2, ?3, ?4, ?5)")
                       : QStringLiteral("INSERT INTO built(rowid, words) VALUES(?1, ?2)"))
{
}

void BuildWriter::store(const ReadItem &item)
{
    if (m_part == Part::Rows)
        bindRow(m_insert, item).bind(5, item.id).run();
    else if (!item.words.empty())
        m_insert.bind(1, item.id).bind(2, item.words).run();
}

} // namespace tl::search::detail
