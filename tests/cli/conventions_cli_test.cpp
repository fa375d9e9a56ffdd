// What every command owes its user: data as JSON with --json and only then,
// help that names the command and its arguments, the same rules for taken
// names, and no change outside the library.
#include "cli_support.h"
#include "support/test_environment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace {

using tltest::CommandResult;

class CommandConventions : public tltest::CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (IsSkipped())
            return;
        outside = home + "/Outside";
        QDir().mkpath(library + "/Book");
        QDir().mkpath(outside);
        tltest::writeFile(library + "/Book/Report.md", "# Report\n");
        tltest::writeFile(library + "/Book/Taken.md", "taken");
        tltest::writeFile(outside + "/x.md", "outside");
    }
    QString book(const QString &name) const { return library + "/Book/" + name; }
    QString outside;
};

QJsonValue json(const CommandResult &r)
{
    // A bare scalar is valid JSON only inside an array.
    const QJsonDocument doc = QJsonDocument::fromJson(("[" + r.out.trimmed() + "]").toUtf8());
    return doc.isArray() && doc.array().size() == 1 ? doc.array().first() : QJsonValue::Undefined;
}

TEST_F(CommandConventions, JsonGivesDataAndTextOtherwise)
{
    struct Case
    {
        QStringList args;
        QJsonValue expected;
    };
    const Case cases[] = {
        {{"pin", book("Report.md")}, QJsonObject{{"path", book("Report.md")}, {"pinned", true}}},
        {{"mv", book("Report.md"), book("Moved.md")}, book("Moved.md")},
        {{"cp", book("Moved.md"), book("Copied.md")}, book("Copied.md")},
        {{"dup", book("Copied.md")}, book("Copied copy.md")},
        {{"path", "excluded", "/Book/Doc.md.plist"}, true},
        {{"file", "encoding", book("Taken.md")}, QJsonObject{{"encoding", 4}, {"name", "UTF-8"}}},
        {{"sort", library + "/Book", "2"},
         QJsonObject{{"sortOrder", "modDate"}, {"ascending", true}}},
        {{"init", library}, QJsonObject{{"library", library}}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const CommandResult r = run(QStringList{"--json"} + c.args);
        EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
        EXPECT_EQ(json(r), c.expected) << r.out.toStdString();
    }
    const CommandResult trashed = run({"--json", "trash", book("Copied copy.md")});
    EXPECT_TRUE(json(trashed).toString().endsWith("/Trash/files/Copied copy.md"))
        << trashed.out.toStdString();

    // Without --json, nothing prints JSON.
    const Case text[] = {
        {{"sort", library + "/Book", "0"}, "ascending: true\nsortOrder: title\n"},
        {{"pin", book("Taken.md")}, "pinned\n"},
        {{"path", "excluded", "/Book/Doc.md"}, "false\n"},
        {{"file", "encoding", book("Taken.md")}, "encoding: 4\nname: UTF-8\n"},
    };
    for (const Case &c : text) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        EXPECT_EQ(run(c.args).out, c.expected.toString());
    }
}

TEST_F(CommandConventions, HelpNamesTheCommandItsArgumentsInOrderAndStandardInput)
{
    const CommandResult init = run({"init", "--help"});
    EXPECT_EQ(init.out.section('\n', 0, 0), "Usage: tavelle init [options] DIR");
    struct Case
    {
        const char *command;
        QStringList inOrder;
    };
    const Case cases[] = {
        {"mv", {"Usage: tavelle mv [options] SRC DEST", "--unique", "SRC", "DEST"}},
        {"cp", {"Usage: tavelle cp [options] SRC DEST", "--unique", "from anywhere"}},
        {"prop", {"Usage: tavelle prop [options] ACTION PATH KEY [VALUE...]"}},
        {"name", {"Usage: tavelle name", "safe TEXT", "unique DIR NAME"}},
        {"file",
         {"Usage: tavelle file", "encoding FILE", "title (reads the text from standard input)",
          "mime EXT"}},
        {"render", {"Usage: tavelle render [options] PATH", "standard input"}},
        {"md", {"Usage: tavelle md", "standard input"}},
        {"books", {"Usage: tavelle books [options] [BOOK]"}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.command);
        const CommandResult r = run({c.command, "--help"});
        EXPECT_EQ(r.exitCode, 0);
        // Descriptions wrap at the terminal's width.
        const QString help = r.out.simplified();
        qsizetype at = 0;
        for (const QString &part : c.inOrder) {
            const qsizetype found = help.indexOf(part, at);
            EXPECT_GE(found, at) << part.toStdString() << " in\n" << r.out.toStdString();
            at = std::max(at, found);
        }
    }
    const CommandResult overview = run({"--help"});
    EXPECT_TRUE(overview.out.contains("in the book's order"));
    EXPECT_FALSE(overview.out.contains("Finder"));
}

