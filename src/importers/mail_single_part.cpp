#include "foundation/regex.h"
#include "importers/mail_decoding.h"
#include "importers/mail_message.h"
#include "importers/mail_parts.h"
#include "store/log.h"
#include "store/safe_names.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <functional>

namespace tl::importers::detail {

namespace {

// The attachment's name from the header, the last "filename=" winning,
// made safe: no separators and no leading dots, so every attachment lands
// in the attachment folder whatever the message says.
QString headerFileName(const QString &header)
{
    static const Regex fileName(QStringLiteral("filename=([^;]+)"), RegexOption::CaseInsensitive);
    const QList<RegexMatch> matches = fileName.allMatches(header);
    if (matches.isEmpty())
        return {};
    QString name = matches.last().capturedString(header, 1);
    name.remove(u'"').remove(u'\n').remove(u'\r').remove(QChar());
    name.replace(u'/', u'_').replace(u'\\', u'_');
    while (name.startsWith(u'.'))
        name.remove(0, 1);
    return name.trimmed();
}

QString fileName(const QString &header, const QString &defaultName, const QString &folder)
{
    const QString given = headerFileName(header);
    if (!given.isEmpty())
        return given;
    return QFileInfo(store::tl_uniqueNameForFileatPath(defaultName, folder)).fileName();
}

// A failed write goes unnoticed: the link is made all the same.
void writeFile(const QString &path, const QByteArray &data)
{
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(data) == data.size())
        file.commit();
}

QString attachmentResult(const QString &name)
{
    return QLatin1String(kAttachmentResult) + name;
}

QString decodedText(const MailHeader &header, const QString &content)
{
    if (header.has("content-transfer-encoding: quoted-printable"))
        return stringWithQuotedPrintableString(content);
    if (header.has("content-transfer-encoding: base64"))
        return stringWithBase64Encoding(content);
    return content;
}

QString messagePart(const MailHeader &header, const QString &content, const QString &folder)
{
    if (!header.has("content-transfer-encoding: 7bit"))
        return content;
    const QString name = fileName(header.text, QStringLiteral("attachment.eml"), folder);
    writeFile(folder + u'/' + name, stringWithQuotedPrintableString(content).toUtf8());
    return attachmentResult(name);
}

QString imagePart(const MailHeader &header, const QString &content, const QString &folder)
{
    static const Regex contentId(QStringLiteral("content-id: *<(.+?)>"));
    const QString name = fileName(header.text, QStringLiteral("attachment.jpg"), folder);
    const QByteArray data = dataWithBase64Encoding(content);
    if (data.isEmpty() || !header.has("content-transfer-encoding: base64")) {
        logLine(QStringLiteral("image with other thatn Base64 encoding"));
        return {};
    }
    writeFile(folder + u'/' + name, data);
    const std::optional<RegexMatch> id =
        header.has("content-id: ") ? contentId.match(header.lookup) : std::nullopt;
    if (!id)
        return attachmentResult(name);
    return QLatin1String(kInlineImageResult) + id->capturedString(header.lookup, 1) + u' ' + name;
}

QString base64File(const MailHeader &header, const QString &content, const QString &folder,
                   const QString &defaultName, const QString &complaint)
{
    if (!header.has("content-transfer-encoding: base64")) {
        logLine(complaint);
        return {};
    }
    const QString name = fileName(header.text, defaultName, folder);
    writeFile(folder + u'/' + name, dataWithBase64Encoding(content));
    return attachmentResult(name);
}

QString htmlPart(const MailHeader &header, const QString &content, MailWalk &walk)
{
    static const Regex body(QStringLiteral("<body.*?>(.*?)</body>"),
                            RegexOption::DotMatchesNewline);
    const QString text = decodedText(header, content);
    if (text.contains(QLatin1String("<style"))) {
        walk.headerPadding = QStringLiteral("5");
        return text;
    }
    const std::optional<RegexMatch> m = body.match(text);
    return wrapTextInHTML(m ? m->capturedString(text, 1) : text);
}

struct PartKind
{
    std::function<bool(const MailHeader &)> fits;
    std::function<QString(const MailHeader &, const QString &content, MailWalk &)> convert;
};

// The first row the header fits decides; none gives nothing.
const std::vector<PartKind> &partKinds()
{
    static const std::vector<PartKind> kinds{
        {[](const MailHeader &h) { return h.has("content-type: message/"); },
         [](const MailHeader &h, const QString &c, MailWalk &w) {
             return messagePart(h, c, w.attachmentFolder);
         }},
        {[](const MailHeader &h) { return h.has("content-type: image/"); },
         [](const MailHeader &h, const QString &c, MailWalk &w) {
             return imagePart(h, c, w.attachmentFolder);
         }},
        {[](const MailHeader &h) { return h.has("content-type: application/pdf"); },
         [](const MailHeader &h, const QString &c, MailWalk &w) {
             return base64File(h, c, w.attachmentFolder, QStringLiteral("attachment.pdf"),
                               QStringLiteral("!! PDF with other than Base64 encoding"));
         }},
        {[](const MailHeader &h) {
             return h.has("content-type: application/") || h.has("content-type: audio/") ||
                    h.has("content-type: video/") || h.has("content-disposition: attachment");
         },
         [](const MailHeader &h, const QString &c, MailWalk &w) {
             return base64File(h, c, w.attachmentFolder, QStringLiteral("attachment"),
                               QStringLiteral("octet stream with other thatn Base64 encoding"));
         }},
        {[](const MailHeader &h) { return h.has("content-type: text/html"); }, htmlPart},
        {[](const MailHeader &h) { return h.has("content-type: text/plain"); },
         [](const MailHeader &h, const QString &c, MailWalk &) {
             return wrapTextInHTML(convertToHTML(decodedText(h, c).trimmed()));
         }},
    };
    return kinds;
}

} // namespace

QString singlePart(const MailHeader &header, const QString &content, MailWalk &walk)
{
    for (const PartKind &kind : partKinds())
        if (kind.fits(header))
            return kind.convert(header, content, walk);
    return {};
}

} // namespace tl::importers::detail
