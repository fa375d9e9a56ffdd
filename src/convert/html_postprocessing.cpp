#include "convert/html_postprocessing.h"

#include "convert/match_edits.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/properties.h"

#include <QFileInfo>
#include <QSet>

namespace tl::convert {

QString withOrderedSubListsClosed(const QString &html)
{
    static const Regex itemHoldingList(QStringLiteral(R"(<li>((?!<\/li>).)*?(<ol>))"),
                                       RegexOption::DotMatchesNewline);
    if (!html.contains(QStringLiteral("<ol>")))
        return html;
    return itemHoldingList.replaceMatches(
        html, [](const RegexMatch &m, QStringView text) -> std::optional<QString> {
            return withGroupsReplaced(m, text, {{2, QStringLiteral("</li><ol>")}});
        });
}

QString withUniqueIds(const QString &html)
{
    static const Regex id(QStringLiteral(R"re(<[^>]*? id="(.*?)")re"),
                          RegexOption::DotMatchesNewline);
    QSet<QString> seen;
    // The editor runs from the last match to the first: the last element
    // keeps its id.
    return id.replaceMatches(html,
                             [&](const RegexMatch &m, QStringView text) -> std::optional<QString> {
                                 QString value = m.capturedString(text, 1);
                                 std::optional<QString> edited;
                                 if (!value.isEmpty() && seen.contains(value)) {
                                     QString candidate;
                                     for (qulonglong n = 1;; ++n) {
                                         candidate = value + QStringLiteral("-%1").arg(n);
                                         if (!seen.contains(candidate))
                                             break;
                                     }
                                     value = candidate;
                                     edited = withGroupsReplaced(m, text, {{1, value}});
                                 }
                                 seen.insert(value);
                                 return edited;
                             });
}

QString withLinksOnHeadings(const QString &html)
{
    static const Regex heading(QStringLiteral(R"re(^<h[1-6] id="(.+?)">(.+?)</h[1-6]>$)re"),
                               RegexOption::AnchorsMatchLines);
    return heading.replaceMatches(
        html, [](const RegexMatch &m, QStringView text) -> std::optional<QString> {
            const QStringView content = m.captured(text, 2);
            if (content.contains(QStringLiteral("<a ")))
                return std::nullopt;
            return withGroupsReplaced(
                m, text,
                {{2, QStringLiteral("<a href=\"#%1\">%2</a>").arg(m.captured(text, 1), content)}});
        });
}

QString withBacklinks(const QString &html, const QString &path)
{
    const QStringList backlinks =
        store::tl_propertyForKey(path, QLatin1String(tl::keys::property::Backlinks)).toStringList();
    const QString root = store::libraryRoot();
    QSet<QString> listed;
    QString items;
    for (const QString &backlink : backlinks) {
        if (listed.contains(backlink))
            continue;
        listed.insert(backlink);
        if (!QFileInfo::exists(root + backlink))
            continue;
        items += QStringLiteral("<li><a href=\"%1\">%2</a></li>\n")
                     .arg(backlink, path::lastComponent(backlink));
    }
    if (items.isEmpty())
        return html;
    return html + QStringLiteral("<hr class=\"tl_backlinks\">\n<ul>\n%1\n</ul>\n").arg(items);
}

QString tl_makeTLLinksRelativeTo(const QString &html, const QString &folder)
{
    static const Regex schemeLink(QStringLiteral(R"re(="tavelle://(.*?)")re"),
                                  RegexOption::CaseInsensitive);
    static const QStringList actions = {
        QStringLiteral("grab"),         QStringLiteral("addnote"),
        QStringLiteral("append"),       QStringLiteral("addnewdoc"),
        QStringLiteral("addnewtask"),   QStringLiteral("search"),
        QStringLiteral("wifi_sharing"), QStringLiteral("webdav_sync"),
        QStringLiteral("addnewsketch")};
    const QString root = store::libraryRoot();
    const QString scheme = QStringLiteral("tavelle://");
    QString result = html;
    if (!root.isEmpty()) {
        result.replace(QStringLiteral("file://") + root, scheme);
        result.replace(QStringLiteral("file://") + store::percentEncodedForPath(root), scheme);
        result.replace(root, scheme);
    }
    return schemeLink.replaceMatches(
        result, [&](const RegexMatch &m, QStringView text) -> std::optional<QString> {
            QString rest = m.capturedString(text, 1);
            const qsizetype slash = rest.indexOf(u'/');
            if (slash >= 0 && actions.contains(rest.left(slash)))
                return std::nullopt;
            if (rest.startsWith(QStringLiteral("show")))
                rest.remove(0, 4);
            return QStringLiteral("=\"%1\"").arg(store::tl_makeRelativeToPath(rest, folder));
        });
}

} // namespace tl::convert
