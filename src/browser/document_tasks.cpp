#include "browser/document_view_controller.h"
#include "convert/html_to_text.h"
#include "foundation/path_string.h"
#include "store/document_file.h"
#include "store/keys.h"
#include "store/properties.h"
#include "tasks/task_extraction.h"

namespace tl::browser {

QStringList TLKSDocumentViewController::tl_extractTasks()
{
    if (path.isEmpty() || tasks::taskMarker().isEmpty())
        return {};
    writeTextToFile();
    const QString text =
        store::tl_stringWithContentsOfFile(path, stringEncoding).value_or(QString());
    const QString extension = path::extension(path);
    // A formatted document gives the text it shows, unless it keeps its
    // Markdown source as its text.
    const bool keepsMarkdown =
        extension == u"html" &&
        store::tl_propertyForKey(path, QLatin1String(keys::property::Markdown)).isValid();
    const bool formatted = extension.startsWith(u"htm") && !keepsMarkdown;
    return tasks::tl_extractTasks(path, formatted ? convert::tl_htmlToPlainText(text) : text,
                                  stringEncoding);
}

} // namespace tl::browser
