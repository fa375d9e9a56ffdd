#include "store/properties.h"

#include "foundation/clock.h"
#include "foundation/compare.h"
#include "foundation/dates.h"
#include "foundation/digest.h"
#include "foundation/path_string.h"
#include "foundation/plist.h"
#include "platform/attributes.h"
#include "platform/cloud.h"
#include "platform/file_ops.h"
#include "platform/folders.h"
#include "platform/settings.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_folders.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/plist_file.h"

#include <QDir>
#include <QFileInfo>

namespace tl::store {

namespace P = keys::property;
namespace S = keys::setting;

namespace {

bool keyIs(const QString &key, const char *name)
{
    return key == QLatin1String(name);
}

bool isInsideRoot(const QString &path, const QString &root)
{
    return !root.isEmpty() && path.startsWith(root);
}

// View-state keys go to extended attributes when the item is outside the
// library, or, for a signed-in cloud user, when the whole library lives in
// the cloud container: the position in a document must not churn a
// synchronised property list.
bool usesAttributeStore(const QString &path, const QString &key)
{
    if (!isViewStateKey(key))
        return false;
    const QString root = libraryRoot();
    const bool inside = isInsideRoot(path, root);
    if (!platform::hasCloudIdentity())
        return !inside;
    return !inside || rootIsInCloudContainer();
}

QVariant readFromAttributes(const QString &path, const QString &key)
{
    const std::optional<QByteArray> bytes =
        platform::readAttribute(path, platform::attributeName(key));
    if (!bytes)
        return {};
    return plist::parse(*bytes).value_or(QVariant());
}

void writeToAttributes(const QString &path, const QString &key, const QVariant &value)
{
    const QString name = platform::attributeName(key);
    const QByteArray bytes = plist::toBinary(value);
    if (platform::readAttribute(path, name) == bytes)
        return;
    platform::writeAttribute(path, name, bytes);
}

QVariant defaultForKey(const QString &key)
{
    static const char *const nothing[] = {
        P::TextColor, P::BackgroundColor, P::IsProtected, P::CurrentTaskCount,
        P::TOC,       P::EmbeddedPhotos,  P::Tags,        P::LineSpacing};
    for (const char *k : nothing)
        if (keyIs(key, k))
            return {};
    if (keyIs(key, P::Backlinks) || keyIs(key, P::PDFBookmarks))
        return QVariantList{};
    if (keyIs(key, P::Mail) || keyIs(key, P::Print) || keyIs(key, P::CreationDate))
        return distantPast();
    return QString();
}

// Numbers and booleans read back as their decimal text.
QVariant asStoredValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::QVariantMap:
    case QMetaType::QVariantList:
    case QMetaType::QByteArray:
    case QMetaType::QDateTime:
        return value;
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Double:
    case QMetaType::Float:
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    default:
        return value.toString();
    }
}

void hidePropertiesFileIfWanted(const QString &file)
{
    if (platform::settings().boolValue(S::HideSystemFiles))
        tl_hideItemInFinder(file);
}

QString lastComponentOf(const QString &path)
{
    return path::lastComponent(path);
}

} // namespace

bool rootIsInCloudContainer()
{
    const QString container = platform::settings().string(S::UbiquityContainerPath);
    const QString parent = path::deletingLastComponent(container);
    return !parent.isEmpty() && libraryRoot().startsWith(parent);
}

bool isViewStateKey(const QString &key)
{
    return keyIs(key, P::CharacterOffset) || keyIs(key, P::CurrentPDFPage) ||
           keyIs(key, P::Offset) || keyIs(key, P::Markdown);
}

bool propertyValueIsEmpty(const QVariant &value)
{
    if (!value.isValid() || value.isNull())
        return true;
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString().isEmpty();
    case QMetaType::QVariantList:
        return value.toList().isEmpty();
    case QMetaType::QVariantMap:
        return value.toMap().isEmpty();
    case QMetaType::QByteArray:
        return value.toByteArray().isEmpty();
    default:
        return false;
    }
}

