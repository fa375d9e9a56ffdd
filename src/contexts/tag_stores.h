#pragma once

#include "contexts/tag_index.h"

#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>
#include <mutex>

namespace tl::contexts {

// One batch of work on both tag stores: the index and the list of available
// tags are loaded once, every change is applied in memory, and commit()
// writes each file only when the MD5 of its text form changed. The batch
// holds the process's locks of both files for its lifetime, so a batch is
// never nested: operations take the batch they run in.
class TagStores
{
public:
    TagStores();
    ~TagStores();
    TagStores(const TagStores &) = delete;
    TagStores &operator=(const TagStores &) = delete;

    TagIndex &index() { return m_index; }
    QStringList &available() { return m_available; }

    // The library root of this batch, and paths as the index keeps them:
    // "/" and the path below the root, composed.
    const QString &root() const { return m_root; }
    QString normalized(const QString &absolutePath) const;
    QString absolute(const QString &normalizedPath) const;

    // Whether the list of available tags holds the tag, locale-aware.
    bool isAvailable(const QString &tag) const;
    // Drops the tag from the list when it was born of a marker and contexts
    // are extracted automatically.
    void dropFromListIfManaged(const QString &tag);

    // Writes what changed; answers whether the index changed.
    bool commit();
    bool listChanged() const;

private:
    QString m_root;
    std::scoped_lock<std::recursive_mutex, std::recursive_mutex> m_lock;
    TagIndex m_index;
    QStringList m_available;
    QByteArray m_indexDigest;
    QByteArray m_listDigest;
};

// Runs the step for items 0..count-1 in batches of about a second each, so
// that a long run over the library never keeps other writers waiting for
// long; stops between items once `stop` is set. Answers whether the index
// changed.
bool forEachInBatches(qsizetype count, const std::function<void(TagStores &, qsizetype)> &step,
                      const std::atomic_bool *stop);

// TagDB.plist as last read or written by this process; read again only when
// the file changed on disk.
TagIndex loadIndex();

// The list of available tags as stored, without duplicates: a list that
// held some is written back once in set order. Creates the folder of the
// list and Info.plist when the folder is missing.
QStringList readAvailableTagsHealing();

} // namespace tl::contexts
