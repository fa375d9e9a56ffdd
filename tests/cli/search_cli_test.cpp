#include "cli_support.h"
#include "support/test_environment.h"

#include <QDir>
#include <QFile>
#include <gtest/gtest.h>

namespace {

class SearchCommand : public ::testing::Test
{
protected:
    void SetUp() override
    {
        if (!tltest::tavelleAvailable())
            GTEST_SKIP() << "TAVELLE_CLI is not set";
        home = tltest::makeTemporaryFolder("search-home");
        library = home + "/Library";
        tltest::writeFile(library + "/Book/Tea.md", "green organiser");
        tltest::writeFile(library + "/Coffee.txt", "black");
    }
    tltest::CommandResult run(QStringList args)
    {
        return tltest::runTavelle(home, QStringList{"--library", library} + args);
    }
    QString home;
    QString library;
};

TEST_F(SearchCommand, AnswersFromAnIndexKeptFreshByTheCommand)
{
    struct Case
    {
        QStringList args;
        QString out;
    };
    const Case cases[] = {
        {{"search", "organ"}, "Tea.md\t" + library + "/Book/Tea.md\n"},
        {{"search", "e", "--title"},
         "Coffee.txt\t" + library + "/Coffee.txt\nTea.md\t" + library + "/Book/Tea.md\n"},
        {{"search", "e", "--title", "--scope", library + "/Book"},
         "Tea.md\t" + library + "/Book/Tea.md\n"},
        {{"search", "black", "--json"},
         "[{\"path\":\"" + library + "/Coffee.txt\",\"title\":\"Coffee.txt\"}]\n"},
    };
    for (const Case &c : cases) {
        const auto r = run(c.args);
        EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
        EXPECT_EQ(r.out, c.out) << c.args.join(' ').toStdString();
    }
    tltest::writeFile(library + "/Coffee.txt", "organic beans");
    EXPECT_EQ(run({"search", "organ", "--content"}).out,
              "Coffee.txt\t" + library + "/Coffee.txt\nTea.md\t" + library + "/Book/Tea.md\n");
    EXPECT_EQ(run({"search", "--rebuild"}).exitCode, 0);
    EXPECT_EQ(run({"search"}).exitCode, 2);
    EXPECT_EQ(run({"search", "x", "--title", "--content"}).exitCode, 2);
}

} // namespace

namespace {

TEST_F(SearchCommand, DoorsFromOutsideRunHeadless)
{
    struct Case
    {
        QStringList args;
        QByteArray input;
        int exitCode;
        QString out;
    };
    const Case cases[] = {
        {{"note", "--title", "Call"}, "ring back", 0, library + "/Call.txt\n"},
        {{"add-selection", "--rtf"}, "{\\rtf1 x}", 0, library + "/{-rtf1 x}.rtf\n"},
        {{"add-selection"}, "", 1, ""},
        // Insertion needs the running program's document.
        {{"insert"}, "words", 1, ""},
        {{"url", "tavelle://addnote?title=Memo&text"}, {}, 0, ""},
        {{"url", "tavelle://Book/Tea.md"}, {}, 0, library + "/Book/Tea.md\n"},
        {{"url", "tavelle://search?organ"}, {}, 0, library + "/Book/Tea.md\n"},
        {{"url", "http://example.com"}, {}, 2, ""},
        {{"open", library + "/Coffee.txt"}, {}, 0, library + "/Coffee.txt\n"},
    };
    for (const Case &c : cases) {
        const auto r =
            tltest::runTavelle(home, QStringList{"--library", library} + c.args, c.input);
        EXPECT_EQ(r.exitCode, c.exitCode) << c.args.join(' ').toStdString() << r.err.toStdString();
        EXPECT_EQ(r.out, c.out) << c.args.join(' ').toStdString();
    }
    EXPECT_EQ(tltest::readFile(library + "/Memo.txt"), "text");
}

} // namespace
