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
    for (QStringView line : QStringView(unified).split(u'\n')) {
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
        result.append(hard ? QStringLiteral("  \n") : QStringLiteral("\n"));
    }
    return result;
}

} // namespace tl::convert
