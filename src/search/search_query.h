#pragma once

#include <QString>
#include <QStringList>

// What a search asks and how one item answers it. Names match a term as a
// substring, contents by words: the term's words must stand one after the
// other in the text, the last one only as the beginning of a word. Both
// ignore case and diacritics. Every term must match.
namespace tl::search {

enum class Field {
    NameOrContent,
    Name,
    Content,
};

struct Query
{
    QStringList terms;
    Field field = Field::NameOrContent;
};

// A term as it is compared: folded for names, and split into folded words for
// contents (a term without letters or digits has none and finds no content).
struct PreparedTerm
{
    QString foldedText;
    QStringList words;
};
QList<PreparedTerm> preparedTerms(const QStringList &terms);

// The words of a text, folded: runs of letters and digits.
QStringList searchWords(QStringView text);
// The same words joined by single blanks, as the index keeps them.
QString joinedSearchWords(QStringView text);

// Whether the term's words stand in the words in a row, the last as a prefix.
bool wordsContainPhrase(const QStringList &words, const QStringList &phrase);
// The same for words joined by single blanks, as joinedSearchWords gives them.
bool joinedWordsContainPhrase(QStringView joined, const QStringList &phrase);

} // namespace tl::search