TEST_F(CommandConventions, MoveAndCopyRefuseATakenNameUnlessAskedForAFreeOne)
{
    struct Case
    {
        QStringList args;
        int exitCode;
        QString out;
    };
    const Case cases[] = {
        {{"mv", book("Report.md"), book("Taken.md")}, 1, ""},
        {{"cp", book("Report.md"), book("Taken.md")}, 1, ""},
        {{"cp", book("Report.md"), library + "/Book"}, 1, ""},
        {{"cp", "--unique", book("Report.md"), book("Taken.md")}, 0, book("Taken 1.md") + "\n"},
        {{"cp", "--unique", book("Report.md"), library + "/Book"}, 0, book("Report 1.md") + "\n"},
        {{"mv", "--unique", book("Report 1.md"), book("Taken.md")}, 0, book("Taken 2.md") + "\n"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const CommandResult r = run(c.args);
        EXPECT_EQ(r.exitCode, c.exitCode) << r.err.toStdString();
        EXPECT_EQ(r.out, c.out);
        EXPECT_EQ(r.err.count('\n'), c.exitCode == 0 ? 0 : 1);
    }
    EXPECT_EQ(tltest::readFile(book("Taken.md")), "taken");
    EXPECT_TRUE(QFileInfo::exists(book("Report.md")));
}

TEST_F(CommandConventions, ChangesStayInTheLibrary)
{
    ASSERT_TRUE(QFile::link(outside, library + "/Book/Door"));
    struct Case
    {
        QStringList args;
        QString error;
    };
    const QString x = outside + "/x.md";
    const Case cases[] = {
        {{"pin", "/etc/hostname"}, "Outside the library: /etc/hostname"},
        {{"pin", x}, "Outside the library: " + x},
        {{"pin", library + "/Book/Door/x.md"},
         "Outside the library: " + library + "/Book/Door/x.md"},
        {{"pin", library}, "Not for the library itself: " + library},
        {{"rm", x}, "Outside the library: " + x},
        {{"trash", x}, "Outside the library: " + x},
        {{"dup", x}, "Outside the library: " + x},
        {{"mv", x, library + "/Book"}, "Outside the library: " + x},
        {{"mv", book("Report.md"), outside}, "Outside the library: " + outside},
        {{"mv", library, outside + "/Lib"}, "Not for the library itself: " + library},
        {{"cp", book("Report.md"), outside + "/Report.md"},
         "Outside the library: " + outside + "/Report.md"},
        {{"prop", "set", x, "CSS", "y"}, "Outside the library: " + x},
        {{"prop", "rm", x, "CSS"}, "Outside the library: " + x},
        {{"sort", outside, "1"}, "Outside the library: " + outside},
        {{"sort", library + "/Book/Door", "1"}, "Outside the library: " + library + "/Book/Door"},
        {{"prop", "set", library + "/Book/Door", "CSS", "y"},
         "Outside the library: " + library + "/Book/Door"},
        {{"cp", book("Report.md"), library + "/Book/Door"},
         "Outside the library: " + library + "/Book/Door"},
        {{"recent", "--add", x}, "Outside the library: " + x},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const CommandResult r = run(c.args);
        EXPECT_EQ(r.exitCode, 1);
        EXPECT_EQ(r.err, c.error + "\n");
    }
    EXPECT_EQ(QDir(outside).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList{"x.md"})
        << "nothing was written outside";
    EXPECT_EQ(tltest::readFile(x), "outside");

    // Copies into the library from outside stay allowed, and reading does too.
    const CommandResult in = run({"cp", x, library + "/Book"});
    EXPECT_EQ(in.exitCode, 0) << in.err.toStdString();
    EXPECT_EQ(tltest::readFile(book("x.md")), "outside");
    EXPECT_EQ(run({"prop", "get", x, "CSS"}).exitCode, 0);
}

} // namespace
