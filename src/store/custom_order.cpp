#include "store/custom_order.h"

#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "store/extensions.h"
#include "store/keys.h"
#include "store/plist_file.h"

#include <QFileInfo>

namespace tl::store {

namespace {

namespace P = keys::property;

QString bookPropertiesOfParent(const QString &path)
{
    return path::appendingComponent(path::deletingLastComponent(path),
                                    QLatin1String(names::BookProperties));
}

// Package documents are folders, but they are listed with the documents.
const char *orderListKeyFor(const QString &path)
{
    const bool isBook =
        QFileInfo(path).isDir() && !packageExtensions().contains(lowerCasedExtension(path));
    return isBook ? P::Books : P::Notes;
}

QStringList stringList(const QVariant &value)
{
    QStringList list;
    for (const QVariant &v : value.toList())
        list << v.toString();
    return list;
}

// Replaces the name in the list, or removes it for an empty replacement.
bool renameEntry(QVariantMap &properties, const char *key, const QString &oldName,
                 const QString &newName)
{
    QStringList list = stringList(properties.value(QLatin1String(key)));
    const std::optional<qsizetype> index = tl_localizedIndexOfObject(list, oldName);
    if (!index)
        return false;
    if (newName.isEmpty())
        list.removeAt(*index);
    else
        list[*index] = newName;
    properties.insert(QLatin1String(key), list);
    return true;
}

} // namespace

std::optional<qsizetype> tl_localizedIndexOfObject(const QStringList &list, const QString &name)
{
    for (qsizetype i = 0; i < list.size(); ++i)
        if (localizedCompare(list[i], name) == 0)
            return i;
    return std::nullopt;
}

std::optional<qsizetype> tl_customSequenceNrForPath(const QString &path)
{
    if (!QFileInfo::exists(path))
        return std::nullopt;
    const QVariantMap properties = readPlistDictionary(bookPropertiesOfParent(path));
    return tl_localizedIndexOfObject(stringList(properties.value(orderListKeyFor(path))),
                                     path::lastComponent(path));
}

void tl_changeSortOrderToPath(const QString &oldPath, const QString &newPath)
{
    const bool removed = newPath.isEmpty();
    if (!removed && localizedCompare(path::deletingLastComponent(oldPath),
                                     path::deletingLastComponent(newPath)) != 0)
        return;
    const QString propertiesFile = bookPropertiesOfParent(oldPath);
    if (!QFileInfo::exists(propertiesFile))
        return;
    QVariantMap properties = readPlistDictionary(propertiesFile);
    const QString oldName = path::lastComponent(oldPath);
    const QString newName = removed ? QString() : path::lastComponent(newPath);
    bool changed = false;
    if (removed) {
        // Names are unique in a folder, so the gone item is in one list at most.
        changed |= renameEntry(properties, P::Books, oldName, {});
        changed |= renameEntry(properties, P::Notes, oldName, {});
    } else {
        changed |= renameEntry(properties, orderListKeyFor(newPath), oldName, newName);
    }
    changed |= renameEntry(properties, P::Pinned, oldName, newName);
    if (changed)
        writePlistFile(propertiesFile, properties, false);
}

void tl_pinToTop(const QString &path)
{
    const QString propertiesFile = bookPropertiesOfParent(path);
    QVariantMap properties = readPlistDictionary(propertiesFile);
    QStringList pinned = stringList(properties.value(P::Pinned));
    const QString name = path::lastComponent(path);
    if (const std::optional<qsizetype> index = tl_localizedIndexOfObject(pinned, name))
        pinned.removeAt(*index);
    else
        pinned.prepend(name);
    properties.insert(P::Pinned, pinned);
    writePlistFile(propertiesFile, properties, false);
    NotificationCenter::defaultCenter().post(events::FileModifiedOnDisk,
                                             {{"path", propertiesFile}});
}

} // namespace tl::store
