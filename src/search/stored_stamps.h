#pragma once

#include "search/searchable_items.h"

#include <QList>
#include <atomic>
#include <string>
#include <string_view>
#include <vector>

namespace tl::search::detail {

class Database;

// What the index holds of the items below a folder, looked up by the paths a
// walk meets. Lookups may run on several threads at once, each path on one.
class StoredStamps
{
public:
    // Everything when the folder is the root, which every item lies below.
    StoredStamps(Database &db, const QString &folder, bool everything);

    // Whether the item is stored with this stamp; its id, or -1 when the
    // index does not hold it. Marks it seen.
    bool isUnchanged(const EncodedItemStamp &item, qint64 &id);
    bool isEmpty() const { return m_stamps.empty(); }
    size_t size() const { return m_stamps.size(); }
    // The ids of the items no lookup asked for.
    QList<qint64> unseen() const;

private:
    struct Stamp
    {
        qint64 id;
        qint64 modified;
        qint64 size;
        size_t hash;
        size_t pathStart;
        size_t pathSize;
    };
    // The index of the stored item, or -1.
    qsizetype find(std::string_view path) const;

    std::string m_paths;
    std::vector<Stamp> m_stamps;
    std::vector<std::atomic<bool>> m_seen;
    // An open-addressed table of indexes into m_stamps, -1 for a free slot:
    // one probe into a flat array for most lookups, where a node-based map
    // would chase pointers all over the heap.
    std::vector<qsizetype> m_slots;
    size_t m_mask = 0;
};

} // namespace tl::search::detail
