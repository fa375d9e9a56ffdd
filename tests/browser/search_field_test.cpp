// The document list's search field: a filter in a plain book, a query in
// Search Results 0.3 seconds after the last key.
#include "../store/library_fixture.h"
#include "browser/document_list.h"
#include "browser/document_list_model.h"
#include "browser/library_search.h"
#include "browser/search_field.h"
#include "browser/search_index_keeper.h"
#include "browser/smart_books.h"
#include "foundation/events.h"
#include "foundation/scheduler.h"

#include <QCoreApplication>
#include <gtest/gtest.h>
#include <optional>

namespace {

using namespace tl::browser;

class SearchField : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        clock = &useManualClock(QDateTime(QDate(2024, 5, 1), QTime(9, 0), Qt::UTC));
        book = makeFolder(inRoot("Book"));
        makeFile(book + "/Tea.md", "green organiser");
        makeFile(book + "/Coffee.md", "black");
        makeFile(inRoot("Elsewhere.md"), "organiser too");
        list.path = book;
        model = std::make_unique<DocumentListModel>(list);
        field = std::make_unique<SearchFieldController>(*model);
        // Made once the library stands: its first walk starts at once.
        keeper.emplace();
        keeper->waitForUpdates();
    }
    void TearDown() override
    {
        field.reset();
        model.reset();
        keeper.reset();
        LibraryTest::TearDown();
    }

    QStringList shown()
    {
        model->waitForLoading();
        QCoreApplication::processEvents();
        QStringList names;
        for (const tl::store::ListRow &row : list.documentsList)
            names << row.title;
        return names;
    }

    tl::ManualClock *clock = nullptr;
    QString book;
    std::optional<SearchIndexKeeper> keeper;
    TLKSDocumentListViewController list;
    std::unique_ptr<DocumentListModel> model;
    std::unique_ptr<SearchFieldController> field;
};

TEST_F(SearchField, FiltersAPlainBookAndSearchesOnReturn)
{
    field->searchFieldDidChange("tea");
    EXPECT_EQ(list.smartBookType, OrdinaryBook);
    EXPECT_EQ(shown(), QStringList{"Tea.md"});

    field->searchFieldDidChange("organ");
    field->startSpotlightSearchWithString();
    EXPECT_EQ(list.smartBookType, SearchResults);
    EXPECT_EQ(shown(), QStringList{"Tea.md"});
    EXPECT_EQ(field->title(), "Book ⟩ Search: organ - 1 Hits");

    field->searchFieldDidChange("");
    EXPECT_EQ(list.smartBookType, OrdinaryBook);
    EXPECT_EQ(list.path, book);
    EXPECT_EQ(shown(), QStringList({"Coffee.md", "Tea.md"}));
}

TEST_F(SearchField, InSearchResultsTheQueryRunsAfterThePause)
{
    field->startSpotlightSearchWithString("organ");
    field->searchFieldDidChange("bl");
    clock->advance(0.2);
    field->searchFieldDidChange("black");
    clock->advance(0.2);
    EXPECT_EQ(tl::Scheduler::main().runDue(), 0);
    EXPECT_EQ(shown(), QStringList{"Tea.md"});
    clock->advance(0.1);
    EXPECT_EQ(tl::Scheduler::main().runDue(), 1);
    EXPECT_EQ(shown(), QStringList{"Coffee.md"});
}

TEST_F(SearchField, ASearchFromOutsideRunsInTheWholeLibraryFromTheRoot)
{
    QString fieldText;
    QObject::connect(field.get(), &SearchFieldController::fieldTextChanged,
                     [&fieldText](const QString &text) { fieldText = text; });
    list.path = root_;
    setSetting("searchTitle", true);
    tl::NotificationCenter::defaultCenter().post(tl::events::StartSpotlightSearch,
                                                 {{"term", "organ"}});
    QCoreApplication::processEvents();
    EXPECT_EQ(fieldText, "organ");
    EXPECT_EQ(shown(), QStringList({"Elsewhere.md", "Tea.md"}));
    EXPECT_EQ(field->title(), "Search: organ - 2 Hits");
}

TEST_F(SearchField, TheIndexFollowsFileEvents)
{
    makeFile(book + "/Later.md", "organiser again");
    tl::NotificationCenter::defaultCenter().post(tl::events::NewFileCreated,
                                                 {{"path", book + "/Later.md"}});
    keeper->waitForUpdates();
    field->startSpotlightSearchWithString("organ");
    EXPECT_EQ(shown(), QStringList({"Later.md", "Tea.md"}));
}

} // namespace
