#include "importers/mail_message.h"

#include "foundation/regex.h"
#include "importers/mail_decoding.h"
#include "importers/mail_parts.h"
#include "platform/folders.h"
#include "store/document_file.h"

#include <QDir>
#include <QStringList>

namespace tl::importers {

using namespace detail;

namespace {

QString converted(const QString &message, const QString &folder);

QString boundarySeparator(const QString &header)
{
    static const Regex boundary(QStringLiteral(R"(boundary=(\S+))"),
                                RegexOption::AnchorsMatchLines);
    const std::optional<RegexMatch> m = boundary.match(header);
    if (!m)
        return {};
    QString value = m->capturedString(header, 1);
    while (value.startsWith(u';'))
        value.remove(0, 1);
    while (value.endsWith(u';'))
        value.chop(1);
    return QStringLiteral("\n--") + value.remove(u'"');
}

// Every occurrence of an inline image's reference, in any case, becomes
// the saved file's path.
QString withImageReference(const QString &body, const QString &result, const QString &folder)
{
    const QStringList pieces = result.split(u' ');
    if (pieces.size() < 2)
        return body;
    const QString &reference = pieces.first();
    const QString name = result.mid(reference.size()).trimmed();
    QString changed = body;
    return changed.replace(reference, folder + u'/' + name, Qt::CaseInsensitive);
}

QString multipart(const MailHeader &header, const QString &content, MailWalk &walk)
{
    const QString separator = boundarySeparator(header.text);
    if (separator.isEmpty())
        return {};
    QStringList parts = content.split(separator);
    // The HTML part goes first: it wins over a plain alternative and comes
    // to stand before inline images, whatever the order in the message.
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (parts[i].toLower().contains(QLatin1String("content-type: text/html"))) {
            parts.move(i, 0);
            walk.headerPadding = QStringLiteral("5");
            break;
        }
    }
    const QString &folder = walk.attachmentFolder;
    QString body;
    QString attachments;
    for (const QString &untrimmed : std::as_const(parts)) {
        const QString part = untrimmed.trimmed();
        if (part.isEmpty())
            continue;
        const QString lookup = part.toLower();
        if (!body.isEmpty() && lookup.contains(QLatin1String("content-type: text/plain")) &&
            !lookup.contains(QLatin1String("content-disposition: attachment;")))
            continue;
        const QString result = converted(part, folder);
        if (result.isEmpty())
            continue;
        if (result.startsWith(QLatin1String(kAttachmentResult))) {
            const QString name = result.mid(qsizetype(sizeof kAttachmentResult) - 1);
            if (lookup.contains(QLatin1String("content-disposition: attachment")))
                attachments += QStringLiteral("📎 <a href=\"file://%1/%2\">%3</a><br/>\n")
                                   .arg(folder, name, name);
            else
                body += QStringLiteral("<a href=\"file://%1/%2\"><img style=\"width:auto; "
                                       "max-width:96%; height:auto;\" src=\"file://%3/%4\"></a>\n")
                            .arg(folder, name, folder, name);
        } else if (result.startsWith(QLatin1String(kInlineImageResult))) {
            body = withImageReference(body, result, folder);
        } else {
            body += result;
        }
    }
    if (!attachments.isEmpty())
        body += QStringLiteral("<br/>") + attachments;
    return body;
}

// The header block goes behind the body tag; line breaks end in one form.
QString withTail(QString result, QString block, MailWalk &walk)
{
    static const Regex bodyTag(QStringLiteral("<body.*?>"));
    static const Regex plainBreak(QStringLiteral("<br>"));
    static const Regex anyBreak(QStringLiteral("<br.*?>"));
    if (!block.isEmpty()) {
        if (result.contains(QLatin1String("**BodyPadding**"))) {
            result.replace(QStringLiteral("**BodyPadding**"), QStringLiteral("5"));
            walk.headerPadding = QStringLiteral("0");
        }
        block.replace(QStringLiteral("**HeaderPadding**"), walk.headerPadding);
        if (const std::optional<RegexMatch> tag = bodyTag.match(result))
            result.insert(tag->end(), block);
    }
    result = plainBreak.replaceAll(result, QStringLiteral("<br/>"));
    return anyBreak.replaceAll(result, QStringLiteral("<br/>"));
}

QString converted(const QString &message, const QString &folder)
{
    QString text = message;
    text.remove(u'\r');
    const qsizetype blank = text.indexOf(QLatin1String("\n\n"));
    if (blank < 0)
        return {};
    MailHeader header;
    header.text = stringWithEncodedWordsString(text.left(blank));
    header.lookup = header.text.toLower();
    if (header.has("content-transfer-encoding: quoted-printable"))
        header.text = stringWithQuotedPrintableString(header.text);
    const QString content = text.mid(blank);
    const QString block = headerBlock(header.text);
    MailWalk walk{folder};
    const QString result = header.has("content-type: multipart/")
                               ? multipart(header, content, walk)
                               : singlePart(header, content, walk);
    return withTail(result, block, walk);
}

} // namespace

QString mailAttachmentFolder()
{
    return platform::temporaryFolder();
}

QString tl_emlToHTML(const QString &message, const QString &attachmentFolder)
{
    return converted(message, attachmentFolder);
}

QString tl_emlFileToHTML(const QString &path)
{
    const std::optional<store::DecodedText> message = store::tl_stringWithContentsOfFile(path);
    if (!message)
        return {};
    QDir().mkpath(mailAttachmentFolder());
    return tl_emlToHTML(message->text);
}

} // namespace tl::importers
