#pragma once

#include "search/searchable_items.h"
#include "search/sqlite_database.h"

#include <QByteArray>
#include <optional>
#include <string>

namespace tl::search {
class SearchableText;
}

// Items read for the index and written into its tables.
namespace tl::search::detail {

// An item to write: new ones have no id yet.
struct Change
{
    ItemStamp stamp;
    qint64 id = -1;
};

// An item read for the index: its stamp, its path and folded name in UTF-8,
// and its distinct words (none for an item without text).
struct ReadItem
{
    ItemStamp stamp;
    qint64 id = -1;
    QByteArray path;
    QByteArray name;
    std::string words;
};

// Reads what the index keeps of an item; safe on several threads at once.
ReadItem readItem(const SearchableText &reader, const Change &change);
// The same for a new plain file as the walk found it; nothing when it is gone.
std::optional<ReadItem> readFoundFile(const SearchableText &reader, const FoundFile &file);

// Writes changed items through one connection, inside a transaction the
// caller holds; their words go to `later`.
class ItemWriter
{
public:
    explicit ItemWriter(Database &db);
    void forget(qint64 id);
    void store(const ReadItem &item);

private:
    Database &m_db;
    Statement m_outdate;
    Statement m_forgetWords;
    Statement m_forgetItem;
    Statement m_insert;
    Statement m_update;
    Statement m_storeWords;
};

// One of the two writers of a build from nothing: the items rows, each
// under the id it carries, or their words into `built` of a file of their
// own, so that both are written at once.
class BuildWriter
{
public:
    enum class Part { Rows, Words };
    BuildWriter(Database &db, Part part);
    void store(const ReadItem &item);

private:
    Part m_part;
    Statement m_insert;
};

} // namespace tl::search::detail
