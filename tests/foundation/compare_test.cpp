#include "foundation/compare.h"

#include <QStringList>
#include <algorithm>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

using Compare = int (*)(QStringView, QStringView);

struct Case
{
    const char16_t *a;
    const char16_t *b;
    int expected;
};

void expectAll(Compare compare, std::initializer_list<Case> cases)
{
    for (const Case &c : cases) {
        const QString a = QString::fromUtf16(c.a), b = QString::fromUtf16(c.b);
        SCOPED_TRACE(a.toStdString() + " vs " + b.toStdString());
        EXPECT_EQ(compare(a, b), c.expected);
        EXPECT_EQ(compare(b, a), -c.expected); // antisymmetric
    }
}

// "é" spelt as e and a combining acute accent.
const char16_t *const eAcuteDecomposed = u"e\u0301";

} // namespace

TEST(Compare, CollationLocaleComesFromTheEnvironment)
{
    EXPECT_EQ(tl::collationLocaleName(), "en_US");
}

TEST(Compare, LocalizedIsCaseSensitive)
{
    expectAll(tl::localizedCompare, {
                                        {u"a", u"B", -1},
                                        {u"B", u"c", -1},
                                        {u"a", u"A", -1}, // lower case first
                                        {u"A", u"A", 0},
                                        {u"e", u"é", -1},
                                        {u"é", u"f", -1},
                                        {u"é", eAcuteDecomposed, 0},
                                        {u"Café", u"cafe\u0301", 1},
                                        {u"Book 10", u"Book 2", -1}, // digits as text
                                        {u"", u"a", -1},
                                    });
}

TEST(Compare, LocalizedCaseInsensitive)
{
    expectAll(tl::localizedCaseInsensitiveCompare, {
                                                       {u"a", u"B", -1},
                                                       {u"a", u"A", 0},
                                                       {u"STRASSE", u"strasse", 0},
                                                       {u"e", u"É", -1}, // diacritics count
                                                       {u"É", eAcuteDecomposed, 0},
                                                   });
}

TEST(Compare, LocalizedStandardComparesNumbersByValue)
{
    expectAll(tl::localizedStandardCompare, {
                                                {u"Book 2", u"Book 10", -1},
                                                {u"book 2", u"Book 10", -1},
                                                {u"Book", u"book", 0},
                                                {u"a", u"B", -1},
                                                {u"B", u"c", -1},
                                                {u"File9.txt", u"File10.txt", -1},
                                                {u"1.10", u"1.9", 1},
                                                // Leading zeros do not count.
                                                {u"Book 007", u"Book 7", 0},
                                                {u"Book 007", u"Book 8", -1},
                                                {u"Résumé", u"resume", 1},
                                                {u"Résumé", u"Re\u0301sume\u0301", 0},
                                            });
}

TEST(Compare, StandardLessSortsLikeAFileBrowser)
{
    QStringList names = {"Book 10", "chapter", "book 2", "Book 1", "Apple", "Été", "ete"};
    std::stable_sort(names.begin(), names.end(), tl::LocalizedStandardLess());
    EXPECT_EQ(names,
              QStringList({"Apple", "Book 1", "book 2", "Book 10", "chapter", "ete", "Été"}));

    QStringList plain = {"b", "B", "a", "A"};
    std::stable_sort(plain.begin(), plain.end(), tl::LocalizedLess());
    EXPECT_EQ(plain, QStringList({"a", "A", "b", "B"}));
    std::stable_sort(plain.begin(), plain.end(), tl::LocalizedCaseInsensitiveLess());
    EXPECT_EQ(plain, QStringList({"a", "A", "b", "B"}));
}

TEST(Compare, CaseAndDiacriticInsensitive)
{
    expectAll(tl::caseAndDiacriticInsensitiveCompare, {
                                                          {u"cafe", u"Café", 0},
                                                          {u"CAFE", eAcuteDecomposed, -1},
                                                          {u"a", u"B", -1},
                                                          {u"naïve", u"NAIVE", 0},
                                                      });
}

