#include "store/first_line.h"

#include "foundation/compare.h"
#include "store/safe_names.h"

namespace tl::store {

namespace {

constexpr qsizetype kLongestKeptLine = 120;
constexpr qsizetype kCutSearchStart = 119;
constexpr qsizetype kCutSearchEnd = 144;

bool isLineBreak(QChar c)
{
    return c == u'\n' || c == u'\r' || c == QChar(0x0085) || c == QChar(0x2028) ||
           c == QChar(0x2029);
}

QString firstLineOf(const QString &text)
{
    const QString whole = text.trimmed();
    qsizetype end = 0;
    while (end < whole.size() && !isLineBreak(whole[end]))
        ++end;
    return whole.left(end).trimmed();
}

// A long line is cut at the first blank from index 119 on, looking no
// further than index 144; with no blank there, at 119.
QString shortenedAtWordEnd(const QString &line)
{
    if (line.size() <= kLongestKeptLine)
        return line;
    const qsizetype searchEnd = std::min(line.size(), kCutSearchEnd);
    qsizetype cut = line.indexOf(u' ', kCutSearchStart);
    if (cut < 0 || cut >= searchEnd)
        cut = kCutSearchStart;
    return line.left(cut);
}

} // namespace

QString tl_firstLineOfText(const QString &text)
{
    QString rest = text;
    if (rest.startsWith(QLatin1String("---\n")))
        rest.remove(0, 4);
    else if (rest.startsWith(u'%'))
        rest.remove(0, 1);
    if (rest.startsWith(QLatin1String("Title:")) || rest.startsWith(QLatin1String("title:")))
        rest.remove(0, 6);
    QString line = shortenedAtWordEnd(firstLineOf(rest));
    line.replace(u'/', u'-');
    return trimmedOfTitlePunctuation(line);
}

bool tl_stringMatchesFirstLineOfText(const QString &stem, const QString &text)
{
    const QString line = tl_firstLineOfText(text);
    return localizedCompare(stem, line) == 0 ||
           localizedCompare(stem, tl_escapeIllegalCharacters(line)) == 0;
}

} // namespace tl::store
