#include "contexts/tag_files.h"

#include "contexts/context_keys.h"
#include "foundation/compare.h"
#include "foundation/dates.h"
#include "platform/file_ops.h"
#include "store/library_folders.h"
#include "store/library_root.h"
#include "store/plist_file.h"

#include <QFileInfo>
#include <QHash>
#include <algorithm>
#include <memory>

namespace tl::contexts {

QString tagDBPath()
{
    return store::applicationSupportRootFolder() + u'/' + QLatin1String(keys::TagDBFile);
}

QString infoPlistPath()
{
    return store::applicationSupportRootFolder() + u'/' + QLatin1String(keys::InfoFile);
}

QString availableTagsPath()
{
    return store::libraryRoot() + u'/' + QLatin1String(keys::AvailableTagsFile);
}

QString excludedTagsPath()
{
    return store::libraryRoot() + u'/' + QLatin1String(keys::ExcludedTagsFile);
}

std::recursive_mutex &fileLock(const QString &path)
{
    static std::mutex mapMutex;
    static QHash<QString, std::shared_ptr<std::recursive_mutex>> locks;
    const std::lock_guard guard(mapMutex);
    std::shared_ptr<std::recursive_mutex> &lock = locks[path];
    if (!lock)
        lock = std::make_shared<std::recursive_mutex>();
    return *lock;
}

QStringList readExcludedTags()
{
    const std::optional<QByteArray> bytes = platform::readFile(excludedTagsPath());
    if (!bytes)
        return {};
    QStringList words;
    const QString text = QString::fromUtf8(*bytes);
    qsizetype start = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !text.at(i).isSpace() && text.at(i) != u',')
            continue;
        if (i > start)
            words << text.mid(start, i - start);
        start = i + 1;
    }
    return words;
}

bool writeExcludedTags(QStringList tags)
{
    std::sort(tags.begin(), tags.end(), LocalizedCaseInsensitiveLess());
    tags.removeDuplicates();
    const QString path = excludedTagsPath();
    platform::makeFolder(QFileInfo(path).path());
    return platform::writeFileInPlace(path, tags.join(u'\n').toUtf8());
}

QString excludedTagsFileCreatingIfNeeded()
{
    const QString path = excludedTagsPath();
    if (!QFileInfo::exists(path)) {
        platform::makeFolder(QFileInfo(path).path());
        platform::writeFileInPlace(path, QByteArrayLiteral("\n"));
    }
    return path;
}

QVariant infoValue(const QString &key)
{
    return store::readPlistDictionary(infoPlistPath()).value(key);
}

void setInfoValue(const QString &key, const QVariant &value)
{
    const QString path = infoPlistPath();
    const std::lock_guard lock(fileLock(path));
    QVariantMap info = store::readPlistDictionary(path);
    info.insert(QLatin1String(keys::TLRoot), store::libraryRoot());
    if (value.isValid())
        info.insert(key, value);
    platform::makeFolder(QFileInfo(path).path());
    store::writePlistFile(path, info, true);
}

QDateTime autocollectDate()
{
    const QDateTime date = infoValue(QLatin1String(keys::AutocollectDate)).toDateTime();
    return date.isValid() ? date : distantPast();
}

void setAutocollectDate(const QDateTime &date)
{
    setInfoValue(QLatin1String(keys::AutocollectDate), date);
}

} // namespace tl::contexts
