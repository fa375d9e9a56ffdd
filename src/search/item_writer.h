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

// Which table the words of an item go to: a build from nothing fills `built`,
// everything after it `later`.
enum class WordsTable { Built, Later };

// Writes items through one connection, inside a transaction the caller holds.
class ItemWriter
{
public:
    ItemWriter(Database &db, WordsTable table);
    void forget(qint64 id);
    void store(const ReadItem &item);

private:
    Database &m_db;
    WordsTable m_table;
    Statement m_outdate;
    Statement m_forgetWords;
    Statement m_forgetItem;
    Statement m_insert;
    Statement m_update;
    Statement m_storeWords;
};

} // namespace tl::search::detail
