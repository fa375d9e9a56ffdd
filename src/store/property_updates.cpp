#include "store/property_updates.h"

#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "store/item_path.h"
#include "store/plist_file.h"
#include "store/properties.h"

namespace tl::store {

std::optional<QVariant> updateProperty(const QStringList &paths, const QString &key,
                                       const QVariant &value)
{
    if (paths.isEmpty())
        return std::nullopt;
    const bool removes = propertyValueIsEmpty(value) || (value.typeId() == QMetaType::QString &&
                                                         value.toString().startsWith(u"Auto"));
    const QVariant wanted = removes ? QVariant() : value;
    const QVariant before = tl_propertyForKey(paths.first(), key);
    const bool same = propertyValueIsEmpty(before)
                          ? !wanted.isValid()
                          : wanted.isValid() && plistValuesEqual(before, wanted);
    if (same)
        return std::nullopt;
    NotificationCenter &center = NotificationCenter::defaultCenter();
    for (const QString &path : paths) {
        tl_setProperty(path, wanted, key);
        if (tl_pathIsBook(path))
            center.post(events::ReloadCurrentBook, {{"path", path}});
        center.post(events::FileModifiedOnDisk, {{"path", propertiesFilePath(path)}});
    }
    return before;
}

} // namespace tl::store
