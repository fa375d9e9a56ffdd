#include "publish/epub_navigation.h"

#include "foundation/regex.h"

#include <QList>

namespace tl::publish {

QString EPubNavigation::navPoint(const QString &label, const QString &source)
{
    // Item numbers have gaps; the reading order may not.
    return QStringLiteral(" <navPoint id=\"item%1\" playOrder=\"%2\">\n  <navLabel>\n   "
                          "<text>%3</text>\n  </navLabel>\n  <content src=\"%4\"/>\n")
        .arg(m_counter++)
        .arg(m_playOrder++)
        .arg(label, source);
}

QString EPubNavigation::addHeadings(const QString &page, const QString &href)
{
    static const Regex heading(QStringLiteral("<h([123]).*?>(.*?)</h[123].*?>"),
                               RegexOption::DotMatchesNewline);
    static const Regex tag(QStringLiteral("<.*?>"));
    static const QString close = QStringLiteral(" </navPoint>\n\n");
    QList<std::pair<qsizetype, int>> anchors;
    for (const RegexMatch &match : heading.allMatches(page)) {
        const int level = match.capturedString(page, 1).toInt();
        const QString label = tag.replaceAll(match.capturedString(page, 2), QString()).trimmed();
        if (level <= m_level)
            m_points += close.repeated(1 + m_level - level);
        for (int missing = m_level + 1; missing < level; ++missing)
            m_points += navPoint(QString(), href);
        m_points += navPoint(label, QStringLiteral("%1#TLAnchor-%2").arg(href).arg(m_anchor));
        // Inside the heading, as a page's body takes no bare anchor.
        anchors.append({match.groupStart(2), m_anchor++});
        m_level = level;
    }
    QString result = page;
    for (auto it = anchors.crbegin(); it != anchors.crend(); ++it)
        result.insert(it->first, QStringLiteral("<a id=\"TLAnchor-%1\"></a>").arg(it->second));
    return result;
}

QString EPubNavigation::closedNavMap() const
{
    return m_points + QStringLiteral(" </navPoint>\n\n").repeated(m_level);
}

} // namespace tl::publish