QVariant tl_propertyForKey(const QString &path, const QString &key)
{
    if (usesAttributeStore(path, key))
        return readFromAttributes(path, key);
    if (!path.isEmpty()) {
        const QVariantMap properties = readPlistDictionary(propertiesFilePath(path));
        const auto it = properties.constFind(key);
        if (it != properties.cend()) {
            if (keyIs(key, P::CellColor) && it.value() == QStringLiteral("white"))
                return QStringLiteral("default");
            return asStoredValue(it.value());
        }
    }
    return defaultForKey(key);
}

void tl_setProperty(const QString &path, const QVariant &value, const QString &key)
{
    if (!value.isValid()) {
        tl_removePropertyForKey(path, key);
        return;
    }
    if (path.isEmpty() || lastComponentOf(path).startsWith(QLatin1String(names::NewNoteTmp)))
        return;
    if (!isInsideRoot(path, libraryRoot())) {
        logLine(QStringLiteral("handling external document, save plist selectively"));
        if (!keyIs(key, P::CharacterOffset) && !keyIs(key, P::CSS) &&
            !keyIs(key, P::MarkdownConverter))
            return;
    }
    if (usesAttributeStore(path, key)) {
        writeToAttributes(path, key, value);
        return;
    }
    const QString file = propertiesFilePath(path);
    QVariantMap properties = readPlistDictionary(file);
    const auto it = properties.constFind(key);
    if (it == properties.cend() || !plistValuesEqual(it.value(), value)) {
        properties.insert(key, value);
        writePlistFile(file, properties, false);
    }
    hidePropertiesFileIfWanted(file);
}

void tl_setProperties(const QString &path, const QVariantMap &values)
{
    if (path.isEmpty() || lastComponentOf(path).startsWith(QLatin1String(names::NewNoteTmp)))
        return;
    // Removals, attributes and documents outside the library keep their own rules.
    const bool inside = isInsideRoot(path, libraryRoot());
    QVariantMap plain;
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        if (inside && it.value().isValid() && !usesAttributeStore(path, it.key()))
            plain.insert(it.key(), it.value());
        else
            tl_setProperty(path, it.value(), it.key());
    }
    if (plain.isEmpty())
        return;
    const QString file = propertiesFilePath(path);
    QVariantMap properties = readPlistDictionary(file);
    bool changed = false;
    for (auto it = plain.cbegin(); it != plain.cend(); ++it) {
        const auto stored = properties.constFind(it.key());
        if (stored == properties.cend() || !plistValuesEqual(stored.value(), it.value())) {
            properties.insert(it.key(), it.value());
            changed = true;
        }
    }
    if (changed)
        writePlistFile(file, properties, false);
    hidePropertiesFileIfWanted(file);
}

void tl_removePropertyForKey(const QString &path, const QString &key)
{
    if (path.isEmpty())
        return;
    // In the cloud the attribute is blanked rather than deleted, so the
    // removal itself travels with the file.
    if (isViewStateKey(key) && platform::hasCloudIdentity() && rootIsInCloudContainer()) {
        writeToAttributes(path, key, QString());
        return;
    }
    const QString file = propertiesFilePath(path);
    QVariantMap properties = readPlistDictionary(file);
    if (properties.remove(key) > 0)
        writePlistFile(file, properties, true);
    hidePropertiesFileIfWanted(file);
}

