#include "../store/library_fixture.h"
#include "browser/browser_keys.h"
#include "browser/library_search.h"
#include "store/keys.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {

using namespace tl::browser;
namespace S = tl::keys::setting;

class LibrarySearch : public tltest::LibraryTest
{
protected:
    QStringList relative(const QStringList &paths) const
    {
        QStringList list;
        for (const QString &p : paths)
            list << p.mid(root_.size() + 1);
        return list;
    }
};

TEST_F(LibrarySearch, PropertyListHitsStandForTheirItems)
{
    makeFile(inRoot("Book/Doc.md"));
    struct Case
    {
        QStringList hits;
        QStringList items;
    };
    const Case cases[] = {
        {{"Book/BookProperties.plist"}, {"Book"}},
        {{"Book/Doc.md.plist"}, {"Book/Doc.md"}},
        {{"Book/Gone.md.plist"}, {}},
        {{"Book/TLTasklistDetails.plist"}, {}},
        {{"Book/Doc.md", "Book/Doc.md.plist", "Book/BookProperties.plist", "Book"},
         {"Book/Doc.md", "Book"}},
    };
    for (const Case &c : cases) {
        QStringList hits;
        for (const QString &h : c.hits)
            hits << inRoot(h);
        EXPECT_EQ(relative(itemsForSearchHits(hits)), c.items) << c.hits.join(", ");
    }
}

TEST_F(LibrarySearch, TitleNamesTheBookOfAOneBookSearch)
{
    EXPECT_EQ(searchResultsTitle("tea", 3, root_), "Search: tea - 3 Hits");
    EXPECT_EQ(searchResultsTitle("tea", 1, inRoot("Kitchen")), "Kitchen ⟩ Search: tea - 1 Hits");
}

TEST_F(LibrarySearch, ScopeIsTheShownBookUnlessAllBooksAreSearched)
{
    const QString book = makeFolder(inRoot("Book"));
    EXPECT_EQ(searchScope(book), book);
    EXPECT_EQ(searchScope(inRoot("Missing")), root_);
    setSetting(S::SearchAllBooks, true);
    EXPECT_EQ(searchScope(book), root_);
}

TEST_F(LibrarySearch, FieldsFollowTheSettings)
{
    EXPECT_EQ(searchFieldFromSettings(), tl::search::Field::NameOrContent);
    setSetting(S::SearchContent, true);
    EXPECT_EQ(searchFieldFromSettings(), tl::search::Field::Content);
    setSetting(S::SearchTitle, true);
    EXPECT_EQ(searchFieldFromSettings(), tl::search::Field::Name);
}

TEST_F(LibrarySearch, ResultsAreSortedByTitleAndWrittenToTheResultFile)
{
    makeFile(inRoot("Book/b tea.md"), "green");
    makeFile(inRoot("Book/A.md"), "tea time");
    makeFile(inRoot("Other/C.md"), "plain");
    writePlist(inRoot("Other/C.md.plist"), QVariantMap{{"Note", "Tea"}});
    for (const SearchSource source : {SearchSource::Walk, SearchSource::FreshIndex}) {
        QFile::remove(lastSearchResultsFile());
        const SearchOutcome results =
            runLibrarySearch("tea", root_, tl::search::Field::NameOrContent, source);
        EXPECT_EQ(relative(results.paths()),
                  QStringList({"Book/A.md", "Book/b tea.md", "Other/C.md"}));
        EXPECT_EQ(results.title, "Search: tea - 3 Hits");
        EXPECT_EQ(lastSearchResults(), results.paths());
    }
    const SearchOutcome inBook =
        runLibrarySearch("tea", inRoot("Book"), tl::search::Field::Content, SearchSource::Index);
    EXPECT_EQ(relative(inBook.paths()), QStringList({"Book/A.md"}));
    EXPECT_EQ(inBook.title, "Book ⟩ Search: tea - 1 Hits");
}

TEST_F(LibrarySearch, RecentlyModifiedListsNewestFirstAndWritesItsFile)
{
    const QDateTime now = QDateTime::currentDateTimeUtc();
    auto touched = [&](const QString &name, int daysAgo) {
        QFile file(makeFile(inRoot(name)));
        file.open(QIODevice::ReadWrite);
        file.setFileTime(now.addDays(-daysAgo), QFileDevice::FileModificationTime);
    };
    touched("Old.md", 20);
    touched("Week.md", 3);
    touched("Today.md", 0);
    touched("Today.md.plist", 0);
    EXPECT_EQ(relative(pathsOfRows(tl_recentlyModifiedItems(0))), QStringList({"Today.md", "Week.md"}));
    EXPECT_EQ(relative(pathsOfRows(tl_recentlyModifiedItems(2))),
              QStringList({"Today.md", "Week.md", "Old.md"}));
    EXPECT_EQ(relative(readResultFile(recentlyModifiedItemsFile())),
              QStringList({"Today.md", "Week.md", "Old.md"}));
}

} // namespace
