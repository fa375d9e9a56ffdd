#include "../store/library_fixture.h"
#include "browser/browser_keys.h"
#include "browser/document_list.h"
#include "browser/smart_books.h"
#include "foundation/dates.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/scheduler.h"
#include "shell/shell_keys.h"
#include "store/keys.h"
#include "store/properties.h"
#include "tasks/task_list.h"

#include <gtest/gtest.h>

namespace {

using tl::browser::TLKSDocumentListViewController;
namespace S = tl::keys::setting;

QStringList titles(const QList<tl::store::ListRow> &rows)
{
    QStringList result;
    for (const auto &row : rows)
        result << row.title;
    return result;
}

QDateTime at(int day)
{
    return QDateTime(QDate(2020, 1, day), QTime(12, 0), Qt::UTC);
}

class DocumentList : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        book = makeFolder(inRoot("Book"));
        list.path = book;
    }
    // A document with a stored creation date, so orders do not hang on the
    // file system's clock.
    QString doc(const QString &name, int createdDay, const QVariantMap &extra = {})
    {
        const QString p = makeFile(book + "/" + name);
        QVariantMap props = extra;
        props.insert("CreationDate", at(createdDay));
        writePlist(p + ".plist", props);
        return p;
    }
    void load()
    {
        list.loadDisplayParameters();
        list.getDocumentsInFolder();
    }
    QString book;
    TLKSDocumentListViewController list;
};

TEST_F(DocumentList, ListsDocumentsOfABookWithoutItsSystemFiles)
{
    doc("b.md", 2);
    doc("a.txt", 1);
    makeFolder(book + "/Sub");
    makeFolder(book + "/.hidden");
    makeFile(book + "/.dot");
    makeFolder(book + "/Pages.rtfd");
    writePlist(book + "/BookProperties.plist", QVariantMap{});
    load();
    EXPECT_EQ(titles(list.documentsList), (QStringList{"a.txt", "b.md", "Pages.rtfd"}));
    EXPECT_TRUE(list.booksList.isEmpty()) << "sub-books show only with the outline collapsed";

    setSetting(S::OutlineIsCollapsed, true);
    load();
    EXPECT_EQ(titles(list.booksList), QStringList{"Sub"});
}

TEST_F(DocumentList, SortMenuStoresTheOrderWhereItBelongs)
{
    doc("a.md", 3);
    doc("b.md", 1);
    doc("c.md", 2);
    writePlist(book + "/BookProperties.plist",
               QVariantMap{{"Notes", QStringList{"c.md", "a.md", "b.md"}}});
    load();
    struct Case
    {
        int index;
        QString storedKey;
        QString storedDescending;
        QStringList order;
    };
    const Case cases[] = {
        {1, "creationDate", "", {"b.md", "c.md", "a.md"}},
        {4, "creationDate", "YES", {"a.md", "c.md", "b.md"}},
        {5, "creationDate", "", {"b.md", "c.md", "a.md"}},
        {3, "custom", "", {"c.md", "a.md", "b.md"}},
        {6, "custom", "YES", {"c.md", "a.md", "b.md"}}, // manual order has no direction
        {0, "", "YES", {"c.md", "b.md", "a.md"}},
        {5, "", "", {"a.md", "b.md", "c.md"}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.index);
        list.selectSortOrder(c.index);
        const QVariantMap props = readPlist(book + "/BookProperties.plist");
        EXPECT_EQ(props.value("sortOrderForNotes").toString(), c.storedKey);
        EXPECT_EQ(props.value("sortNotesDescending").toString(), c.storedDescending);
        EXPECT_EQ(titles(list.documentsList), c.order);
    }
}

TEST_F(DocumentList, SmartBooksKeepTheirOrderInSettings)
{
    list.smartBookType = tl::browser::DueTasks;
    list.loadDisplayParameters();
    EXPECT_EQ(list.sortOrder, "DueDate");
    EXPECT_EQ(list.sortButtonLabel(), "State");
    list.selectSortOrder(2);
    EXPECT_EQ(tl::platform::settings().string(S::DueTasksSortOrder), "DueDate");
    list.selectSortOrder(4);
    EXPECT_TRUE(tl::platform::settings().boolValue(S::DueTasksSortDescending));
    EXPECT_FALSE(list.sortAscending);

    list.smartBookType = tl::browser::Favorites;
    int favoritesEvents = 0;
    tl::ScopedObserver o(tl::events::BookViewShouldUpdateFavorites,
                         [&](const QString &, const QVariantMap &) { ++favoritesEvents; });
    list.selectSortOrder(2);
    EXPECT_EQ(tl::platform::settings().string(S::FavoritesSortOrder), "modDate");
    EXPECT_EQ(favoritesEvents, 1);

    list.smartBookType = tl::browser::RecentItems;
    EXPECT_FALSE(list.sortControlIsVisible());
}

