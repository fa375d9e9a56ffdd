#include "convert/markdown_preparation.h"

#include <QList>
#include <algorithm>

namespace tl::convert {

namespace {

bool startsWith(QStringView line, QStringView opening)
{
    if (line.size() < opening.size())
        return false;
    for (qsizetype k = 0; k < opening.size(); ++k) {
        if (line[k] != opening[k])
            return false;
    }
    return true;
}

bool endsWithPlainEnding(QStringView line)
{
    const qsizetype n = line.size();
    if (n == 0)
        return false;
    const QChar last = line[n - 1];
    if (last == u'#' || last == u'=')
        return true;
    return n >= 2 &&
           ((line[n - 2] == u'<' && last == u'-') || (line[n - 2] == u' ' && last == u' '));
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

    // Every line, the last piece of the split too, gains at most three
    // characters: the result is written into a buffer of that size.
    const qsizetype lines = unified.count(u'\n') + 1;
    QString result(unified.size() + 3 * lines, Qt::Uninitialized);
    QChar *out = result.data();
    bool inFence = false;
    // Line by line, as a split at "\n" gives them, the last piece too.
    for (qsizetype start = 0; start <= unified.size();) {
        qsizetype end = unified.indexOf(u'\n', start);
        if (end < 0)
            end = unified.size();
        const QStringView line = QStringView(unified).sliced(start, end - start);
        start = end + 1;
        bool hard;
        if (startsWith(line, u"```") || startsWith(line, u"~~~")) {
            inFence = !inFence;
            hard = !(inFence || line.isEmpty());
        } else if (startsWith(line, u">%") || startsWith(line, u"> %")) {
            hard = false;
        } else if (isHyphenRule(line) || endsWithPlainEnding(line)) {
            hard = false;
        } else {
            hard = !(inFence || line.isEmpty());
        }
        out = std::copy(line.begin(), line.end(), out);
        if (hard) {
            *out++ = u' ';
            *out++ = u' ';
        }
        *out++ = u'\n';
    }
    result.truncate(out - result.constData());
    return result;
}

} // namespace tl::convert
