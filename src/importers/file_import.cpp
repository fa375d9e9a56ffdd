#include "importers/file_import.h"

#include "importers/evernote_importer.h"
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

bool isImportable(const QString &path)
{
    return isImportedWhole(path) || store::lowerCasedExtension(path) == u"enex";
}

ImportedFile tl_importIntoBook(const QString &path, const QString &book,
                               const std::function<void(const QString &)> &progress,
                               const std::atomic_bool *stop)
{
    if (store::lowerCasedExtension(path) == u"enex") {
        TLKSEvernoteImporter importer(path, book, stop);
        importer.progress = progress;
        const bool complete = importer.start();
        return {importer.notes(), complete};
    }
    const std::optional<QString> document = tl_importFileIntoBook(path, book);
    if (!document)
        return {};
    if (progress)
        progress(QFileInfo(*document).fileName());
    return {{*document}, true};
}

} // namespace tl::importers
