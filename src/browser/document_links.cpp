#include "browser/document_view_controller.h"
#include "links/attachments.h"
#include "links/backlink_upkeep.h"
#include "links/rename_propagation.h"
#include "store/document_file.h"

#include <QFileInfo>
#include <QThreadPool>

namespace tl::browser {

void TLKSDocumentViewController::assignBacklinksOnShow()
{
    referencedDocuments =
        documentIsInLibrary() && links::isLinkBearing(path) && QFileInfo::exists(path)
            ? links::tl_refreshBacklinksForReferencedDocuments(path)
            : QStringList();
}

void TLKSDocumentViewController::followLinksAfterSave(const QString &originalPath)
{
    if (!documentIsInLibrary())
        return;
    const bool renamed = !originalPath.isEmpty() && originalPath != path;
    referencedDocuments =
        links::backlinksAfterSave(path, referencedDocuments, renamed ? originalPath : QString());
    // The attachments list follows the text off the main thread.
    const bool formatted = viewThatIsVisible == FormattedView;
    QThreadPool::globalInstance()->start([document = path, formatted] {
        if (const auto file = store::tl_stringWithContentsOfFile(document))
            links::updateEmbeddedPhotosAfterSave(document, file->text, formatted);
    });
}

} // namespace tl::browser
