#include "browser/list_previews.h"

#include "browser/browser_keys.h"
#include "foundation/path_string.h"
#include "platform/settings.h"
#include "store/extensions.h"
#include "store/first_line.h"
#include "store/keys.h"
#include "store/properties.h"
#include "store/text_encoding.h"

#include <QFile>

namespace tl::browser {

namespace {

// Enough of the file for a few lines of preview, never the whole of a big one.
constexpr qint64 kPreviewBytes = 2048;

} // namespace

QString listTitle(const store::ListRow &row)
{
    if (row.smartType != 0 ||
        platform::settings().boolValue(QLatin1String(keys::setting::ShowFileExtensions)))
        return row.title;
    return path::deletingExtension(row.title);
}

QString listPreview(const QString &path)
{
    const QString extension = store::lowerCasedExtension(path);
    if (!store::plainTextExtensions().contains(extension) &&
        !store::markdownExtensions().contains(extension))
        return {};
    const qint64 lines =
        store::tl_inheritedPropertyForKey(path, QLatin1String(keys::property::ShowPreviewForNotes))
            .toLongLong();
    if (lines <= 0)
        return {};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const auto decoded = store::decodedTextOfUnknownEncoding(file.read(kPreviewBytes));
    if (!decoded)
        return {};
    QStringList shown;
    const QStringList all = decoded->text.split(u'\n');
    const QString title = store::tl_firstLineOfText(decoded->text);
    for (qsizetype i = 0; i < all.size() && shown.size() < lines; ++i) {
        const QString line = all[i].trimmed();
        // The first line is the title the row already shows.
        if (line.isEmpty() || (shown.isEmpty() && i == 0 && !title.isEmpty()))
            continue;
        shown << line;
    }
    return shown.join(u' ');
}

} // namespace tl::browser
