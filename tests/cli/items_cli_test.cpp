#include "cli_support.h"
#include "support/test_environment.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <gtest/gtest.h>

namespace {

using tltest::CommandResult;

class ItemsCommand : public tltest::CommandTest
{
protected:
    void SetUp() override
    {
        CommandTest::SetUp();
        if (IsSkipped())
            return;
        QDir().mkpath(library + "/Book");
        QDir().mkpath(library + "/Other");
        tltest::writeFile(library + "/Book/Report.md", "# Report\n");
        tltest::writeFile(library + "/Book/Report.md.plist",
                          "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">"
                          "<dict><key>Description</key><string>kept</string></dict></plist>\n");
    }
    QString book(const QString &name) const { return library + "/Book/" + name; }
};

TEST_F(ItemsCommand, MoveRenamesAndMovesIntoBooksWithTheProperties)
{
    CommandResult r = run({"mv", book("Report.md"), book("Renamed.md")});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, book("Renamed.md") + "\n");
    EXPECT_TRUE(QFileInfo::exists(book("Renamed.md.plist")));

    r = run({"mv", book("Renamed.md"), library + "/Other"});
    ASSERT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, library + "/Other/Renamed.md\n");
    EXPECT_TRUE(QFileInfo::exists(library + "/Other/Renamed.md.plist"));
    EXPECT_EQ(QDir(library + "/Book").entryList(QDir::Files), QStringList{});
}

TEST_F(ItemsCommand, FailuresKeepEverything)
{
    tltest::writeFile(book("Taken.md"), "taken");
    for (const QStringList &args : {QStringList{"mv", book("Report.md"), book("Taken.md")},
                                    QStringList{"mv", book("Missing.md"), book("New.md")},
                                    QStringList{"cp", book("Missing.md"), book("New.md")},
                                    QStringList{"rm", book("Missing.md")}}) {
        const CommandResult r = run(args);
        EXPECT_EQ(r.exitCode, 1) << args.join(' ').toStdString();
        EXPECT_FALSE(r.err.isEmpty());
    }
    EXPECT_EQ(tltest::readFile(book("Report.md")), "# Report\n");
    EXPECT_EQ(tltest::readFile(book("Taken.md")), "taken");
    EXPECT_EQ(run({"mv", book("Report.md")}).exitCode, 2);
}

TEST_F(ItemsCommand, CopyDuplicateRemoveAndTrash)
{
    EXPECT_EQ(run({"cp", "--unique", book("Report.md"), library + "/Book"}).out,
              book("Report 1.md") + "\n");
    EXPECT_TRUE(QFileInfo::exists(book("Report 1.md.plist")));
    EXPECT_EQ(run({"dup", book("Report.md")}).out, book("Report copy.md") + "\n");
    EXPECT_EQ(run({"dup", book("Report.md")}).out, book("Report copy 1.md") + "\n");
    EXPECT_EQ(run({"dup", book("Report.md"), "--as", "txt"}).out, book("Report.txt") + "\n");
    EXPECT_EQ(run({"dup", book("Report.md"), "--as", "fountain"}).out,
              book("Report.fountain") + "\n");
    EXPECT_EQ(run({"dup", book("Report.md"), "--as", "tex"}).out, book("Report.tex") + "\n");
    EXPECT_TRUE(tltest::readFile(book("Report.tex")).contains("\\section{Report}"));
    EXPECT_EQ(run({"dup", book("Report.md"), "--as", "pdf"}).exitCode, 2);

    EXPECT_EQ(run({"rm", book("Report copy.md")}).exitCode, 0);
    EXPECT_FALSE(QFileInfo::exists(book("Report copy.md")));
    const CommandResult trashed = run({"trash", book("Report 1.md")});
    ASSERT_EQ(trashed.exitCode, 0) << trashed.err.toStdString();
    EXPECT_EQ(trashed.out, home + "/.local/share/Trash/files/Report 1.md\n");
    EXPECT_TRUE(QFileInfo::exists(home + "/.local/share/Trash/files/Report 1.md.plist"));
    EXPECT_FALSE(QFileInfo::exists(book("Report 1.md")));
}

TEST_F(ItemsCommand, PinsAndRecentItems)
{
    EXPECT_EQ(run({"pin", book("Report.md")}).out, "pinned\n");
    EXPECT_EQ(run({"pin", book("Report.md")}).out, "unpinned\n");
    run({"recent", "--add", book("Report.md")});
    run({"recent", "--add", library + "/Other/Gone.md"});
    EXPECT_EQ(run({"recent"}).out, "/Other/Gone.md\n/Book/Report.md\n");
    const CommandResult verified = run({"--json", "recent", "--verified"});
    EXPECT_EQ(QJsonDocument::fromJson(verified.out.toUtf8()).array(),
              QJsonArray{"/Book/Report.md"});
}

TEST_F(ItemsCommand, FileRules)
{
    tltest::writeFile(home + "/windows.txt", "caf\xE9\r\n");
    const struct
    {
        QStringList args;
        QByteArray input;
        QString out;
    } cases[] = {
        {{"file", "encoding", home + "/windows.txt"}, {}, "encoding: 12\nname: Windows-1252\n"},
        {{"--json", "file", "encoding", book("Report.md")},
         {},
         "{\"encoding\":4,\"name\":\"UTF-8\"}\n"},
        {{"file", "title"}, "---\nTitle: From YAML\n---\n", "From YAML\n"},
        {{"file", "mime", "pps"}, {}, "application/vnd.ms-powerpoint\n"},
        {{"file", "ext", "audio/mpeg"}, {}, "mp3\n"},
        {{"file", "icon", book("Report.md")}, {}, "icon-doc-md\n"},
        {{"name", "safe", "a & b"}, {}, "a - b\n"},
        {{"name", "unique", library + "/Book", "Report.md"}, {}, book("Report 1.md") + "\n"},
    };
    for (const auto &c : cases) {
        const CommandResult r = run(c.args, c.input);
        EXPECT_EQ(r.exitCode, 0) << c.args.join(' ').toStdString() << r.err.toStdString();
        EXPECT_EQ(r.out, c.out) << c.args.join(' ').toStdString();
    }
    EXPECT_EQ(run({"file", "encoding"}).exitCode, 2);
    // Arguments in the wrong order fail with one clear line.
    const CommandResult swapped = run({"name", "unique", "Report.md", library + "/Book"});
    EXPECT_EQ(swapped.exitCode, 2);
    EXPECT_EQ(swapped.out, "");
    EXPECT_EQ(swapped.err, "Not a folder: Report.md (usage: tavelle name unique DIR NAME)\n");
    EXPECT_EQ(run({"file", "thumbnail", book("Report.md")}).exitCode, 1);
}

} // namespace
