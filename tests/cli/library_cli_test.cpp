#include "cli_support.h"
#include "support/test_environment.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <gtest/gtest.h>

namespace {

using tltest::runTavelle;

// These commands find the library themselves, from the stored setting.
class LibraryCommand : public tltest::CommandTest
{
protected:
    tltest::CommandResult run(const QStringList &args) const { return runTavelle(home, args); }
};

TEST_F(LibraryCommand, WithoutALibraryEveryLibraryCommandSaysSoAndExitsTwo)
{
    for (const QStringList &args :
         {QStringList{"walk"}, QStringList{"books"}, QStringList{"prop", "get", home, "CSS"}}) {
        const auto r = run(args);
        EXPECT_EQ(r.exitCode, 2) << args.join(' ').toStdString();
        EXPECT_EQ(r.err, "No library chosen: run 'tavelle init DIR' or pass --library DIR\n");
        EXPECT_TRUE(r.out.isEmpty());
    }
}

TEST_F(LibraryCommand, InitPreparesARealLibraryThatLaterCommandsUse)
{
    const auto init = run({"init", library});
    ASSERT_EQ(init.exitCode, 0) << init.err.toStdString();
    for (const char *sub : {"TLResources/CSS", "TLResources/BG", "TLResources/Misc"})
        EXPECT_TRUE(QFileInfo(library + "/" + sub).isDir()) << sub;
    const auto walk = run({"walk"});
    EXPECT_EQ(walk.exitCode, 0);
    EXPECT_EQ(walk.out, library + "/Quickstart/Welcome to Tavelle.html\n");
    const auto books = run({"--json", "books"});
    EXPECT_EQ(QJsonDocument::fromJson(books.out.toUtf8()).array(),
              QJsonArray{library + "/Quickstart"});
}

TEST_F(LibraryCommand, InitRefusesTheHomeFolderWithTheAlertText)
{
    const auto r = run({"init", home});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(r.err.startsWith("Selecting the User Home is not recommended"));
    EXPECT_EQ(r.err.count('\n'), 1);
    EXPECT_FALSE(QFileInfo::exists(home + "/TLResources"));
}

TEST_F(LibraryCommand, LibraryOptionWorksOnAnotherFolderWithoutChangingTheStoredOne)
{
    ASSERT_EQ(run({"init", library}).exitCode, 0);
    const QString other = home + "/Other";
    ASSERT_TRUE(tltest::writeFile(other + "/B/Second.md", "x"));
    ASSERT_TRUE(tltest::writeFile(other + "/A/First.md", "x"));
    const auto walk = run({"--library", other, "walk"});
    EXPECT_EQ(walk.out, other + "/A/First.md\n" + other + "/B/Second.md\n");
    EXPECT_EQ(run({"walk"}).out, library + "/Quickstart/Welcome to Tavelle.html\n");
}

TEST_F(LibraryCommand, PropertiesReadBackAsTheStoreReadsThem)
{
    ASSERT_EQ(run({"init", library}).exitCode, 0);
    const QString doc = library + "/Book/Doc.md";
    ASSERT_TRUE(tltest::writeFile(doc, "# Doc"));
    EXPECT_EQ(run({"prop", "set", doc, "noteFontSize", "17", "--type", "int"}).exitCode, 0);
    EXPECT_EQ(run({"prop", "get", doc, "noteFontSize"}).out, "17\n");
    EXPECT_EQ(run({"prop", "set", library + "/Book", "cellColor", "white"}).exitCode, 0);
    EXPECT_EQ(run({"prop", "get", library + "/Book", "cellColor"}).out, "default\n");
    EXPECT_EQ(run({"prop", "set", library, "CSS", "CSS/Handbook.css"}).exitCode, 0);
    EXPECT_EQ(run({"prop", "inherited", doc, "CSS"}).out, "CSS/Handbook.css\n");
    EXPECT_EQ(run({"prop", "set", doc, "Tags", "a", "b", "--type", "array"}).exitCode, 0);
    EXPECT_EQ(run({"prop", "get", doc, "Tags"}).out, "a\nb\n");
    EXPECT_EQ(run({"--json", "prop", "get", doc, "Tags"}).out, "[\"a\",\"b\"]\n");
    EXPECT_EQ(run({"prop", "rm", doc, "noteFontSize"}).exitCode, 0);
    EXPECT_EQ(run({"prop", "get", doc, "noteFontSize"}).out, "\n");
    const auto missing = run({"prop", "get", library + "/Nope.md", "CSS"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.err.count('\n'), 1);
}

TEST_F(LibraryCommand, DatesThatStandForNoDatePrintAsDates)
{
    ASSERT_EQ(run({"init", library}).exitCode, 0);
    const QString doc = library + "/Tasks/Doc.md";
    ASSERT_TRUE(tltest::writeFile(doc, "# Doc"));
    for (const char *key : {"Mail", "Print", "CreationDate"})
        EXPECT_EQ(run({"prop", "get", doc, key}).out, "0000-12-30T00:00:00Z\n") << key;
    EXPECT_EQ(run({"--json", "prop", "get", doc, "Mail"}).out, "\"0000-12-30T00:00:00Z\"\n");

    // A row of a task list that is no task sorts by the distant past.
    ASSERT_TRUE(tltest::writeFile(
        library + "/Tasks/TLTasklistDetails.plist",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict><key>Doc.md</key>"
        "<dict><key>State</key><string>no_task</string></dict></dict></plist>\n"));
    const auto listed = run({"--json", "ls", library + "/Tasks"});
    const QJsonArray rows = QJsonDocument::fromJson(listed.out.toUtf8())["documents"].toArray();
    ASSERT_EQ(rows.size(), 1) << listed.out.toStdString();
    EXPECT_EQ(rows[0]["DueDate"].toString(), "0000-12-30T00:00:00Z");
}

TEST_F(LibraryCommand, SettingsTakeTypedValuesAndRejectBadOnes)
{
    EXPECT_EQ(run({"settings", "set", "recentItemCount", "2", "--type", "int"}).exitCode, 0);
    EXPECT_EQ(run({"--json", "settings", "get", "recentItemCount"}).out, "2\n");
    EXPECT_EQ(run({"settings", "set", "darkTheme", "yes", "--type", "bool"}).exitCode, 0);
    EXPECT_EQ(run({"settings", "get", "darkTheme"}).out, "true\n");
    const auto bad = run({"settings", "set", "x", "abc", "--type", "int"});
    EXPECT_EQ(bad.exitCode, 2);
    EXPECT_EQ(bad.err.count('\n'), 1);
    EXPECT_EQ(run({"settings", "rm", "darkTheme"}).exitCode, 0);
    EXPECT_EQ(run({"settings", "get", "darkTheme"}).exitCode, 1);
}

TEST_F(LibraryCommand, PathRulesForScripts)
{
    ASSERT_EQ(run({"init", library}).exitCode, 0);
    const QString root = QFileInfo(library).canonicalFilePath();
    struct Case
    {
        QStringList args;
        QString out;
    };
    const Case cases[] = {
        {{"path", "normalize", root + "/Book/Doc.md"}, "/Book/Doc.md"},
        {{"path", "display", "/Book/Sub/Doc.md"}, "Book ⟩ Sub ⟩ Doc.md"},
        {{"path", "anchor", "/Book/Doc.md#Heading"}, "Heading"},
        {{"path", "strip-anchor", "/Book/Doc.md#Heading"}, "/Book/Doc.md"},
        {{"path", "escape", "Book/My Doc (1).md"}, "Book/My%20Doc%20%281%29.md"},
        {{"path", "relative", root + "/a/b/Doc.md", root + "/a/b"}, "Doc.md"},
        {{"path", "excluded", "/Book/Doc.md.plist"}, "true"},
        {{"--json", "path", "excluded", "/Book/Doc.md"}, "false"},
    };
    for (const Case &c : cases) {
        const auto r = run(c.args);
        EXPECT_EQ(r.exitCode, 0) << c.args.join(' ').toStdString();
        EXPECT_EQ(r.out, c.out + "\n") << c.args.join(' ').toStdString();
    }
}

TEST_F(LibraryCommand, EveryCommandHasHelpAndUnknownOnesFail)
{
    const auto overview = run({"--help"});
    ASSERT_EQ(overview.exitCode, 0);
    for (const char *command : {"init", "books", "walk", "settings", "prop", "path"}) {
        EXPECT_TRUE(overview.out.contains(QString("  ") + command)) << command;
        const auto help = run({command, "--help"});
        EXPECT_EQ(help.exitCode, 0) << command;
        EXPECT_TRUE(help.out.startsWith("Usage:")) << command;
    }
    const auto unknown = run({"frobnicate"});
    EXPECT_EQ(unknown.exitCode, 2);
    EXPECT_EQ(unknown.err.count('\n'), 1);
}

} // namespace
