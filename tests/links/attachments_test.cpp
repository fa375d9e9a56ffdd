#include "links/attachments.h"
#include "platform/trash.h"
#include "store/keys.h"
#include "store/library_fixture.h"
#include "store/properties.h"

#include <QFileInfo>

namespace tl::links {
namespace {

TEST(EmbeddedPhotos, FoundUpToTheirEnd)
{
    EXPECT_EQ(
        tl_setOfEmbeddedPhotos("![](TLImages/a.png?TLKS123TLKS) <img src=\"TLImages/b%20c.jpg\">"
                               " [x](TLImages/R&amp;D.png) [y](TLImages/a.png)"),
        (QStringList{"TLImages/a.png", "TLImages/b c.jpg", "TLImages/R&D.png"}));
    EXPECT_TRUE(tl_setOfEmbeddedPhotos("no images").isEmpty());
}

class Attachments : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        setSetting("cleanUpAttachments", true);
    }
    QString image(const QString &book, const QString &name, const QByteArray &bytes = "png")
    {
        return makeFile(inRoot(book + "/TLImages/" + name), bytes);
    }
    static QString trashed(const QString &name)
    {
        return platform::trashFilesFolder() + "/" + name;
    }
};

TEST_F(Attachments, MovedDocumentsBringTheirImagesAndTheOldBookLetsGoOnce)
{
    image("A", "p.png");
    makeFile(inRoot("A/one.md"), "![](TLImages/p.png)");
    makeFile(inRoot("A/two.md"), "![](TLImages/p.png)");
    makeFolder(inRoot("B"));
    QFile::rename(inRoot("A/one.md"), inRoot("B/one.md"));
    tl_copyEmbeddedPhotosToPath(inRoot("A/one.md"), inRoot("B/one.md"));
    EXPECT_TRUE(QFileInfo::exists(inRoot("B/TLImages/p.png")));
    EXPECT_TRUE(QFileInfo::exists(inRoot("A/TLImages/p.png"))) << "two.md still uses it";

    QFile::rename(inRoot("A/two.md"), inRoot("B/two.md"));
    tl_copyEmbeddedPhotosToPath(inRoot("A/two.md"), inRoot("B/two.md"));
    EXPECT_EQ(tltest::readFile(inRoot("B/two.md")), "![](TLImages/p.png)") << "equal file kept";
    EXPECT_FALSE(QFileInfo::exists(inRoot("A/TLImages"))) << "last attachment gone, folder too";
    EXPECT_EQ(tltest::readFile(trashed("p.png")), "png");
}

TEST_F(Attachments, ADifferentImageOfTheSameNameTakesAFreeNameAndTheLinkFollows)
{
    image("A", "p.png", "mine");
    image("B", "p.png", "theirs");
    makeFile(inRoot("B/other.md"), "![](TLImages/p.png)");
    makeFile(inRoot("B/one.md"), "![](TLImages/p.png)");
    tl_copyEmbeddedPhotosToPath(inRoot("A/one.md"), inRoot("B/one.md"));
    EXPECT_EQ(tltest::readFile(inRoot("B/TLImages/p 1.png")), "mine");
    EXPECT_EQ(tltest::readFile(inRoot("B/one.md")), "![](TLImages/p 1.png)");
    EXPECT_EQ(tltest::readFile(inRoot("B/other.md")), "![](TLImages/p.png)");
}

TEST_F(Attachments, CleanUpKeepsWhatAnythingStillUses)
{
    image("A", "prop.png");
    image("A", "text%.png");
    image("A", "with blank.png");
    image("A", "linked.png");
    image("A", "unused.png");
    makeFile(inRoot("A/TLImages/unused.png.plist"), "<plist/>");
    makeFile(inRoot("A/d1.md"), "![](TLImages/text%25.png) ![](TLImages/with%20blank.png)");
    makeFile(inRoot("A/d2.md"), "nothing");
    store::tl_setProperty(inRoot("A/d2.md"), QStringList{"TLImages/prop.png"}, "Embedded Photos");
    makeFile(inRoot("C/far.md"));
    writePlist(inRoot("A/TLImages/linked.png.plist"),
               QVariantMap{{"Backlinks", QStringList{"/C/far.md"}}});

    EXPECT_EQ(tl_cleanupImagesFolder(inRoot("A"), true), QStringList{"unused.png"});
    EXPECT_TRUE(QFileInfo::exists(inRoot("A/TLImages/unused.png"))) << "a dry run";
    EXPECT_EQ(tl_cleanupImagesFolder(inRoot("A")), QStringList{"unused.png"});
    EXPECT_FALSE(QFileInfo::exists(inRoot("A/TLImages/unused.png.plist")));
    EXPECT_EQ(tltest::readFile(trashed("unused.png")), "png");
    EXPECT_TRUE(store::tl_propertyForKey(inRoot("A/d1.md"), "Embedded Photos")
                    .toStringList()
                    .contains("TLImages/with blank.png"))
        << "the property heals from the text";
}

TEST_F(Attachments, EachSafetyConditionStopsAllDeletion)
{
    image("A", "unused.png");
    makeFile(inRoot("A/d.md"), "text");
    struct Condition
    {
        const char *name;
        std::function<void()> make;
        std::function<void()> undo;
    };
    const Condition conditions[] = {
        {"switched off", [] { setSetting("cleanUpAttachments", false); },
         [] { setSetting("cleanUpAttachments", true); }},
        {"sync in progress", [] { setSetting("iCloudSyncProgress", 2); },
         [] { setSetting("iCloudSyncProgress", 0); }},
        {"attachment not downloaded", [&] { image("A", ".x.png.icloud"); },
         [&] { QFile::remove(inRoot("A/TLImages/.x.png.icloud")); }},
        {"document not downloaded", [&] { makeFile(inRoot("A/.e.md.icloud")); },
         [&] { QFile::remove(inRoot("A/.e.md.icloud")); }},
        {"virtual file of a sync client", [&] { makeFile(inRoot("A/e.md.nextcloud")); },
         [&] { QFile::remove(inRoot("A/e.md.nextcloud")); }},
        {"unreadable document", [&] { QFile::link(inRoot("A/nowhere"), inRoot("A/e.md")); },
         [&] { QFile::remove(inRoot("A/e.md")); }},
    };
    for (const Condition &c : conditions) {
        c.make();
        EXPECT_TRUE(tl_cleanupImagesFolder(inRoot("A")).isEmpty()) << c.name;
        EXPECT_TRUE(QFileInfo::exists(inRoot("A/TLImages/unused.png"))) << c.name;
        c.undo();
    }
    EXPECT_EQ(tl_cleanupImagesFolder(inRoot("A")), QStringList{"unused.png"});
}

TEST_F(Attachments, SaveKeepsThePropertyInStepWithTheText)
{
    const QString doc = makeFile(inRoot("A/d.html"));
    updateEmbeddedPhotosAfterSave(doc, "<img src=\"TLImages/z.png\"><img src=\"TLImages/a.png\">",
                                  true);
    EXPECT_EQ(embeddedPhotosOf(doc), (QStringList{"TLImages/z.png", "TLImages/a.png"}));
    updateEmbeddedPhotosAfterSave(doc, "no more", true);
    EXPECT_TRUE(embeddedPhotosOf(doc).isEmpty());
}

} // namespace
} // namespace tl::links
