#include "task_fixture.h"
#include "tasks/task_lists.h"

namespace tl::tasks {
namespace {

using tltest::TaskListTest;

TEST_F(TaskListTest, TheWalkSkipsTrashesAndPackages)
{
    for (const char *folder : {"", "A/B", ".Trash/Old", "C/.TLTrash/Old", "Pack.rtfd"})
        writePlist(inRoot(folder) + "/TLTasklistDetails.plist", QVariantMap());
    QStringList books = tl_listOfTasklists();
    books.sort();
    EXPECT_EQ(books, QStringList({root_, inRoot("A/B"), book_}));
    QStringList stored = tl::platform::settings().object("allTaskLists").toStringList();
    stored.sort();
    EXPECT_EQ(stored, QStringList({"/", "/A/B", "/Tasks"}));
}

TEST_F(TaskListTest, TheRootCountsOnceWhetherStoredEmptyOrAsSlash)
{
    setSetting("allTaskLists", QStringList{"", "Tasks", "/"});
    EXPECT_EQ(allTaskListBooks(), QStringList({root_, book_}));
}

TEST_F(TaskListTest, ListIsKeptBetweenCollections)
{
    setSetting("allTaskLists", QStringList{"/Tasks", "/Old"});
    updateListOfTasklistRemovingAdding(inRoot("Old/TLTasklistDetails_inactive.plist"),
                                       inRoot("New/TLTasklistDetails.plist"));
    EXPECT_EQ(tl::platform::settings().object("allTaskLists").toStringList(),
              QStringList({"/Tasks", "/New"}));
    updateListOfTasklistRemovingAdding(QString(), root_);
    EXPECT_EQ(tl::platform::settings().object("allTaskLists").toStringList(),
              QStringList({"/Tasks", "/New", "/"}));
}

TEST_F(TaskListTest, BadgeCountsDocumentsAndCachedCountersOfTheListsBelow)
{
    for (const char *name : {"a.md", "b.md", "c.md", "a.md.plist", "x.autosave", ".DS_Store"})
        task(name);
    makeFolder(book_ + "/Sub");
    writePlist(plist(), QVariantMap{{"__DoneItemCount__", "9"}, {"__DueItemCount__", "2"}});
    makeFile(book_ + "/Sub/d.md");
    writePlist(book_ + "/Sub/TLTasklistDetails.plist",
               QVariantMap{{"__DoneItemCount__", "1"}, {"__DueItemCount__", "1"}});
    setSetting("allTaskLists", QStringList{"/Tasks", "/Tasks/Sub"});

    EXPECT_EQ(tl_allOpenTasksCountingDescendants(book_, false),
              (QVariantMap{{"totalTasks", "3"}, {"dueTasks", "2"}, {"doneTasks", "3"}}));
    EXPECT_EQ(tl_allOpenTasksCountingDescendants("Tasks", true),
              (QVariantMap{{"totalTasks", "4"}, {"dueTasks", "3"}, {"doneTasks", "4"}}));
}

} // namespace
} // namespace tl::tasks
