#pragma once

// Comparisons of names and texts. The localized ones use an ICU collator for
// the collation locale of the environment (LC_ALL, then LC_COLLATE, then LANG)
// with canonical equivalence on, so a decomposed name equals its composed
// twin. Every comparison answers -1, 0 or 1. All functions may be called from
// any thread: each thread keeps its own collators.

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace tl {

// The ICU locale the collators use, such as "en_US" for LANG=en_US.UTF-8.
QString collationLocaleName();

// Locale order, case-sensitive (lower case before upper case of the same
// letter), diacritic-sensitive.
int localizedCompare(QStringView a, QStringView b);
// Locale order ignoring case, still diacritic-sensitive.
int localizedCaseInsensitiveCompare(QStringView a, QStringView b);
// The order of names in file browsers: locale order ignoring case, with runs
// of digits compared by numeric value ("Book 2" before "Book 10"; "007" and
// "7" are equal).
int localizedStandardCompare(QStringView a, QStringView b);

// Sort keys of the comparisons above: comparing two keys byte by byte
// orders as the comparison does, so a long sort collates each name once.
QByteArray localizedSortKey(QStringView s);
QByteArray localizedCaseInsensitiveSortKey(QStringView s);
QByteArray localizedStandardSortKey(QStringView s);
// Locale order ignoring case and diacritics ("cafe" equals "Café").
int caseAndDiacriticInsensitiveCompare(QStringView a, QStringView b);

// Not localized: both texts case-folded (full folding, "ß" as "ss"), then
// compared by UTF-16 code unit.
int caseInsensitiveCompare(QStringView a, QStringView b);

// Whether `needle` occurs in `haystack` once both are case-folded, decomposed
// and stripped of combining marks. An empty needle is never found.
bool caseAndDiacriticInsensitiveContains(QStringView haystack, QStringView needle);
// The form the contains test above compares: case-folded, decomposed and
// without combining marks.
QString caseAndDiacriticFolded(QStringView s);

// Whether `needle` occurs in `haystack` ignoring case (lower-cased in the
// collation locale, then folded) with canonical equivalence; diacritics count,
// so "emile" is not in "Émile" while "ÉMILE" is. An empty needle is never found.
bool caseInsensitiveContains(QStringView haystack, QStringView needle);

// Canonical composed (NFC) and decomposed (NFD) forms. A text already in the
// form is answered as it is, shared.
QString precomposed(const QString &s);
QString decomposed(const QString &s);
// Equal once both are composed.
bool canonicallyEqual(QStringView a, QStringView b);

// Strict weak orders for std::sort and std::stable_sort.
struct LocalizedLess
{
    bool operator()(QStringView a, QStringView b) const { return localizedCompare(a, b) < 0; }
};
struct LocalizedCaseInsensitiveLess
{
    bool operator()(QStringView a, QStringView b) const
    {
        return localizedCaseInsensitiveCompare(a, b) < 0;
    }
};
struct LocalizedStandardLess
{
    bool operator()(QStringView a, QStringView b) const
    {
        return localizedStandardCompare(a, b) < 0;
    }
};

} // namespace tl
