#include "contexts/tag_index.h"

#include "foundation/compare.h"

namespace tl::contexts {

TagIndex TagIndex::fromPlist(const QVariantMap &plist)
{
    TagIndex index;
    for (auto it = plist.cbegin(); it != plist.cend(); ++it) {
        QStringList paths;
        for (const QVariant &value : it.value().toList())
            paths << value.toString();
        index.setPaths(it.key(), paths);
    }
    return index;
}

QVariantMap TagIndex::toPlist() const
{
    QVariantMap plist;
    for (auto it = m_entries.cbegin(); it != m_entries.cend(); ++it)
        plist.insert(it.key(), QVariant(it.value().paths));
    return plist;
}

QString TagIndex::findKey(const QString &tag) const
{
    if (m_entries.contains(tag))
        return tag;
    for (auto it = m_entries.cbegin(); it != m_entries.cend(); ++it)
        if (localizedCompare(it.key(), tag) == 0)
            return it.key();
    return {};
}

QStringList TagIndex::paths(const QString &key) const
{
    return m_entries.value(key).paths;
}

bool TagIndex::holds(const QString &key, const QString &path) const
{
    auto it = m_entries.constFind(key);
    return it != m_entries.constEnd() && it->composed.contains(precomposed(path));
}

bool TagIndex::holdsComposed(const QString &key, const QString &composedPath) const
{
    auto it = m_entries.constFind(key);
    return it != m_entries.constEnd() && it->composed.contains(composedPath);
}

bool TagIndex::append(const QString &key, const QString &path)
{
    return insert(key, -1, path);
}

bool TagIndex::insert(const QString &key, qsizetype position, const QString &path)
{
    Entry &entry = m_entries[key];
    const QString composed = precomposed(path);
    if (entry.composed.contains(composed))
        return false;
    entry.composed.insert(composed);
    if (position < 0 || position > entry.paths.size())
        entry.paths << composed;
    else
        entry.paths.insert(position, composed);
    return true;
}

qsizetype TagIndex::remove(const QString &key, const QString &path)
{
    auto it = m_entries.find(key);
    const QString composed = precomposed(path);
    if (it == m_entries.end() || !it->composed.remove(composed))
        return -1;
    for (qsizetype i = 0; i < it->paths.size(); ++i) {
        if (it->paths.at(i) == composed) {
            it->paths.removeAt(i);
            return i;
        }
    }
    return -1;
}

void TagIndex::setPaths(const QString &key, const QStringList &paths)
{
    Entry entry;
    for (const QString &path : paths) {
        const QString composed = precomposed(path);
        if (entry.composed.contains(composed))
            continue;
        entry.composed.insert(composed);
        entry.paths << composed;
    }
    m_entries.insert(key, entry);
}

bool TagIndex::replacePrefix(const QString &key, const QString &oldPrefix, const QString &newPrefix)
{
    auto it = m_entries.constFind(key);
    const QString from = precomposed(oldPrefix);
    if (it == m_entries.constEnd() || from.isEmpty())
        return false;
    QStringList paths;
    bool changed = false;
    for (const QString &path : it->paths) {
        if (!path.startsWith(from)) {
            paths << path;
            continue;
        }
        changed = true;
        if (!newPrefix.isEmpty())
            paths << newPrefix + path.mid(from.size());
    }
    if (changed)
        setPaths(key, paths);
    return changed;
}

void TagIndex::removeKey(const QString &key)
{
    m_entries.remove(key);
}

} // namespace tl::contexts