TEST_F(DocumentList, TaskListOrdersByStateAndHidesDoneTasks)
{
    useManualClock(at(10));
    doc("dated.md", 1);
    doc("undated.md", 2);
    doc("done early.md", 3);
    doc("done late.md", 4);
    doc("canceled.md", 5);
    doc("no record.md", 6);
    doc("excluded.md", 7);
    writePlist(book + "/TLTasklistDetails.plist",
               QVariantMap{
                   {"dated.md", QVariantMap{{"DueDate", at(20)}}},
                   {"undated.md", QVariantMap{{"State", "started"}}},
                   {"done early.md", QVariantMap{{"State", "done"}, {"Changed", at(2)}}},
                   {"done late.md", QVariantMap{{"State", "done"}, {"Changed", at(5)}}},
                   {"canceled.md", QVariantMap{{"State", "canceled"}, {"Changed", at(9)}}},
                   {"excluded.md", QVariantMap{{"State", "no_task"}}},
               });
    writePlist(book + "/BookProperties.plist", QVariantMap{{"sortOrderForNotes", "modDate"}});
    load();
    EXPECT_EQ(list.sortOrder, "DueDate") << "a task list sorts modification by state";
    EXPECT_EQ(titles(list.documentsList),
              (QStringList{"excluded.md", "dated.md", "no record.md", "undated.md", "done late.md",
                           "done early.md", "canceled.md"}));
    EXPECT_EQ(list.documentsList[2].taskIcon, "task-open");
    EXPECT_EQ(list.documentsList[1].dueDate, at(20));
    EXPECT_EQ(list.documentsHeader(), "7 TASKS");

    setSetting(S::HideDoneTasks, true);
    load();
    EXPECT_EQ(list.numberOfHiddenDoneTasks, 3);
    EXPECT_EQ(list.documentsList.size(), 4);
}

TEST_F(DocumentList, HideDoneTasksKeepsDocumentsOutsideTaskLists)
{
    setSetting(S::HideDoneTasks, true);
    doc("a.md", 1);
    load();
    EXPECT_EQ(list.documentsList.size(), 1);
    EXPECT_EQ(list.documentsList[0].taskIcon, "");
}

TEST_F(DocumentList, FilterIgnoresCaseButNotAccents)
{
    doc("Café notes.md", 1);
    doc("Other.md", 2);
    doc("Émile.md", 3);
    struct Case
    {
        QString filter;
        QStringList rows;
        QString emptyText;
    };
    const Case cases[] = {
        {"", {"Café notes.md", "Émile.md", "Other.md"}, ""},
        {"CAFÉ", {"Café notes.md"}, ""},
        {"cafe\u0301", {"Café notes.md"}, ""},
        {"NOTES", {"Café notes.md"}, ""},
        {"emile", {}, "No filtered results.\n\nType Return to start a search."},
        {"ÉMILE", {"Émile.md"}, ""},
        {"zzz", {}, "No filtered results.\n\nType Return to start a search."},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.filter.toStdString());
        list.searchFilter = c.filter;
        load();
        EXPECT_EQ(titles(list.documentsList), c.rows);
        EXPECT_EQ(list.emptyListText(), c.emptyText);
    }
}

TEST_F(DocumentList, HeadersCountTheirRows)
{
    struct Case
    {
        int documents;
        QString header;
    };
    for (const Case &c : {Case{0, ""}, Case{1, "DOCUMENTS"}, Case{2, "2 DOCUMENTS"}}) {
        list.documentsList.clear();
        for (int i = 0; i < c.documents; ++i)
            list.documentsList << tl::store::ListRow{};
        EXPECT_EQ(list.documentsHeader(), c.header);
    }
    list.documentsList.clear();
    EXPECT_EQ(list.emptyListText(), "No Documents to Display");
    list.smartBookType = tl::browser::SearchResults;
    EXPECT_EQ(list.emptyListText(), "No search results");
}