TEST(Compare, CaseInsensitiveIsNotLocalized)
{
    expectAll(tl::caseInsensitiveCompare, {
                                              {u"a", u"A", 0},
                                              {u"a", u"B", -1},
                                              {u"Z", u"a", 1},
                                              {u"straße", u"STRASSE", 0},
                                              // Code unit order: é (U+00E9) after f.
                                              {u"é", u"f", 1},
                                              {u"É", u"é", 0},
                                              {u"é", eAcuteDecomposed, 1},
                                          });
    EXPECT_LT(tl::localizedCaseInsensitiveCompare(u"é", u"f"), 0);
}

// Both searches on one table: ignoring case and diacritics, and ignoring
// case alone with accents significant.
TEST(Compare, ContainsIgnoringCaseWithOrWithoutDiacritics)
{
    struct Contains
    {
        const char16_t *haystack;
        const char16_t *needle;
        bool foundIgnoringDiacritics;
        bool foundIgnoringCase;
    };
    const Contains cases[] = {
        {u"Café au lait", u"cafe", true, false},
        {u"Café au lait", u"CAFÉ AU", true, true},
        {u"cafe\u0301", u"CAFÉ", true, true},
        {u"Straße", u"STRASSE", true, true},
        {u"İstanbul", u"istanbul", true, false},
        {u"Naïve Art", u"ve a", true, true},
        {u"Café", u"cafes", false, false},
        {u"abc", u"", false, false},
        {u"abc", u"\u0301", false, false},
        {u"😀 smile", u"SMILE", true, true},
        {u"Émile.md", u"emile", true, false},
        {u"Émile.md", u"ÉMILE", true, true},
        {u"Émile.md", u"e\u0301mile", true, true},
        {u"E\u0301mile.md", u"émile", true, true},
        {u"Émil", u"e", true, false},
        {u"E\u0301mil", u"e", true, false},
        {u"Emil", u"é", true, false},
    };
    for (const auto &c : cases) {
        const QString h = QString::fromUtf16(c.haystack), n = QString::fromUtf16(c.needle);
        SCOPED_TRACE(h.toStdString() + " / " + n.toStdString());
        EXPECT_EQ(tl::caseAndDiacriticInsensitiveContains(h, n), c.foundIgnoringDiacritics);
        EXPECT_EQ(tl::caseInsensitiveContains(h, n), c.foundIgnoringCase);
    }
}

TEST(Compare, CanonicalForms)
{
    const QString nfc = u"Café Ångström"_qs;
    const QString nfd = u"Cafe\u0301 A\u030Angstro\u0308m"_qs;
    EXPECT_EQ(tl::precomposed(nfd), nfc);
    EXPECT_EQ(tl::decomposed(nfc), nfd);
    EXPECT_TRUE(tl::canonicallyEqual(nfc, nfd));
    EXPECT_FALSE(tl::canonicallyEqual(u"Cafe", nfc));
    // Already in the form: the same string, shared.
    EXPECT_EQ(tl::precomposed(nfc).constData(), nfc.constData());
    EXPECT_EQ(tl::decomposed(nfd).constData(), nfd.constData());
    // The Ångström sign is a singleton that composes to Å.
    EXPECT_EQ(tl::precomposed(u"\u212B"_qs), u"\u00C5"_qs);
    EXPECT_EQ(tl::localizedCompare(u"\u212B", u"\u00C5"), 0);
}

TEST(Compare, SafeFromSeveralThreads)
{
    std::vector<std::thread> threads;
    std::vector<int> failures(4, 0);
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&, t] {
            for (int i = 0; i < 500; ++i) {
                const QString a = QString("Book %1").arg(i), b = QString("book %1").arg(i + 1);
                if (tl::localizedStandardCompare(a, b) >= 0 ||
                    tl::localizedCompare(u"é", eAcuteDecomposed) != 0 ||
                    tl::localizedCaseInsensitiveCompare(u"a", u"A") != 0 ||
                    !tl::caseAndDiacriticInsensitiveContains(u"Café", u"cafe"))
                    ++failures[t];
            }
        });
    }
    for (auto &th : threads)
        th.join();
    EXPECT_EQ(failures, std::vector<int>(4, 0));
}
