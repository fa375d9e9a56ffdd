// The contexts written in a shown document's text, kept in step with the
// item's tags on every save. Only words that stood in the text before are
// taken away, so a tag given by hand survives each save.

#include "browser/document_view_controller.h"
#include "contexts/context_words.h"
#include "contexts/tag_database.h"
#include "store/extensions.h"
#include "store/keys.h"
#include "store/properties.h"
#include "store/text_conversions.h"

namespace tl::browser {

namespace {

// The kinds whose text is looked at on saving; HTML counts only where its
// text is really the document's: in the formatted view, or as the
// representation of Markdown.
bool savesContextsOf(const QString &path, bool formattedVisible)
{
    const QString extension = store::lowerCasedExtension(path);
    if (extension.startsWith(QLatin1String("htm")))
        return formattedVisible ||
               (extension == u"html" &&
                !store::tl_propertyForKey(path, QLatin1String(keys::property::Markdown))
                     .toString()
                     .isEmpty());
    static const QStringList kinds = {"md",  "markdown", "text",     "mdown",    "rmd",
                                      "txt", "html",     "fountain", "taskpaper"};
    return kinds.contains(extension);
}

} // namespace

void TLKSDocumentViewController::noteEmbeddedContexts(const QString &text)
{
    const QStringList verified = contexts::tl_verifiedTagList(path);
    embeddedContexts = contexts::tl_extractTagsFromString(text).intersect(
        QSet<QString>(verified.cbegin(), verified.cend()));
}

void TLKSDocumentViewController::keepContextsInStep(const QString &savedText)
{
    const bool formatted = viewThatIsVisible == FormattedView;
    if (!documentIsInLibrary() || !contexts::contextsExtractedAutomatically() ||
        !savesContextsOf(path, formatted))
        return;
    const contexts::TagSet found = contexts::tl_extractTagsFromString(
        formatted ? store::tl_htmlToPlainText(savedText) : savedText);
    if (found == embeddedContexts)
        return;
    contexts::tl_updateContextsRemoving(path, embeddedContexts, found);
    embeddedContexts = found;
}

} // namespace tl::browser
