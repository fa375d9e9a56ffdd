#include "search/stored_stamps.h"

#include "search/sqlite_database.h"

#include <QFile>
#include <algorithm>

namespace tl::search::detail {

StoredStamps::StoredStamps(Database &db, const QString &folder, bool everything)
{
    // Paths below the folder: the character after "/" closes the range. All
    // of them are read straight from the table, not through the index of paths.
    Statement rows(db, everything ? QStringLiteral("SELECT path, id, modified, size FROM items "
                                                   "WHERE ?1 IS NOT ?2")
                                  : QStringLiteral("SELECT path, id, modified, size FROM items "
                                                   "WHERE path >= ?1 AND path < ?2"));
    rows.bind(1, folder + u'/').bind(2, folder + u'0');
    const std::hash<std::string_view> hashOf;
    while (rows.step()) {
        const std::string_view path = rows.utf8(0);
        m_stamps.push_back({rows.integer(1), rows.integer(2), rows.integer(3), hashOf(path),
                            m_paths.size(), path.size()});
        m_paths += path;
    }
    m_seen = std::vector<std::atomic<bool>>(m_stamps.size());
    size_t slots = 16;
    while (slots < 2 * m_stamps.size())
        slots *= 2;
    m_slots.assign(slots, -1);
    m_mask = slots - 1;
    for (size_t i = 0; i < m_stamps.size(); ++i) {
        size_t slot = m_stamps[i].hash & m_mask;
        while (m_slots[slot] >= 0)
            slot = (slot + 1) & m_mask;
        m_slots[slot] = qsizetype(i);
    }
}

qsizetype StoredStamps::find(std::string_view path) const
{
    const size_t hash = std::hash<std::string_view>()(path);
    for (size_t slot = hash & m_mask; m_slots[slot] >= 0; slot = (slot + 1) & m_mask) {
        const Stamp &stamp = m_stamps[size_t(m_slots[slot])];
        if (stamp.hash == hash &&
            std::string_view(m_paths).substr(stamp.pathStart, stamp.pathSize) == path)
            return m_slots[slot];
    }
    // A name that is not UTF-8 is stored as Qt decodes it.
    if (std::all_of(path.cbegin(), path.cend(), [](char c) { return (c & 0x80) == 0; }))
        return -1;
    const QByteArray stored =
        QFile::decodeName(QByteArray(path.data(), qsizetype(path.size()))).toUtf8();
    if (std::string_view(stored.constData(), size_t(stored.size())) == path)
        return -1;
    return find(std::string_view(stored.constData(), size_t(stored.size())));
}

bool StoredStamps::isUnchanged(const EncodedItemStamp &item, qint64 &id)
{
    const qsizetype at = find(item.path);
    if (at < 0) {
        id = -1;
        return false;
    }
    m_seen[size_t(at)].store(true, std::memory_order_relaxed);
    const Stamp &stamp = m_stamps[size_t(at)];
    id = stamp.id;
    return stamp.modified == item.modified && stamp.size == item.size;
}

QList<qint64> StoredStamps::unseen() const
{
    QList<qint64> ids;
    for (size_t i = 0; i < m_stamps.size(); ++i)
        if (!m_seen[i].load(std::memory_order_relaxed))
            ids << m_stamps[i].id;
    return ids;
}

} // namespace tl::search::detail
