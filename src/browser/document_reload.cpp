// Outside changes to the document on screen: another program, another
// device, or a change of the properties it inherits.
#include "browser/document_view_controller.h"
#include "browser/document_view_state.h"
#include "foundation/path_string.h"
#include "platform/file_ops.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/properties.h"

namespace tl::browser {

namespace {

// Further apart than this, the file's date is another writer's.
constexpr double kOutsideChangeGap = 0.5;
// Attachments are taken for changed only when this much newer.
constexpr double kAttachmentGap = 3.0;

double secondsBetween(const QDateTime &a, const QDateTime &b)
{
    if (!a.isValid() || !b.isValid())
        return a.isValid() != b.isValid() ? kOutsideChangeGap + 1 : 0;
    return std::abs(double(a.msecsTo(b))) / 1000.0;
}

// A properties file that the document's looks inherit from.
bool isInheritedPropertiesFile(const QString &changed, const QString &document)
{
    if (changed == store::tl_plistPath(document))
        return true;
    if (path::lastComponent(changed) != QLatin1String(names::BookProperties))
        return false;
    const QString book = path::deletingLastComponent(changed);
    return document.startsWith(book + u'/');
}

bool rerendersOnPropertyChange(const QString &path)
{
    const QString extension = store::lowerCasedExtension(path);
    return store::markdownExtensions().contains(extension) || extension == u"html" ||
           extension == u"eml" || extension == u"fountain" || extension == u"opml";
}

} // namespace

void TLKSDocumentViewController::checkIfDocumentNeedsReload(const QString &changedPath)
{
    if (path.isEmpty() || changedPath.isEmpty())
        return;
    bool propertyChanged = false;
    if (isInheritedPropertiesFile(changedPath, path)) {
        const QVariantMap now = relevantInheritedProperties(path);
        propertyChanged = now != currentPlist;
        currentPlist = now;
    }
    if (changedPath == path || propertyChanged) {
        const QDateTime date = platform::modificationDate(path).value_or(QDateTime());
        if (secondsBetween(date, modDateOfPresentedDocument) > kOutsideChangeGap) {
            if (windowEdited()) {
                // The user is typing: what they typed wins over the other writer's.
                forceSave = true;
                writeTextToFile();
                return;
            }
            showDocument();
            return;
        }
        if (!propertyChanged)
            return;
        // Only the looks changed. An editing view keeps its text.
        applyLockRule();
        if (windowEdited() || !md5hash.isEmpty() || isKeyWindow)
            return;
        if (viewThatIsVisible == PlainTextView) {
            Q_EMIT plainTextReplaced();
        } else if (viewThatIsVisible == FormattedView && rerendersOnPropertyChange(path)) {
            showDocument();
        } else if (viewThatIsVisible == FormattedView) {
            loadFormattedPage();
            Q_EMIT formattedPageChanged();
        }
        return;
    }
    // A picture of the document's own changed in its book's attachments folder.
    const QString images = path::appendingComponent(parentPath, QLatin1String(names::TLImages));
    if (changedPath.startsWith(images + u'/')) {
        const QStringList listed =
            store::tl_propertyForKey(path, QLatin1String(keys::property::EmbeddedPhotos))
                .toStringList();
        const QDateTime date = platform::modificationDate(changedPath).value_or(QDateTime());
        if (listed.contains(path::lastComponent(changedPath)) &&
            secondsBetween(date, modDateOfPresentedDocument) > kAttachmentGap)
            reloadCurrentDocument();
    }
}

} // namespace tl::browser
