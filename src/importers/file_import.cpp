#include "importers/file_import.h"

#include "store/extensions.h"
#include "store/item_operations.h"
#include "store/log.h"
#include "store/safe_names.h"

#include <QFileInfo>

namespace tl::importers {

bool isImportedWhole(const QString &path)
{
    const QString extension = store::lowerCasedExtension(path);
    return extension == u"eml" || extension == u"opml";
}

std::optional<QString> tl_importFileIntoBook(const QString &path, const QString &book)
{
    if (!isImportedWhole(path) || !QFileInfo(path).isFile()) {
        logLine(QStringLiteral("import: not a mail message or outline %1").arg(path));
        return std::nullopt;
    }
    const QString target = store::tl_uniqueNameForFileatPath(QFileInfo(path).fileName(), book);
    if (!store::tl_copyItemToPath(path, target)) {
        logLine(QStringLiteral("import: cannot copy %1 into %2").arg(path, book));
        return std::nullopt;
    }
    return target;
}

} // namespace tl::importers
