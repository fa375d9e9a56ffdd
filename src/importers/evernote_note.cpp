#include "foundation/clock.h"
#include "foundation/regex.h"
#include "importers/evernote_importer.h"
#include "store/mime_types.h"

#include <QFileInfo>
#include <QTimeZone>

namespace tl::importers {

namespace {

QString mediaElement(const QString &attributes, const QHash<QString, QString> &hashFilenames)
{
    QString hash;
    QString type;
    for (const QString &piece : attributes.split(u' ')) {
        if (piece.startsWith(QLatin1String("hash=")))
            hash = piece.mid(5).remove(u'"');
        else if (piece.startsWith(QLatin1String("type=")))
            type = piece.mid(5).remove(u'"');
    }
    const QString extension = store::tl_extensionForMimeType(type);
    QString name = hashFilenames.value(hash);
    if (name.isEmpty()) {
        name = hash;
        if (QFileInfo(hash).suffix().isEmpty() && !type.isEmpty())
            name += u'.' + extension;
    }
    static const QStringList audio{"m4a", "mp3", "aiff", "flac"};
    static const QStringList video{"m4v", "mp4", "mov", "wav", "mpg"};
    if (audio.contains(extension))
        return QStringLiteral("<br/>&nbsp;<audio src=\"%1\" controls></audio>&nbsp;<br/>")
            .arg(name);
    if (video.contains(extension))
        return QStringLiteral("<br/>&nbsp;<video src=\"%1\" controls></video>&nbsp;<br/>")
            .arg(name);
    return QStringLiteral("<a href=\"TLImages/%1\"><img src=\"TLImages/%1\"></a>").arg(name);
}

} // namespace

QString evernoteNoteHTML(const QString &content, const QHash<QString, QString> &hashFilenames)
{
    static const Regex media(QStringLiteral("<en-media (.*?)/?>"), RegexOption::CaseInsensitive);
    QString html = content;
    html.replace(QStringLiteral("<en-note>"), QStringLiteral("<html>\n<head></head>\n<body>\n"));
    html.replace(QStringLiteral("</en-note>"), QStringLiteral("</body>\n</html>"));
    html.replace(QStringLiteral("<en-todo checked=\"true\"/>"),
                 QStringLiteral("<input type=\"checkbox\" class=\"tl_checkbox\" checked=\"\">"));
    html.replace(QStringLiteral("<en-todo/>"),
                 QStringLiteral("<input type=\"checkbox\" class=\"tl_checkbox\">"));
    html = media.replaceMatches(html, [&](const RegexMatch &m, QStringView text) {
        return std::optional<QString>(mediaElement(m.capturedString(text, 1), hashFilenames));
    });
    return html.remove(QStringLiteral("</en-media>"));
}

QDateTime dateFromEvernoteDate(const QString &text)
{
    for (const char *format : {"yyyyMMdd'T'HHmmss'Z'", "yyyy-MM-dd'T'HH:mm:ss'Z'"}) {
        QDateTime date = QDateTime::fromString(text, QLatin1String(format));
        if (date.isValid()) {
            date.setTimeZone(QTimeZone::utc());
            return date;
        }
    }
    // Fractions of a second, of any length.
    const QDateTime fractional = QDateTime::fromString(text, Qt::ISODateWithMs);
    return text.contains(u'.') && fractional.isValid() ? fractional : clock().now();
}

} // namespace tl::importers
