#include "search/search_query.h"

#include "foundation/compare.h"

namespace tl::search {

QList<PreparedTerm> preparedTerms(const QStringList &terms)
{
    QList<PreparedTerm> prepared;
    for (const QString &term : terms)
        prepared << PreparedTerm{caseAndDiacriticFolded(term), searchWords(term)};
    return prepared;
}

namespace {

bool isASCII(QStringView text)
{
    for (const QChar c : text)
        if (c.unicode() >= 0x80)
            return false;
    return true;
}

bool isASCIILetterOrDigit(char16_t c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9');
}

// The common case of plain ASCII, where folding is lower-casing and the
// letters and digits are a-z and 0-9: the same words, without ICU.
QString joinedASCIIWords(QStringView text)
{
    QString joined;
    joined.reserve(text.size());
    bool inWord = false;
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if (isASCIILetterOrDigit(u)) {
            if (!inWord && !joined.isEmpty())
                joined += u' ';
            joined += QChar(u >= u'A' && u <= u'Z' ? char16_t(u + 32) : u);
            inWord = true;
        } else {
            inWord = false;
        }
    }
    return joined;
}

QString joinedFoldedWords(QStringView text)
{
    const QString folded = caseAndDiacriticFolded(text);
    QString joined;
    joined.reserve(folded.size());
    bool inWord = false;
    for (qsizetype i = 0; i < folded.size();) {
        char32_t c = folded[i].unicode();
        qsizetype width = 1;
        if (QChar::isHighSurrogate(c) && i + 1 < folded.size() && folded[i + 1].isLowSurrogate()) {
            c = QChar::surrogateToUcs4(folded[i], folded[i + 1]);
            width = 2;
        }
        if (QChar::isLetterOrNumber(c)) {
            if (!inWord && !joined.isEmpty())
                joined += u' ';
            joined += QStringView(folded).mid(i, width);
            inWord = true;
        } else {
            inWord = false;
        }
        i += width;
    }
    return joined;
}

} // namespace

QString joinedSearchWords(QStringView text)
{
    return isASCII(text) ? joinedASCIIWords(text) : joinedFoldedWords(text);
}

QStringList searchWords(QStringView text)
{
    return joinedSearchWords(text).split(u' ', Qt::SkipEmptyParts);
}

bool wordsContainPhrase(const QStringList &words, const QStringList &phrase)
{
    if (phrase.isEmpty())
        return false;
    const qsizetype last = phrase.size() - 1;
    for (qsizetype at = 0; at + last < words.size(); ++at) {
        qsizetype i = 0;
        while (i < last && words[at + i] == phrase[i])
            ++i;
        if (i == last && words[at + last].startsWith(phrase[last]))
            return true;
    }
    return false;
}

bool joinedWordsContainPhrase(QStringView joined, const QStringList &phrase)
{
    if (phrase.isEmpty())
        return false;
    // Whole words but the last, each followed by a blank, all starting a word.
    const QString words = phrase.join(u' ');
    for (qsizetype at = joined.indexOf(words); at >= 0; at = joined.indexOf(words, at + 1))
        if (at == 0 || joined[at - 1] == u' ')
            return true;
    return false;
}

} // namespace tl::search
