#include "convert/references.h"

#include "convert/markdown_to_html.h"
#include "convert/match_edits.h"
#include "foundation/clock.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "platform/file_ops.h"
#include "store/document_file.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/library_root.h"
#include "store/log.h"

#include <QFileInfo>

namespace tl::convert {

namespace {

const Regex &imageSource()
{
    static const Regex regex(QStringLiteral(R"re(<img .*?src="(.*?)")re"),
                             RegexOption::CaseInsensitive);
    return regex;
}

QString decoded(const QString &text)
{
    return store::percentDecoded(text).value_or(QString());
}

// The text from `from` on, edited by `editor`, behind the untouched start.
QString editedFrom(const QString &html, qsizetype from, const Regex &regex,
                   const Regex::MatchEditor &editor)
{
    if (from == 0)
        return regex.replaceMatches(html, editor);
    const QString tail = html.mid(from);
    return html.left(from) + regex.replaceMatches(tail, editor);
}

// The first `length` characters edited, the rest untouched.
QString editedUpTo(const QString &html, qsizetype length, const Regex &regex,
                   const Regex::MatchEditor &editor)
{
    return regex.replaceMatches(html.left(length), editor) + html.mid(length);
}

bool isExternal(const QString &reference)
{
    return reference.isEmpty() || reference.contains(QStringLiteral("://")) ||
           reference.startsWith(QStringLiteral("javascript:")) ||
           reference.startsWith(QStringLiteral("data:"));
}

// A changing stamp for a file's date, to defeat the view's cache.
QString timestampString(const QDateTime &date)
{
    return QString::number(date.toMSecsSinceEpoch());
}

} // namespace

QString tl_stringByRemovingImageCacheMarkers(const QString &html)
{
    static const Regex marker(QStringLiteral(R"(\?TLKS.+?TLKS)"));
    return marker.replaceAll(html, QString());
}

QString tl_makeReferencesAbsoluteToTLRoot(const QString &html)
{
    const QString root = store::libraryRoot();
    // The length of the found "</head>" serves as the start, as it always has.
    const qsizetype from = html.contains(QStringLiteral("</head>")) ? 7 : 0;
    return editedFrom(html, from, imageSource(),
                      [&](const RegexMatch &m, QStringView text) -> std::optional<QString> {
                          const QString source = m.capturedString(text, 1);
                          QString cleaned = tl_stringByRemovingImageCacheMarkers(source);
                          if (store::tl_itemIsChildOfTavelle(decoded(cleaned)) && !root.isEmpty())
                              cleaned.remove(root);
                          if (cleaned.size() == source.size())
                              return std::nullopt;
                          return withGroupsReplaced(m, text, {{1, cleaned}});
                      });
}

QString tl_makeReferencesAbsoluteToSystemRootAtParentPath(const QString &html,
                                                          const QString &folder)
{
    static const Regex url(QStringLiteral(R"(url\('(.+?)'\))"), RegexOption::CaseInsensitive);
    static const Regex sourceOrLink(QStringLiteral(R"re((src=|href=)"(.+?)/)re"),
                                    RegexOption::CaseInsensitive);
    const QString root = store::libraryRoot();
    QString result = html;
    const qsizetype head = result.indexOf(QStringLiteral("</head>"));
    if (head >= 0) {
        result = editedUpTo(result, head, url,
                            [&](const RegexMatch &m, QStringView text) -> std::optional<QString> {
                                const QString ref = m.capturedString(text, 1);
                                if (ref.contains(QStringLiteral("://")) ||
                                    ref.startsWith(QStringLiteral("data:")))
                                    return std::nullopt;
                                const QString file = path::appendingComponent(root, decoded(ref));
                                if (!QFileInfo::exists(file))
                                    return std::nullopt;
                                return withGroupsReplaced(m, text, {{1, file}});
                            });
        const qsizetype newHead = result.indexOf(QStringLiteral("</head>"));
        result = editedUpTo(result, newHead, sourceOrLink,
                            [&](const RegexMatch &m, QStringView text) -> std::optional<QString> {
                                const QString ref = m.capturedString(text, 2);
                                if (isExternal(ref))
                                    return std::nullopt;
                                const QString joined = path::appendingComponent(root, ref);
                                if (!QFileInfo::exists(decoded(joined)))
                                    return std::nullopt;
                                return withGroupsReplaced(m, text, {{2, joined}});
                            });
    }
    const qsizetype from = std::max<qsizetype>(0, result.indexOf(QStringLiteral("</head>")));
    return editedFrom(result, from, imageSource(),
                      [&](const RegexMatch &m, QStringView text) -> std::optional<QString> {
                          const QString ref = m.capturedString(text, 1);
                          if (isExternal(ref))
                              return std::nullopt;
                          QString file = path::appendingComponent(folder, decoded(ref));
                          QString reference = ref;
                          if (ref.startsWith(u'/') && !QFileInfo::exists(ref)) {
                              file = path::appendingComponent(root, decoded(ref));
                              reference = store::percentEncodedForPath(file);
                          }
                          const std::optional<QDateTime> date = platform::modificationDate(file);
                          const QString stamp = timestampString(date.value_or(tl::clock().now()));
                          return withGroupsReplaced(
                              m, text, {{1, reference + QStringLiteral("?TLKS%1TLKS").arg(stamp)}});
                      });
}

QString tl_htmlWithInlineImages(const QString &path)
{
    static const Regex fileImage(QStringLiteral(R"re(<img .*?src="(file://(.*?))")re"),
                                 RegexOption::CaseInsensitive);
    QString html;
    if (store::markdownExtensions().contains(store::lowerCasedExtension(path))) {
        html = tl_markdownToHTML(path);
    } else {
        const auto file = store::tl_stringWithContentsOfFile(path);
        html = file ? file->text : QString();
    }
    if (!html.contains(QStringLiteral("<img "), Qt::CaseInsensitive))
        return html;
    html = tl_makeImageLinksAbsoluteWithPath(html, path::deletingLastComponent(path));
    return fileImage.replaceMatches(
        html, [](const RegexMatch &m, QStringView text) -> std::optional<QString> {
            const QString file = decoded(m.capturedString(text, 2));
            const std::optional<QByteArray> bytes = platform::readFile(file);
            if (!bytes)
                return std::nullopt;
            logLine(QStringLiteral("Mail: embedding image %1").arg(file));
            QString data = QString::fromLatin1(bytes->toBase64());
            for (qsizetype at = 64; at < data.size(); at += 65)
                data.insert(at, u'\n');
            return withGroupsReplaced(m, text,
                                      {{1, QStringLiteral("data:image/png;base64,") + data}});
        });
}

QString tl_makeImageLinksAbsoluteWithPath(const QString &html, const QString &folder)
{
    return imageSource().replaceMatches(
        html, [&](const RegexMatch &m, QStringView text) -> std::optional<QString> {
            const QString ref = m.capturedString(text, 1);
            if (isExternal(ref))
                return std::nullopt;
            const QString file = ref.startsWith(u'/')
                                     ? decoded(ref)
                                     : path::appendingComponent(folder, decoded(ref));
            return withGroupsReplaced(
                m, text, {{1, QStringLiteral("file://") + store::percentEncodedForPath(file)}});
        });
}

} // namespace tl::convert
