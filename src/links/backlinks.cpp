#include "links/backlinks.h"

#include "foundation/compare.h"
#include "foundation/plist.h"
#include "links/path_lock.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/plist_file.h"

#include <QFileInfo>
#include <functional>

namespace tl::links {

namespace P = keys::property;

namespace {

const QString backlinksKey = QLatin1String(P::Backlinks);
const QString referencedPathKey = QLatin1String(P::ReferencedPath);

bool containsPath(const QStringList &list, const QString &path)
{
    return std::any_of(list.begin(), list.end(),
                       [&](const QString &entry) { return samePath(entry, path); });
}

QStringList withoutDuplicates(const QStringList &list)
{
    QStringList unique;
    for (const QString &entry : list) {
        if (!containsPath(unique, entry))
            unique.append(entry);
    }
    return unique;
}

// Reads the item's properties, lets `change` edit them, and writes them in
// place when their stored form changed. Answers whether it wrote.
bool updateProperties(const QString &item, const std::function<void(QVariantMap &)> &change)
{
    const QString file = store::propertiesFilePath(item);
    const auto lock = lockPath(file);
    QVariantMap properties = store::readPlistDictionary(file);
    const QByteArray before = plist::toXml(properties);
    change(properties);
    if (plist::toXml(properties) == before)
        return false;
    return store::writePlistFile(file, properties, false);
}

} // namespace

QString absoluteItemPath(const QString &path)
{
    if (path.isEmpty() || store::tl_itemIsChildOfTavelle(path))
        return path;
    return store::libraryRoot() + path;
}

bool samePath(const QString &a, const QString &b)
{
    return localizedCompare(a, b) == 0;
}

QStringList backlinksOf(const QString &item)
{
    return store::readPlistDictionary(store::propertiesFilePath(item))
        .value(backlinksKey)
        .toStringList();
}

QString referencedPathOf(const QString &item)
{
    return store::readPlistDictionary(store::propertiesFilePath(item))
        .value(referencedPathKey)
        .toString();
}

bool hasMismatch(const QString &item)
{
    const QString stored = referencedPathOf(item);
    return !stored.isEmpty() && !samePath(stored, store::tl_normalizedPath(item));
}

void setReferencedPath(const QString &item, const QString &normalizedPath)
{
    updateProperties(item, [&](QVariantMap &properties) {
        properties.insert(referencedPathKey, normalizedPath);
    });
}

void setBacklinks(const QString &item, const QStringList &backlinks)
{
    updateProperties(item, [&](QVariantMap &properties) {
        properties.insert(backlinksKey, withoutDuplicates(backlinks));
        properties.insert(referencedPathKey, store::tl_normalizedPath(item));
    });
}

void tl_addBacklink(const QString &referenced, const QString &referencingDocument)
{
    const QString item = absoluteItemPath(referenced);
    if (!QFileInfo::exists(item))
        return;
    const QString normalized = store::tl_normalizedPath(item);
    const bool changed = updateProperties(item, [&](QVariantMap &properties) {
        QStringList backlinks = withoutDuplicates(properties.value(backlinksKey).toStringList());
        const QString stored = properties.value(referencedPathKey).toString();
        if (backlinks.isEmpty() || stored.isEmpty())
            properties.insert(referencedPathKey, normalized);
        else if (!samePath(stored, normalized))
            logLine(
                QStringLiteral("### MISMATCH: should be %1, but is %2").arg(normalized, stored));
        const QString source = store::tl_normalizedPath(referencingDocument);
        if (!containsPath(backlinks, source))
            backlinks.append(source);
        properties.insert(backlinksKey, backlinks);
    });
    if (changed)
        logLine(QStringLiteral("backlinks changed for %1").arg(item));
}

bool tl_removeBacklinks(const QString &item)
{
    return updateProperties(absoluteItemPath(item), [](QVariantMap &properties) {
        properties.remove(backlinksKey);
        properties.remove(referencedPathKey);
    });
}

void tl_changeBacklinkFrom(const QString &referenced, const QString &from, const QString &to)
{
    const QString item = absoluteItemPath(referenced);
    if (!QFileInfo::exists(item))
        return;
    const QString root = store::libraryRoot();
    updateProperties(item, [&](QVariantMap &properties) {
        QStringList backlinks = properties.value(backlinksKey).toStringList();
        const QString old = store::tl_normalizedPath(from);
        backlinks.removeIf([&](const QString &entry) { return samePath(entry, old); });
        if (!to.isEmpty())
            backlinks.append(store::tl_normalizedPath(to));
        backlinks.removeIf([&](const QString &entry) { return !QFileInfo::exists(root + entry); });
        if (backlinks.isEmpty())
            properties.remove(backlinksKey);
        else
            properties.insert(backlinksKey, withoutDuplicates(backlinks));
    });
}

} // namespace tl::links
