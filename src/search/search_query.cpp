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

QStringList searchWords(QStringView text)
{
    const QString folded = caseAndDiacriticFolded(text);
    QStringList words;
    qsizetype start = -1;
    for (qsizetype i = 0; i <= folded.size();) {
        char32_t c = 0;
        qsizetype width = 1;
        if (i < folded.size()) {
            c = folded[i].unicode();
            if (QChar::isHighSurrogate(c) && i + 1 < folded.size() &&
                folded[i + 1].isLowSurrogate()) {
                c = QChar::surrogateToUcs4(folded[i], folded[i + 1]);
                width = 2;
            }
        }
        const bool inWord = i < folded.size() && QChar::isLetterOrNumber(c);
        if (inWord && start < 0) {
            start = i;
        } else if (!inWord && start >= 0) {
            words << folded.mid(start, i - start);
            start = -1;
        }
        i += width;
    }
    return words;
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

} // namespace tl::search
