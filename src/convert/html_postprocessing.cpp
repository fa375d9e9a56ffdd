#include "convert/html_postprocessing.h"

#include "convert/match_edits.h"
#include "foundation/literal_finder.h"
#include "foundation/path_string.h"
#include "foundation/regex.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_root.h"
#include "store/properties.h"

#include <QFileInfo>
#include <QHash>
#include <QSet>

namespace tl::convert {

namespace {

// The matches of `<li>((?!<\/li>).)*?(<ol>)`. One starts at each item whose
// first "<ol>" comes before its first "</li>", and then it runs to that
// "<ol>": the lazy run stops at the first "<ol>" and fails only at a "</li>",
// and neither can begin inside the other. So the walk finds them without
// asking ICU, whose failing attempts read a whole item a character at a time.
QList<RegexMatch> itemsHoldingLists(const QString &html)
{
    static const LiteralFinder item(QStringLiteral("<li>"));
    static const LiteralFinder list(QStringLiteral("<ol>"));
    static const LiteralFinder itemEnd(QStringLiteral("</li>"));
    const qsizetype itemLength = item.literal().size();
    const qsizetype listLength = list.literal().size();
    QList<RegexMatch> matches;
    // The first "<ol>" and "</li>" at or after the item's content, found
    // again only once passed; -1 when there is none further on.
    qsizetype open = 0;
    qsizetype close = 0;
    for (qsizetype at = item.indexIn(html); at >= 0; at = item.indexIn(html, at + 1)) {
        const qsizetype content = at + itemLength;
        if (open < content)
            open = list.indexIn(html, content);
        if (open < 0)
            break;
        if (close >= 0 && close < content)
            close = itemEnd.indexIn(html, content);
        if (close >= 0 && close < open)
            continue;
        RegexMatch match;
        // The repeated group holds the last character it took, if any.
        match.groups = {{at, open + listLength - at},
                        open > content ? RegexMatch::Range{open - 1, 1} : RegexMatch::Range{},
                        {open, listLength}};
        matches.append(match);
        at = open + listLength - 1;
    }
    return matches;
}

// The matches of `<[^>]*? id="(.*?)"` (dot matching line ends). The
// attribute of a match is the first ` id="` behind its "<" with no ">"
// between, so a match starts at the first "<" behind the last ">" in front
// of an attribute, and its value runs to the next quote; without a quote
// further on there is no match at all. The walk finds them without asking
// ICU, which would read every tag of the page.
QList<RegexMatch> elementsWithIds(const QString &html)
{
    static const LiteralFinder attribute(QStringLiteral(" id=\""));
    const qsizetype attributeLength = attribute.literal().size();
    const QStringView view(html);
    QList<RegexMatch> matches;
    qsizetype scanned = 0; // where the look for "<" and ">" goes on
    qsizetype tag = -1;    // the first "<" since the last ">" before `scanned`
    for (qsizetype at = attribute.indexIn(html, 1); at >= 0; at = attribute.indexIn(html, at + 1)) {
        const QStringView stretch = view.sliced(scanned, at - scanned);
        const qsizetype lastClose = stretch.lastIndexOf(u'>');
        if (lastClose >= 0)
            tag = -1;
        if (tag < 0) {
            const qsizetype from = lastClose + 1;
            const qsizetype open = stretch.sliced(from).indexOf(u'<');
            tag = open < 0 ? -1 : scanned + from + open;
        }
        scanned = at;
        if (tag < 0)
            continue;
        const qsizetype value = at + attributeLength;
        const qsizetype quote = html.indexOf(u'"', value);
        if (quote < 0)
            break;
        RegexMatch match;
        match.groups = {{tag, quote + 1 - tag}, {value, quote - value}};
        matches.append(match);
        scanned = quote + 1;
        tag = -1;
        at = quote;
    }
    return matches;
}

} // namespace

QString withOrderedSubListsClosed(const QString &html)
{
    if (!html.contains(QStringLiteral("<ol>")))
        return html;
    return Regex::editMatches(
        html, itemsHoldingLists(html),
        [](const RegexMatch &m, QStringView text) -> std::optional<QString> {
            return withGroupsReplaced(m, text, {{2, QStringLiteral("</li><ol>")}});
        });
}

QString withUniqueIds(const QString &html)
{
    QSet<QString> seen;
    // The suffix each id was last given: every smaller one was taken then,
    // and ids are never given back, so the next search for a free suffix
    // starts there.
    QHash<QString, qulonglong> lastSuffix;
    // The editor runs from the last match to the first: the last element
    // keeps its id.
    return Regex::editMatches(html, elementsWithIds(html),
                              [&](const RegexMatch &m, QStringView text) -> std::optional<QString> {
                                  QString value = m.capturedString(text, 1);
                                  std::optional<QString> edited;
                                  if (!value.isEmpty() && seen.contains(value)) {
                                      qulonglong &n = lastSuffix[value];
                                      QString candidate;
                                      do {
                                          candidate = value + QStringLiteral("-%1").arg(++n);
                                      } while (seen.contains(candidate));
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
