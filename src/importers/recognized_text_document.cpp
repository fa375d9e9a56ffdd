// The document made of recognised text.
#include "convert/envelope.h"
#include "convert/html_postprocessing.h"
#include "convert/markdown_to_html.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "importers/text_recognition.h"
#include "links/backlinks.h"
#include "platform/settings.h"
#include "store/document_file.h"
#include "store/first_line.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/log.h"
#include "store/safe_names.h"

namespace tl::importers {

namespace {

QString defaultDocumentType()
{
    const QString type = platform::settings().string(QStringLiteral("DefaultDocumentType"));
    return type.isEmpty() ? QStringLiteral("html") : type;
}

// The text with what shows or names its source ahead of it: a plain text
// names it at both ends, other types show the picture, linked.
QString contentWithSource(const QString &source, const QString &title, const QString &type,
                          QString text)
{
    const QString images = QString::fromLatin1(names::TLImages);
    QString link = QStringLiteral("tavelle://") +
                   store::tl_pathEscapedForMarkdownLink(store::tl_normalizedPath(source));
    QString head;
    if (type == u"txt") {
        text += QStringLiteral("\n\nOriginal: ") + link;
        head = link;
    } else {
        if (source.contains(images))
            link =
                images + u'/' + store::tl_pathEscapedForMarkdownLink(path::lastComponent(source));
        head = QStringLiteral("[![](%1)](%1)\n\n----  ").arg(link);
    }
    return title + QStringLiteral("\n\n") + head + QStringLiteral("\n\n") + text;
}

// The source's book: an attachment folder stands for the book it belongs to.
QString folderFor(const QString &source)
{
    const QString folder = path::deletingLastComponent(source);
    return folder.endsWith(QLatin1String(names::TLImages)) ? path::deletingLastComponent(folder)
                                                           : folder;
}

} // namespace

QString tl_saveRecognizedText(const QString &source, const QString &text)
{
    if (text.isEmpty())
        return {};
    QString title = store::tl_firstLineOfText(text);
    if (title.isEmpty())
        title = path::deletingExtension(path::lastComponent(source));
    const QString type = defaultDocumentType();
    QString content = contentWithSource(source, title, type, text);
    const QString target =
        store::tl_uniqueNameForFileatPath(title + u'.' + type, folderFor(source));
    if (type == u"html")
        content = convert::tl_makeTLLinksRelativeTo(
            convert::tl_createFormattedDocWithBody(
                target, convert::tl_getInnerHTML(convert::tl_markdownToHTML(content))),
            path::deletingLastComponent(target));
    if (!store::tl_writeToFile(content, target, false, store::TextEncoding::UTF8)) {
        logLine(QStringLiteral("could not save recognized text: %1").arg(target));
        return {};
    }
    links::tl_addBacklink(source, target);
    if (!source.endsWith(QLatin1String(".pdf")))
        NotificationCenter::defaultCenter().post(
            QLatin1String(events::HandleFileModificationInstantly),
            {{QStringLiteral("path"), target}});
    return target;
}

} // namespace tl::importers
