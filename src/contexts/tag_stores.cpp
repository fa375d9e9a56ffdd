#include "contexts/tag_stores.h"

#include "contexts/context_keys.h"
#include "contexts/context_words.h"
#include "contexts/tag_database.h"
#include "contexts/tag_files.h"
#include "foundation/compare.h"
#include "foundation/plist.h"
#include "platform/file_ops.h"
#include "store/library_root.h"
#include "store/plist_file.h"

#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QSet>
#include <sys/stat.h>
#include <tuple>

namespace tl::contexts {

namespace {

QByteArray digestOf(const QVariant &value)
{
    return QCryptographicHash::hash(plist::toXml(value), QCryptographicHash::Md5);
}

QVariant listValue(const QStringList &list)
{
    return QVariant(list);
}

struct FileIdentity
{
    bool exists = false;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    qint64 modifiedNs = 0;
    bool operator==(const FileIdentity &) const = default;
};

FileIdentity identityOf(const QString &path)
{
    struct stat status
    {
    };
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return {};
    return {true, status.st_dev, status.st_ino, status.st_size,
            qint64(status.st_mtim.tv_sec) * 1000000000 + status.st_mtim.tv_nsec};
}

// A library of many thousand items has an index of several MB: parsing it
// for every badge and every step would dominate, so the parsed form is kept
// with the identity of the file it came from.
struct IndexCache
{
    std::mutex mutex;
    QString path;
    FileIdentity identity;
    TagIndex index;
    QByteArray digest;
};

IndexCache &indexCache()
{
    static IndexCache cache;
    return cache;
}

void rememberIndex(const QString &path, const TagIndex &index, const QByteArray &digest)
{
    IndexCache &cache = indexCache();
    const std::lock_guard lock(cache.mutex);
    cache.path = path;
    cache.identity = identityOf(path);
    cache.index = index;
    cache.digest = digest;
}

// The index with the MD5 of its text form.
std::pair<TagIndex, QByteArray> loadIndexWithDigest()
{
    const QString path = tagDBPath();
    const FileIdentity identity = identityOf(path);
    {
        IndexCache &cache = indexCache();
        const std::lock_guard lock(cache.mutex);
        if (identity.exists && cache.path == path && cache.identity == identity)
            return {cache.index, cache.digest};
    }
    const TagIndex index = TagIndex::fromPlist(store::readPlistDictionary(path));
    const QByteArray digest = digestOf(index.toPlist());
    if (identity.exists)
        rememberIndex(path, index, digest);
    return {index, digest};
}

} // namespace

bool forEachInBatches(qsizetype count, const std::function<void(TagStores &, qsizetype)> &step,
                      const std::atomic_bool *stop)
{
    constexpr qint64 kBatchMs = 1000;
    bool changed = false;
    qsizetype next = 0;
    while (next < count && !(stop && stop->load())) {
        TagStores stores;
        QElapsedTimer timer;
        timer.start();
        for (; next < count && timer.elapsed() < kBatchMs; ++next) {
            if (stop && stop->load())
                break;
            step(stores, next);
        }
        changed |= stores.commit();
    }
    return changed;
}

TagIndex loadIndex()
{
    return loadIndexWithDigest().first;
}

QStringList readAvailableTagsHealing()
{
    const QString path = availableTagsPath();
    const std::lock_guard lock(fileLock(path));
    const QString folder = QFileInfo(path).path();
    if (!QFileInfo::exists(folder)) {
        platform::makeFolder(folder);
        setInfoValue(QLatin1String(keys::TLRoot), store::libraryRoot());
    }
    QStringList tags;
    for (const QVariant &value : store::readPlistArray(path))
        tags << value.toString();
    const QSet<QString> unique(tags.cbegin(), tags.cend());
    if (unique.size() != tags.size()) {
        tags = QStringList(unique.cbegin(), unique.cend());
        store::writePlistFile(path, listValue(tags), false);
    }
    return tags;
}

TagStores::TagStores()
    : m_root(store::libraryRoot()), m_lock(fileLock(tagDBPath()), fileLock(availableTagsPath()))
{
    std::tie(m_index, m_indexDigest) = loadIndexWithDigest();
    m_available = readAvailableTagsHealing();
    m_listDigest = digestOf(listValue(m_available));
}

TagStores::~TagStores() = default;

QString TagStores::normalized(const QString &absolutePath) const
{
    if (absolutePath.size() > m_root.size() && absolutePath.startsWith(m_root) &&
        absolutePath.at(m_root.size()) == u'/')
        return precomposed(absolutePath.mid(m_root.size()));
    return precomposed(absolutePath);
}

QString TagStores::absolute(const QString &normalizedPath) const
{
    return m_root + normalizedPath;
}

bool TagStores::isAvailable(const QString &tag) const
{
    if (m_available.contains(tag))
        return true;
    for (const QString &known : m_available)
        if (localizedCompare(known, tag) == 0)
            return true;
    return false;
}

void TagStores::dropFromListIfManaged(const QString &tag)
{
    if (contextsExtractedAutomatically() && tl_tagIsManagedAutomatically(tag))
        m_available.removeAll(tag);
}

bool TagStores::listChanged() const
{
    return digestOf(listValue(m_available)) != m_listDigest;
}

bool TagStores::commit()
{
    if (listChanged()) {
        store::writePlistFile(availableTagsPath(), listValue(m_available), false);
        m_listDigest = digestOf(listValue(m_available));
    }
    const QVariantMap plist = m_index.toPlist();
    const QByteArray digest = digestOf(plist);
    if (digest == m_indexDigest)
        return false;
    platform::makeFolder(QFileInfo(tagDBPath()).path());
    store::writePlistFile(tagDBPath(), plist, true);
    rememberIndex(tagDBPath(), m_index, digest);
    m_indexDigest = digest;
    return true;
}

} // namespace tl::contexts
