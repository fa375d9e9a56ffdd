#pragma once

#include <QDateTime>
#include <QString>
#include <QVariant>

// An item's properties: a dictionary in its properties file, and for the
// view-state keys outside plain local space, its extended attributes.
namespace tl::store {

// The value, or the key's default: nothing, an empty array, the distant past
// or an empty string. Numbers and booleans read back as decimal text.
QVariant tl_propertyForKey(const QString &path, const QString &key);
// An invalid value removes the key. Writes only when the value changed.
void tl_setProperty(const QString &path, const QVariant &value, const QString &key);
// Several keys at once, the properties file read and written once.
void tl_setProperties(const QString &path, const QVariantMap &values);
void tl_removePropertyForKey(const QString &path, const QString &key);
// The value on the item or its nearest ancestor below the library root.
QVariant tl_inheritedPropertyForKey(const QString &path, const QString &key);

// Whether a value counts as set: not nothing, not empty text or collection.
bool propertyValueIsEmpty(const QVariant &value);
// Whether the library lives in the cloud container (its root below the
// container's parent folder).
bool rootIsInCloudContainer();
// The four keys of a document's view state.
bool isViewStateKey(const QString &key);

bool tl_isProtected(const QString &path);
bool tl_isPinned(const QString &path);

QDateTime tl_creationDate(const QString &path);
void tl_setCreationDate(const QString &path, const QDateTime &date);
// Stores now for a new item unless a creation date is present.
void tl_setCreationDate(const QString &path);

// "Auto" removes the colour label; any other name is stored.
void tl_setColorLabel(const QString &path, const QString &name);
// Sets the hidden flag of the item at the path.
void tl_hideItemInFinder(const QString &path);

// Thumbnail path of an item in the caches folder of this library.
QString tl_sideCarPath(const QString &path);
QString tl_sideCarPathCreatingParentIfNeeded(const QString &path);

} // namespace tl::store
