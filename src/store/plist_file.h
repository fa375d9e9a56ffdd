#pragma once

#include <QString>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>
#include <optional>

// Property-list files of the library: read whole, changed, written whole.
namespace tl::store {

std::optional<QVariant> readPlistFile(const QString &path);
// An absent, unreadable or non-dictionary file reads as empty.
QVariantMap readPlistDictionary(const QString &path);
QVariantList readPlistArray(const QString &path);

// Atomic writes are for changes of user state; derived lists are written in
// place. Answers false (and logs) on failure.
bool writePlistFile(const QString &path, const QVariant &value, bool atomically);

// Equality as stored values compare: a number never equals a string.
bool plistValuesEqual(const QVariant &a, const QVariant &b);

// The properties file of an item: BookProperties.plist inside a folder,
// NAME.plist beside a file.
QString propertiesFilePath(const QString &itemPath);

} // namespace tl::store
