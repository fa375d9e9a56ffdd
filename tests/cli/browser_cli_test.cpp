#include "cli_support.h"
#include "support/test_environment.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace {

class BrowserCommand : public tltest::CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (IsSkipped())
            return;
        QDir().mkpath(library + "/Book/Sub");
        tltest::writeFile(library + "/Book/b.md", "b");
        tltest::writeFile(library + "/Book/a.txt", "a");
    }
};

TEST_F(BrowserCommand, TreeShowsBothGroupsAndTheBooks)
{
    const auto r = run({"tree"});
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, "Smart Books\n  Recent Items\n  Recently Modified\nBooks\n  Book\n    Sub\n");
    const auto depth = run({"tree", "--depth", "1"});
    EXPECT_FALSE(depth.out.contains("Sub"));
}

TEST_F(BrowserCommand, ListShowsHeadersAndRowsInOrder)
{
    struct Case
    {
        QStringList args;
        QString out;
    };
    const Case cases[] = {
        {{"ls", library + "/Book"}, "2 DOCUMENTS\n  a.txt\n  b.md\n"},
        {{"ls", library + "/Book", "--sort", "title", "--desc"}, "2 DOCUMENTS\n  b.md\n  a.txt\n"},
        {{"ls", library + "/Book", "--filter", "B"}, "DOCUMENTS\n  b.md\n"},
        {{"ls", library + "/Book", "--collapsed"}, "BOOKS\n  Sub\n2 DOCUMENTS\n  a.txt\n  b.md\n"},
        {{"ls", library + "/Book/Sub"}, "No Documents to Display\n"},
    };
    for (const Case &c : cases) {
        const auto r = run(c.args);
        EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
        EXPECT_EQ(r.out, c.out) << c.args.join(' ').toStdString();
    }
    const auto json = run({"ls", library + "/Book", "--json"});
    const QJsonObject list = QJsonDocument::fromJson(json.out.toUtf8()).object();
    EXPECT_EQ(list.value("documents").toArray().size(), 2);
    EXPECT_EQ(list.value("documents").toArray()[0].toObject().value("title"), "a.txt");
    EXPECT_EQ(list.value("hiddenDoneTasks").toInt(), 0);
    EXPECT_EQ(run({"ls", "--smart", "nonsense"}).exitCode, 2);
}

TEST_F(BrowserCommand, AFolderOutsideTheLibraryListsTheRoot)
{
    tltest::writeFile(library + "/Root.md", "r");
    QDir().mkpath(home + "/Outside");
    tltest::writeFile(home + "/Outside/x.md", "x");
    const auto outside = run({"ls", home + "/Outside"});
    EXPECT_EQ(outside.exitCode, 0) << outside.err.toStdString();
    EXPECT_EQ(outside.out, run({"ls"}).out);
    EXPECT_FALSE(outside.out.contains("x.md"));
    const auto json = run({"ls", home + "/Outside", "--json"});
    EXPECT_EQ(QJsonDocument::fromJson(json.out.toUtf8())["path"].toString(), library);
}

TEST_F(BrowserCommand, SortStoresTheChosenOrder)
{
    const auto r = run({"--json", "sort", library + "/Book", "4"});
    EXPECT_EQ(r.out, "{\"ascending\":false,\"sortOrder\":\"title\"}\n");
    EXPECT_EQ(run({"ls", library + "/Book"}).out, "2 DOCUMENTS\n  b.md\n  a.txt\n");
    EXPECT_EQ(run({"sort", library + "/Book", "9"}).exitCode, 2);
}

} // namespace
