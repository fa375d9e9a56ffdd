#include "contexts/tag_files.h"
#include "store/properties.h"
#include "task_fixture.h"
#include "tasks/task_extraction.h"

#include <QDir>
#include <QFileInfo>

namespace tl::tasks {
namespace {

using store::TextEncoding;
using tltest::TaskListTest;

class ExtractionTest : public TaskListTest
{
protected:
    void SetUp() override
    {
        TaskListTest::SetUp();
        setSetting("markTaskWithCharacter", " > ");
        writePlist(contexts::availableTagsPath(), QStringList{"work", "home"});
    }

    // The names of the documents in a folder, with their task states.
    QStringList tasksIn(const QString &folder) const
    {
        const QVariantMap details = readPlist(folder + "/TLTasklistDetails.plist");
        QStringList listed;
        for (const QString &name : QDir(folder).entryList({"*.txt"}, QDir::Files, QDir::Name)) {
            const QString state = details.value(name).toMap().value("State").toString();
            listed << (state.isEmpty() ? name : name + " " + state);
        }
        return listed;
    }
};

TEST_F(ExtractionTest, EachModeMakesItsPiecesOnceWithTheirStates)
{
    const struct
    {
        ExtractionMode mode;
        const char *text;
        QStringList tasks;
    } cases[] = {
        {ExtractionMode::Lines,
         "Tasks\n- Buy milk *\n(OK) Pay rent\n\n✘ Old idea\r• Call",
         {"Buy milk.txt", "Call.txt", "Old idea.txt canceled", "Pay rent.txt done"}},
        {ExtractionMode::Paragraphs,
         "First part\nmore\n\n(X) Second",
         {"First part.txt", "Second.txt canceled"}},
        {ExtractionMode::RuledPieces,
         "One\n------  \nTwo\n----\n✔ Three",
         {"One.txt", "Three.txt done", "Two.txt"}},
        {ExtractionMode::MarkedLines,
         "Intro\n> Call Bob\n  >\tWrite memo\nno > here\n>Nope",
         {"Call Bob.txt", "Write memo.txt"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text);
        QDir(book_).removeRecursively();
        makeFolder(book_);
        writePlist(plist(), QVariantMap());
        const QString doc = task("Source.md");
        for (int run = 0; run < 2; ++run) {
            QStringList created;
            EXPECT_EQ(
                tl_extractTasksToPath(c.text, doc, c.mode, TextEncoding::UTF8, false, &created),
                doc);
            EXPECT_EQ(created.size(), run == 0 ? c.tasks.size() : 0);
            EXPECT_EQ(tasksIn(book_), c.tasks);
        }
    }
}

TEST_F(ExtractionTest, TasksRememberTheirSourceInTextOrder)
{
    const QString doc = makeFile(book_ + "/My Notes.md");
    store::tl_setProperty(doc, QStringList{"work", "gone"}, "Tags");
    tl_extractTasksToPath("> Call\n> Call \n> (X) Old idea\n> Call\n> Call Ann", doc,
                          ExtractionMode::MarkedLines, TextEncoding::UTF8, false);
    tl_extractTasksToPath("Call\nabout rent\n\nCall Bob", doc, ExtractionMode::Paragraphs,
                          TextEncoding::UTF8, false);
    EXPECT_EQ(tasksIn(book_), QStringList({"Call 1.txt", "Call Ann.txt", "Call Bob.txt", "Call.txt",
                                           "Old idea.txt canceled"}));
    EXPECT_EQ(tltest::readFile(book_ + "/Call 1.txt"), "Call\nabout rent");
    EXPECT_EQ(details().value("__DoneItemCount__"), "1");
    const QString call = book_ + "/Call.txt";
    EXPECT_EQ(store::tl_propertyForKey(call, "URL"), "tavelle://show/Tasks/My%20Notes.md");
    EXPECT_EQ(store::tl_propertyForKey(call, "Tags").toStringList(), QStringList{"work"});
    EXPECT_EQ(store::tl_creationDate(call), now());
    EXPECT_EQ(store::tl_creationDate(book_ + "/Old idea.txt"), now().addSecs(1));
    EXPECT_EQ(store::tl_creationDate(book_ + "/Call Ann.txt"), now().addSecs(2));
}

TEST_F(ExtractionTest, TargetIsANewListTheInboxOrTheMovedDocument)
{
    const QString doc = makeFile(inRoot("Plans.md"));
    store::tl_setProperty(doc, QStringList{"home"}, "Tags");
    tl_extractTasksToPath("> Paint", doc, ExtractionMode::MarkedLines, TextEncoding::UTF8, true);
    EXPECT_EQ(tasksIn(inRoot("Plans")), QStringList{"Paint.txt"});
    EXPECT_EQ(store::tl_propertyForKey(inRoot("Plans"), "Tags").toStringList(),
              QStringList{"home"});

    setSetting("extractTasksToInbox", true);
    setSetting("defaultInbox", "/Tasks");
    setSetting("assignDefaultDueDate", true);
    tl_extractTasksToPath("> Sand", doc, ExtractionMode::MarkedLines, TextEncoding::UTF8, true);
    EXPECT_EQ(record("Sand.txt").value("DueDate"),
              QDateTime(QDate(2024, 3, 5), QTime(0, 1)).toUTC());
    setSetting("defaultInbox", "/Gone");
    tl_extractTasksToPath("> Rest", doc, ExtractionMode::MarkedLines, TextEncoding::UTF8, true);
    EXPECT_TRUE(QFileInfo::exists(inRoot("Rest.txt")));

    tl_extractTasksToPath("", doc, ExtractionMode::WholeDocument, TextEncoding::UTF8, true);
    EXPECT_TRUE(QFileInfo::exists(inRoot("Plans/Plans.md")));
}

TEST_F(ExtractionTest, TheCommandWantsTheMarkerOnALaterLine)
{
    const QString doc = makeFile(inRoot("Doc.md"));
    const QString task = makeFile(book_ + "/Task.md");
    setSetting("markTaskWithCharacter", "- [ ]");
    EXPECT_TRUE(tl_extractTasks(doc, "- [ ] only first line", TextEncoding::UTF8).isEmpty());
    EXPECT_EQ(tl_extractTasks(doc, "x\n- [ ] Shop\n- [x] Done thing", TextEncoding::UTF8),
              QStringList{inRoot("Doc/Shop.txt")});
    EXPECT_EQ(tl_extractTasks(task, "x\n- [ ] Fix", TextEncoding::UTF8),
              QStringList{book_ + "/Fix.txt"});
    setSetting("markTaskWithCharacter", "");
    EXPECT_TRUE(tl_extractTasks(doc, "x\n- [ ] Shop", TextEncoding::UTF8).isEmpty());
}

} // namespace
} // namespace tl::tasks
