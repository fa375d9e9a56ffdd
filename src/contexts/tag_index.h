#pragma once

#include <QHash>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantMap>

namespace tl::contexts {

// TagDB.plist in memory: tag -> ordered normalized item paths, with a hash
// set of their composed forms beside each list, so that a library of many
// thousand items answers "does this entry hold that path" without a scan.
class TagIndex
{
public:
    // Duplicates (also in another composition) are dropped on reading.
    static TagIndex fromPlist(const QVariantMap &plist);
    QVariantMap toPlist() const;

    // The key as stored: the tag itself, or the key equal to it
    // locale-aware; empty when there is none.
    QString findKey(const QString &tag) const;
    bool hasKey(const QString &key) const { return m_entries.contains(key); }
    QStringList keys() const { return m_entries.keys(); }

    QStringList paths(const QString &key) const;
    bool holds(const QString &key, const QString &path) const;
    // The same for a path known to be composed already, without normalizing.
    bool holdsComposed(const QString &key, const QString &composedPath) const;
    // Appends when missing; answers whether it did.
    bool append(const QString &key, const QString &path);
    bool insert(const QString &key, qsizetype position, const QString &path);
    // Answers the position the path had, or -1.
    qsizetype remove(const QString &key, const QString &path);
    void setPaths(const QString &key, const QStringList &paths);
    // Paths below a moved book take the new prefix in their places; with an
    // empty new prefix they leave. Answers whether any changed.
    bool replacePrefix(const QString &key, const QString &oldPrefix, const QString &newPrefix);
    void removeKey(const QString &key);

private:
    struct Entry
    {
        QStringList paths;
        QSet<QString> composed;
    };
    QHash<QString, Entry> m_entries;
};

} // namespace tl::contexts