QVariant tl_inheritedPropertyForKey(const QString &path, const QString &key)
{
    const QString root = libraryRoot();
    QVariant value = tl_propertyForKey(path, key);
    // An outside document inherits from the library root alone.
    QString current =
        isInsideRoot(path, root) || root.isEmpty() ? path : root + QStringLiteral("/tmp");
    while (propertyValueIsEmpty(value)) {
        if (current.size() < 2 || current.toLower() == root.toLower())
            break;
        current = path::deletingLastComponent(current);
        value = tl_propertyForKey(current, key);
    }
    if (propertyValueIsEmpty(value) && keyIs(key, P::CellColor)) {
        static const QStringList labelColours{"",     "gray",   "green", "purple",
                                              "blue", "yellow", "red",   "orange"};
        const int label = platform::labelNumber(path);
        if (label >= 0 && label < labelColours.size())
            value = labelColours[label];
    }
    if (propertyValueIsEmpty(value)) {
        if (keyIs(key, P::MarkdownConverter))
            value = QString::number(platform::settings().integer(S::MarkdownConverter));
        else if (keyIs(key, P::ShowPreviewForNotes))
            value = platform::settings().object(S::ShowPreviewForNotes);
    }
    return value;
}

bool tl_isProtected(const QString &path)
{
    return platform::settings().boolValue(S::ProtectionEnabled) &&
           platform::boolFromValue(tl_inheritedPropertyForKey(path, P::IsProtected));
}

bool tl_isPinned(const QString &path)
{
    const QString book = path::deletingLastComponent(path);
    const QVariantList pinned =
        readPlistDictionary(path::appendingComponent(book, QLatin1String(names::BookProperties)))
            .value(P::Pinned)
            .toList();
    const QString name = path::lastComponent(path);
    return std::any_of(pinned.begin(), pinned.end(), [&](const QVariant &v) {
        return localizedCompare(v.toString(), name) == 0;
    });
}

QDateTime tl_creationDate(const QString &path)
{
    const QVariant stored = tl_propertyForKey(path, P::CreationDate);
    const QDateTime storedDate = stored.toDateTime();
    if (stored.typeId() == QMetaType::QDateTime && !isDistantPast(storedDate))
        return storedDate;
    if (path.endsWith(u".plist"))
        return storedDate;
    const QDateTime fileDate = platform::creationDate(path).value_or(
        platform::modificationDate(path).value_or(QDateTime()));
    if (!isInsideRoot(path, libraryRoot()))
        return fileDate;
    const bool hasPropertiesFile = QFileInfo::exists(propertiesFilePath(path));
    if (!hasPropertiesFile) {
        if (!platform::settings().boolValue(S::AlwaysSaveCreationDate))
            return fileDate;
        // No new files while a sync runs.
        if (platform::settings().integer(S::ICloudSyncProgress) != 0)
            return fileDate;
    }
    if (fileDate.isValid())
        tl_setCreationDate(path, fileDate);
    return fileDate;
}

void tl_setCreationDate(const QString &path, const QDateTime &date)
{
    tl_setProperty(path, date, P::CreationDate);
}

void tl_setCreationDate(const QString &path)
{
    if (path.isEmpty() || lastComponentOf(path).startsWith(QLatin1String(names::NewNoteTmp)))
        return;
    const QString file = propertiesFilePath(path);
    QVariantMap properties = readPlistDictionary(file);
    if (properties.contains(P::CreationDate))
        return;
    properties.insert(P::CreationDate, clock().now());
    writePlistFile(file, properties, true);
}

void tl_setColorLabel(const QString &path, const QString &name)
{
    if (name == u"Auto")
        tl_removePropertyForKey(path, P::CellColor);
    else
        tl_setProperty(path, name, P::CellColor);
}

void tl_hideItemInFinder(const QString &path)
{
    if (QFileInfo::exists(path))
        platform::setHidden(path, true);
}

QString tl_sideCarPath(const QString &path)
{
    return cachesRootFolder() + tl_normalizedPath(path);
}

QString tl_sideCarPathCreatingParentIfNeeded(const QString &path)
{
    const QString sideCar = tl_sideCarPath(path);
    QDir().mkpath(path::deletingLastComponent(sideCar));
    return sideCar;
}

} // namespace tl::store
