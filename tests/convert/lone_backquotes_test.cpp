// Backquotes set aside before Discount reads a text come back as the page
// Discount makes of the text itself.
#include "convert/discount.h"
#include "convert/lone_backquotes.h"

#include <QStringList>
#include <gtest/gtest.h>
#include <random>

namespace tl::convert {
namespace {

struct Case
{
    const char *name;
    QString markdown;
    qsizetype setAside;
};

QString page(const QString &markdown)
{
    using discount::Flag;
    const discount::Flags flags{Flag::TOC,          Flag::ExtraFootnote, Flag::FencedCode,
                                Flag::Latex,        Flag::GithubTags,    Flag::Autolink,
                                Flag::ExplicitList, Flag::DLExtra,       Flag::DLDiscount,
                                Flag::IdAnchor,     Flag::NoStyle,       Flag::NoPants};
    const auto document = discount::Document::parse(markdown.toUtf8(), flags);
    return document && document->compile() ? QString::fromUtf8(document->html()) : QString();
}

TEST(LoneBackquotes, TheirPageIsTheOneDiscountMakesOfTheText)
{
    const Case cases[] = {
        {"a run", "a ````` b", 5},
        {"longer runs", "` `` ``` ```` x", 10},
        {"a run after a code span", "`a` b `` c", 2},
        {"a shorter run after it opens", "a ``` b ` c", 0},
        {"a run that closes a longer one", "a ``` b `` c", 0},
        {"one run per paragraph", "a ``\n\nb `` c", 4},
        {"a quotation", "> a ```` b\n> c", 4},
        {"a list item", "- a ```` b", 4},
        {"a run at the end", "x " + QString(50, u'`'), 50},
        {"a line of them", QString(60, u'`'), 57},
        {"fences", "````\ncode\n````", 0},
        {"a fence in a list", "- ````\n  code\n  ````", 0},
        {"a heading", "# a ```` b", 0},
        {"an underlined heading", "a ```` b\n====", 0},
        {"a link's target", "[x](a````b) c ````` d", 5},
        {"a reference definition", "[x]: a````b", 0},
        {"an address", "see http://x.com/```` now", 0},
        {"a tag", "<span title=\"````\">x</span>", 0},
        {"an escaped run", "a \\```` b", 0},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const std::optional<SetAsideBackquotes> aside = withLoneBackquotesSetAside(c.markdown, 0);
        EXPECT_EQ(aside ? aside->count : 0, c.setAside);
        if (aside) {
            EXPECT_EQ(withBackquotesBack(page(aside->text), *aside), page(c.markdown));
        }
    }
}

// Short texts of backquotes among what else may surround them, drawn with a
// fixed seed.
TEST(LoneBackquotes, RandomTextsComeBackAsDiscountMakesThem)
{
    static const QStringList pieces = {"`",    "``",    "```",     "````", " ",   "a", "\n",
                                       "\n\n", "\\",    "<",       ">",    "](",  ")", "#",
                                       "> ",   "- ",    "[",       "]",    "*",   "_", "http://",
                                       "~~~",  "$$",    "\n===\n", "    ", "1. ", "|", "[^1]",
                                       ": ",   "<div>", "%",       "&",    "'",   "^", "[ ] "};
    std::mt19937 random(7 + qEnvironmentVariableIntValue("TAVELLE_RANDOM_SEED"));
    const int texts = qEnvironmentVariableIntValue("TAVELLE_RANDOM_TEXTS");
    for (int t = 0; t < (texts > 0 ? texts : 3000); ++t) {
        QString text;
        for (int n = random() % 24; n >= 0; --n)
            text += pieces[random() % pieces.size()];
        const std::optional<SetAsideBackquotes> aside = withLoneBackquotesSetAside(text, 0);
        if (aside) {
            ASSERT_EQ(withBackquotesBack(page(aside->text), *aside).value_or(page(text)),
                      page(text))
                << "[" << text.toStdString() << "]";
        }
    }
}

TEST(LoneBackquotes, APageWithoutEveryPlaceholderIsRefused)
{
    const std::optional<SetAsideBackquotes> aside = withLoneBackquotesSetAside("a ```` b", 0);
    ASSERT_TRUE(aside);
    EXPECT_EQ(withBackquotesBack("a ``` b", *aside), std::nullopt);
}

TEST(LoneBackquotes, ALongRunIsSetAside)
{
    const QString run = "\n" + QString(10000, u'`') + "\n\n";
    EXPECT_EQ(withLoneBackquotesSetAside(run).value_or(SetAsideBackquotes()).count, 9997);
}

TEST(LoneBackquotes, AnOrdinaryTextGoesAsItIs)
{
    EXPECT_EQ(withLoneBackquotesSetAside(QString("Some `code` and a ```` run.\n\n").repeated(1000)),
              std::nullopt);
}

} // namespace
} // namespace tl::convert
