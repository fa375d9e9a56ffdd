#include "browser/list_previews.h"

#include "browser/browser_keys.h"
#include "convert/note_preview.h"
#include "foundation/path_string.h"
#include "platform/settings.h"
#include "store/extensions.h"
#include "store/keys.h"
#include "store/properties.h"

#include <QFileInfo>

namespace tl::browser {

QString listTitle(const store::ListRow &row)
{
    if (row.smartType != 0 ||
        platform::settings().boolValue(QLatin1String(keys::setting::ShowFileExtensions)))
        return row.title;
    return path::deletingExtension(row.title);
}

QString listPreview(const QString &path)
{
    const QFileInfo file(path);
    if (!file.exists() ||
        (file.isDir() && !store::packageExtensions().contains(store::lowerCasedExtension(path))))
        return {};
    const qint64 lines =
        store::tl_inheritedPropertyForKey(path, QLatin1String(keys::property::ShowPreviewForNotes))
            .toLongLong();
    if (lines <= 0)
        return {};
    const QString preview = convert::tl_previewOfNoteWithTitle(path, path::lastComponent(path));
    return preview.split(u'\n').mid(0, lines).join(u'\n');
}

} // namespace tl::browser
