// What the index keeps of a text: each folded word once, the bytes of ASCII
// text read without decoding them to the same words.
#include "search/distinct_words.h"

#include <QRandomGenerator>
#include <QString>
#include <gtest/gtest.h>

namespace {

TEST(DistinctWords, KeepEachFoldedWordOnceInFirstOrder)
{
    struct Case
    {
        const char *text;
        const char *words;
    };
    const Case cases[] = {
        {"Plan the plans, PLAN again; plan_b x2 X2", "plan the plans again b x2"},
        {"Crème brûlée, CRÈME", "creme brulee"},
        {"  \n\t", ""},
        {"", ""},
    };
    for (const Case &c : cases)
        EXPECT_EQ(tl::search::distinctSearchWords(QString::fromUtf8(c.text)), c.words) << c.text;
}

TEST(DistinctWords, ASCIIBytesGiveTheWordsOfTheirText)
{
    using namespace std::literals;
    std::vector<std::string> texts{"Plan the plans, PLAN again; plan_b x2 X2",
                                   "a\0b"s,
                                   "..Zz-zZ..",
                                   "tab\tend\r\nline",
                                   "x",
                                   "",
                                   "longwordsoverten longwordsovertwenty longwordsoverten@[`{/:"};
    // Read in blocks of 64 bytes and words eight bytes at a time: words
    // across, at and past both edges, repeats that differ only after their
    // first eight bytes.
    QRandomGenerator random(5);
    for (const std::string &alphabet : {"abcAB0 9-_\n\0"s, "aaaaB "s}) {
        for (int n = 0; n < 300; ++n) {
            std::string text;
            for (int length = random.bounded(200); length > 0; --length)
                text += alphabet[random.bounded(int(alphabet.size()))];
            texts.push_back(text);
        }
    }
    for (const std::string &text : texts) {
        const std::optional<std::string> words = tl::search::distinctASCIISearchWords(text);
        ASSERT_TRUE(words) << text;
        EXPECT_EQ(*words, tl::search::distinctSearchWords(
                              QString::fromLatin1(text.data(), qsizetype(text.size()))))
            << text;
    }
    EXPECT_EQ(tl::search::distinctASCIISearchWords("caf\xC3\xA9"), std::nullopt);
    EXPECT_EQ(tl::search::distinctASCIISearchWords("plain words then \x80"), std::nullopt);
}

TEST(DistinctWords, ManyWordsOutgrowTheFirstTable)
{
    QString text;
    for (int i = 0; i < 1000; ++i)
        text += QStringLiteral("%1 ").arg(i);
    text += QStringLiteral("0 999");
    const std::string words = tl::search::distinctSearchWords(text);
    EXPECT_EQ(std::count(words.cbegin(), words.cend(), ' '), 999);
    EXPECT_EQ(tl::search::distinctASCIISearchWords(text.toStdString()), words);
    // A short text after the long one starts from an empty table.
    EXPECT_EQ(tl::search::distinctSearchWords(u"999 x"), "999 x");
}

} // namespace
