#include "convert/markdown_preparation.h"

#include <QList>

namespace tl::convert {

namespace {

bool endsWithPlainEnding(QStringView line)
{
    return line.endsWith(u"<-") || line.endsWith(u'#') || line.endsWith(u'=') ||
           line.endsWith(u"  ");
}

bool isHyphenRule(QStringView line)
{
    if (line.size() < 3)
        return false;
    for (QChar c : line) {
        if (c != u'-')
            return false;
    }
    return true;
}

} // namespace

QString tl_makeEveryNewlineaLinebreak(const QString &text)
{
    QString unified = text;
    if (unified.contains(u'\r')) {
        unified.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
        unified.replace(u'\r', u'\n');
    }

    QString result;
    result.reserve(unified.size() + unified.size() / 8);
    bool inFence = false;
    // Line by line, as a split at "\n" gives them, the last piece too.
    for (qsizetype start = 0; start <= unified.size();) {
        qsizetype end = unified.indexOf(u'\n', start);
        if (end < 0)
            end = unified.size();
        const QStringView line = QStringView(unified).sliced(start, end - start);
        start = end + 1;
        bool hard;
        if (line.startsWith(u"```") || line.startsWith(u"~~~")) {
            inFence = !inFence;
            hard = !(inFence || line.isEmpty());
        } else if (line.startsWith(u">%") || line.startsWith(u"> %")) {
            hard = false;
        } else if (isHyphenRule(line) || endsWithPlainEnding(line)) {
            hard = false;
        } else {
            hard = !(inFence || line.isEmpty());
        }
        result.append(line);
        result.append(hard ? QStringView(u"  \n") : QStringView(u"\n"));
    }
    return result;
}

} // namespace tl::convert
