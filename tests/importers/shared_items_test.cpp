#include "importers/shared_items.h"
#include "store/keys.h"
#include "store/library_fixture.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

namespace {

using namespace tl::importers;
using TLStaticFunctions::importSharedItems;

class SharedItems : public tltest::LibraryTest
{
protected:
    void TearDown() override
    {
        QDir(sharedItemsFolder()).removeRecursively();
        LibraryTest::TearDown();
    }
    static QString shared(const QString &relative)
    {
        return makeFile(sharedItemsFolder() + "/" + relative, bytes(relative));
    }
    static QByteArray bytes(const QString &relative) { return "bytes of " + relative.toUtf8(); }
};

TEST_F(SharedItems, WaitingMaterialComesIntoItsBook)
{
    makeFolder(inRoot("Book"));
    setSetting(tl::keys::setting::DefaultDocumentType, "md");
    makeFile(sharedItemsFolder() + "/Book/note.txt", "Shopping list\n- milk @home");
    makeFile(sharedItemsFolder() + "/Book/note.txt.plist",
             tl::plist::toXml(QVariantMap{{"Description", "from the phone"}}));
    makeFile(sharedItemsFolder() + "/Book/page.html",
             "<html><title>A/B Page</title><body>x</body></html>");
    makeFile(sharedItemsFolder() + "/Book/latin1.txt", "caf\xE9");
    shared("Gone/Deeper/photo.jpg");
    shared("Book/.DS_Store");
    shared("Book/._photo.jpg");
    shared(".TemporaryItems/inner.png");
    shared("Book/extensionless");
    shared("Book/BookProperties.plist");

    const QStringList created = importSharedItems();
    EXPECT_EQ(created, QStringList({inRoot("Book/latin1.txt"), inRoot("Book/Shopping list.md"),
                                    inRoot("Book/A-B Page.html"), inRoot("photo.jpg")}));
    EXPECT_EQ(tltest::readFile(inRoot("Book/Shopping list.md")), "Shopping list\n- milk @home");
    EXPECT_EQ(readPlist(inRoot("Book/Shopping list.md.plist")).value("Description"),
              "from the phone");
    EXPECT_EQ(tltest::readFile(inRoot("Book/latin1.txt")), "caf\xE9");
    EXPECT_EQ(tltest::readFile(inRoot("photo.jpg")), bytes("Gone/Deeper/photo.jpg"));
    // Everything was taken or thrown away; only the emptied folders stay.
    QDirIterator left(sharedItemsFolder(), QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot,
                      QDirIterator::Subdirectories);
    EXPECT_FALSE(left.hasNext()) << left.next();
    EXPECT_TRUE(tl::platform::settings().string("importingSharedItems").isEmpty());
}

TEST_F(SharedItems, TextBecomesAFormattedDocumentByDefault)
{
    makeFile(sharedItemsFolder() + "/idea.md", "Idea\n\nMore *here*.");
    const QStringList created = importSharedItems();
    ASSERT_EQ(created, QStringList{inRoot("Idea.html")});
    const QString html = QString::fromUtf8(tltest::readFile(created.first()));
    EXPECT_TRUE(html.contains("<!-- Generator: Tavelle")) << html;
    EXPECT_TRUE(html.contains("<em>here</em>")) << html;
}

TEST_F(SharedItems, OnlyLeftoversEmptyTheFolder)
{
    shared("Book/.DS_Store");
    makeFolder(sharedItemsFolder() + "/Empty/Inner");
    EXPECT_TRUE(importSharedItems().isEmpty());
    EXPECT_TRUE(
        QDir(sharedItemsFolder()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

TEST_F(SharedItems, SharingPutsCopiesBesideEachOther)
{
    const QString file = makeFile(outside("Scan.pdf"), "pdf");
    EXPECT_EQ(shareFile(file, "Book/Sub"), sharedItemsFolder() + "/Book/Sub/Scan.pdf");
    EXPECT_EQ(shareFile(file, "Book/Sub"), sharedItemsFolder() + "/Book/Sub/Scan 1.pdf");
    EXPECT_EQ(shareText("Call Ann\nabout the trip"), sharedItemsFolder() + "/Call Ann.txt");
    EXPECT_FALSE(shareFile(file, "../outside"));
    EXPECT_TRUE(QFileInfo::exists(file));
}

} // namespace