TEST_F(DocumentList, CollapsedRootListsSmartBooksThatHold)
{
    setSetting(S::OutlineIsCollapsed, true);
    setSetting(S::ContextsEnabled, true);
    list.path = root_;
    load();
    QStringList smart;
    for (const auto &row : list.smartBooksList)
        smart << QString::number(row.smartType);
    EXPECT_EQ(smart, (QStringList{"7", "8", "10"}));
    EXPECT_EQ(list.smartBooksHeader(), "SMART BOOKS");
    EXPECT_EQ(list.booksHeader(), "BOOKS") << "one book: the bare word";
    const auto entries = list.entries();
    ASSERT_EQ(entries.size(), 6);
    EXPECT_EQ(entries[0].header, "SMART BOOKS");
    EXPECT_EQ(entries[4].header, "BOOKS");
    EXPECT_EQ(entries[5].row->title, "Book");
}

TEST_F(DocumentList, DragOrderIsSavedAsTheManualOrder)
{
    doc("a.md", 1);
    doc("b.md", 2);
    load();
    std::swap(list.documentsList[0], list.documentsList[1]);
    list.saveCustomSortOrder();
    EXPECT_EQ(readPlist(book + "/BookProperties.plist").value("Notes").toStringList(),
              (QStringList{"b.md", "a.md"}));
    list.selectSortOrder(3);
    EXPECT_EQ(titles(list.documentsList), (QStringList{"b.md", "a.md"}));
}

TEST_F(DocumentList, FileEventsTouchSingleRows)
{
    doc("a.md", 1);
    doc("c.md", 3);
    load();
    int changes = 0;
    list.rowsChanged = [&] { ++changes; };

    const QString b = doc("b.md", 2);
    list.newFileCreated(b);
    EXPECT_EQ(titles(list.documentsList), (QStringList{"a.md", "b.md", "c.md"}));

    ASSERT_TRUE(QFile::rename(b, book + "/d.md"));
    list.documentMoved(b, book + "/d.md");
    EXPECT_EQ(titles(list.documentsList), (QStringList{"a.md", "c.md", "d.md"}));

    const QString elsewhere = makeFolder(inRoot("Other"));
    ASSERT_TRUE(QFile::rename(book + "/d.md", elsewhere + "/d.md"));
    list.documentMoved(book + "/d.md", elsewhere + "/d.md");
    EXPECT_EQ(titles(list.documentsList), (QStringList{"a.md", "c.md"}));

    writePlist(book + "/a.md.plist", QVariantMap{{"cellColor", "red"}});
    list.documentModifiedOnDisk(book + "/a.md.plist");
    EXPECT_EQ(list.documentsList[0].cellColor, "red");

    QFile::remove(book + "/c.md");
    list.documentDeletedFromDisk(book + "/c.md");
    EXPECT_EQ(titles(list.documentsList), QStringList{"a.md"});
    EXPECT_EQ(changes, 5);

    makeFile(book + "/.dot");
    list.documentModifiedOnDisk(book + "/.dot");
    EXPECT_EQ(titles(list.documentsList), QStringList{"a.md"});
}

TEST_F(DocumentList, DeletingTheShownBookClimbsToAnExistingParent)
{
    const QString deep = makeFolder(book + "/Sub/Deeper");
    list.path = deep;
    load();
    QDir(book).removeRecursively();
    list.documentDeletedFromDisk(book);
    EXPECT_EQ(list.path, root_);
}

TEST_F(DocumentList, TaskDetailsChangeReloadsOnceAfterABurst)
{
    tl::ManualClock &clock = useManualClock(at(10));
    doc("a.md", 1);
    writePlist(book + "/TLTasklistDetails.plist", QVariantMap{});
    load();
    list.startObserving();
    writePlist(book + "/TLTasklistDetails.plist",
               QVariantMap{{"a.md", QVariantMap{{"State", "done"}, {"Changed", at(9)}}}});
    int reloads = 0;
    list.rowsChanged = [&] { ++reloads; };
    for (int i = 0; i < 3; ++i)
        tl::NotificationCenter::defaultCenter().post(tl::events::FileModifiedOnDisk,
                                                     {{"path", book + "/TLTasklistDetails.plist"}});
    clock.advance(0.31);
    tl::Scheduler::main().runDue();
    EXPECT_EQ(reloads, 1);
    EXPECT_EQ(list.documentsList.value(0).taskIcon, "task-done");
}

TEST_F(DocumentList, AToggledTaskShowsItsNewStateAtOnce)
{
    useManualClock(at(10));
    const QString task = doc("a.md", 1);
    writePlist(book + "/TLTasklistDetails.plist", QVariantMap{});
    load();
    list.startObserving();
    tl::tasks::tl_toggleTask(task);
    EXPECT_EQ(list.documentsList.value(0).taskIcon, "task-started");
}

} // namespace
