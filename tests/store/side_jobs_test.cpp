#include "library_fixture.h"
#include "store/item_operations.h"
#include "store/side_jobs.h"

namespace {

using namespace tl::store;

class SideJobsOrder : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        const auto record = [this](const char *name) {
            return [this, name](const QString &source, const QString &target) {
                calls << QString("%1 %2 -> %3")
                             .arg(name, source.mid(root_.size()), target.mid(root_.size()));
            };
        };
        sideJobs() = {record("tags"),        record("task"),      record("taskCopy"),
                      record("attachments"), record("bookLinks"), record("documentLinks")};
    }
    void TearDown() override
    {
        sideJobs() = {};
        LibraryTest::TearDown();
    }
    QStringList calls;
};

TEST_F(SideJobsOrder, AMoveRunsTheRegisteredJobsInTheirFixedOrder)
{
    makeFile(inRoot("Tasks/TLTasklistDetails.plist"), tl::plist::toXml(QVariantMap{}));
    makeFile(inRoot("Tasks/Doc.md"));
    makeFolder(inRoot("Other"));
    setSetting("manageLinks", true);
    ASSERT_TRUE(tl_moveItemToPath(inRoot("Tasks/Doc.md"), inRoot("Other/Doc.md")));
    EXPECT_EQ(calls, QStringList({"tags /Tasks/Doc.md -> /Other/Doc.md",
                                  "task /Tasks/Doc.md -> /Other/Doc.md",
                                  "attachments /Tasks/Doc.md -> /Other/Doc.md",
                                  "documentLinks /Tasks/Doc.md -> /Other/Doc.md"}));
}

TEST_F(SideJobsOrder, LinksAreLeftAloneWithoutLinkManagementAndBooksRewriteTheirLinks)
{
    makeFile(inRoot("Book/Doc.md"));
    ASSERT_TRUE(tl_moveItemToPath(inRoot("Book"), inRoot("Renamed")));
    EXPECT_EQ(calls, QStringList({"tags /Book -> /Renamed", "attachments /Book -> /Renamed"}));
    calls.clear();
    setSetting("manageLinks", true);
    ASSERT_TRUE(tl_moveItemToPath(inRoot("Renamed"), inRoot("Book")));
    EXPECT_TRUE(calls.contains("bookLinks /Renamed -> /Book"));
}

TEST_F(SideJobsOrder, NothingRegisteredMeansNothingToDo)
{
    sideJobs() = {};
    makeFile(inRoot("Doc.md"));
    EXPECT_TRUE(tl_moveItemToPath(inRoot("Doc.md"), inRoot("Moved.md")));
    EXPECT_TRUE(calls.isEmpty());
}

} // namespace
