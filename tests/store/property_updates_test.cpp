#include "foundation/notification_center.h"
#include "library_fixture.h"
#include "store/plist_file.h"
#include "store/properties.h"
#include "store/property_updates.h"

namespace {

using namespace tl::store;

class PropertyUpdates : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        observer = std::make_unique<tl::ScopedObserver>(
            QString(), [this](const QString &name, const QVariantMap &payload) {
                posted << name + " " + payload.value("path").toString();
            });
    }
    void TearDown() override
    {
        observer.reset();
        LibraryTest::TearDown();
    }
    QStringList posted;
    std::unique_ptr<tl::ScopedObserver> observer;
};

TEST_F(PropertyUpdates, SetsEveryItemAndPostsRefreshEvents)
{
    const QString book = makeFolder(inRoot("Book"));
    const QString doc = makeFile(inRoot("Book/Doc.md"));
    const auto before = updateProperty({book, doc}, "cellColor", "red");
    ASSERT_TRUE(before.has_value());
    EXPECT_EQ(before->toString(), "");
    EXPECT_EQ(tl_propertyForKey(book, "cellColor").toString(), "red");
    EXPECT_EQ(tl_propertyForKey(doc, "cellColor").toString(), "red");
    EXPECT_EQ(posted,
              QStringList({"TLKSReloadCurrentBook " + book,
                           "TLKSFileModifiedOnDiskNotification " + propertiesFilePath(book),
                           "TLKSFileModifiedOnDiskNotification " + propertiesFilePath(doc)}));
}

TEST_F(PropertyUpdates, EqualValueOrEmptyOverNothingChangesNothing)
{
    const QString doc = makeFile(inRoot("Doc.md"));
    tl_setProperty(doc, "Justified", "TextAlignment");
    EXPECT_FALSE(updateProperty({doc}, "TextAlignment", "Justified").has_value());
    EXPECT_FALSE(updateProperty({doc}, "Description", "").has_value());
    EXPECT_TRUE(posted.isEmpty());
}

TEST_F(PropertyUpdates, AutoRemovesAndAnswersTheOldValue)
{
    const QString doc = makeFile(inRoot("Doc.md"));
    tl_setProperty(doc, "Justified", "TextAlignment");
    const auto before = updateProperty({doc}, "TextAlignment", "Auto");
    ASSERT_TRUE(before.has_value());
    EXPECT_EQ(before->toString(), "Justified");
    EXPECT_FALSE(readPlistDictionary(propertiesFilePath(doc)).contains("TextAlignment"));
}

} // namespace
