#include "foundation/events.h"
#include "library_fixture.h"
#include "platform/file_ops.h"
#include "store/item_operations.h"
#include "store/keys.h"
#include "store/open_documents.h"
#include "store/safe_names.h"
#include "support/event_recorder.h"
#include "support/other_device_folder.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <unistd.h>

namespace tl::store {
namespace {

namespace P = keys::property;
using tltest::PostedEvent;

// Names -------------------------------------------------------------------

TEST(SafeNames, Titles)
{
    const std::pair<const char *, const char *> cases[] = {
        {"Plain title", "Plain title"},
        {"???", "-"},
        {"a & b", "a - b"},
        {"a/b\\c:d", "a-b-c-d"},
        {"<\"quoted\">", "quoted"},
        {"What?", "What"},
        {"--x--", "x"},
        {"# Heading", "Heading"},
        {"_+&#", "_+-#"},
        {"a---b", "a-b"},
        {"", ""},
    };
    for (const auto &[title, safe] : cases)
        EXPECT_EQ(tl_escapeIllegalCharacters(title), safe) << title;
}

class ItemOperations : public tltest::LibraryTest
{
protected:
    QString book() const { return inRoot("Book"); }
    QString doc(const QString &name) const { return inRoot("Book/" + name); }
    // A document with a properties file beside it.
    QString docWithProperties(const QString &name, const QByteArray &text = "text")
    {
        makeFile(doc(name), text);
        writePlist(doc(name) + ".plist", QVariantMap{{P::Description, name}});
        return doc(name);
    }
    static QStringList entries(const QString &folder)
    {
        return QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                                      QDir::Name);
    }
};

TEST_F(ItemOperations, UniqueNames)
{
    makeFile(doc("Taken.md"));
    makeFile(doc("Twice.md"));
    makeFile(doc("Twice 1.md"));
    makeFile(doc("Notes"));
    QFile::link(doc("nowhere"), doc("Dangling.md"));
    const std::pair<const char *, const char *> cases[] = {
        {"Free.md", "Free.md"},   {"Taken.md", "Taken 1.md"},       {"Twice.md", "Twice 2.md"},
        {"Notes", "Notes 1"},     {"Dangling.md", "Dangling 1.md"}, {"a:b?.md", "a-b.md"},
        {"taken.md", "taken.md"},
    };
    for (const auto &[name, unique] : cases)
        EXPECT_EQ(tl_uniqueNameForFileatPath(name, book()), doc(unique)) << name;
}

TEST_F(ItemOperations, DuplicateNames)
{
    docWithProperties("Report.md");
    makeFolder(inRoot("Book/Sub.v2"));
    const std::pair<const char *, const char *> cases[] = {
        {"Report.md", "Report copy.md"},
        {"Report.md", "Report copy 1.md"},
        {"Sub.v2", "Sub.v2 copy"},
    };
    for (const auto &[source, copy] : cases) {
        EXPECT_EQ(tl_duplicateItemAtPath(doc(source)), doc(copy)) << source;
        EXPECT_TRUE(QFileInfo::exists(doc(copy)));
    }
    EXPECT_EQ(readPlist(doc("Report copy 1.md.plist")).value(P::Description), "Report.md");
}

// Moves ---------------------------------------------------------------------

TEST_F(ItemOperations, RenameCarriesPropertiesOrderAndPins)
{
    docWithProperties("A.md", "a");
    makeFile(doc("B.md"));
    makeFile(doc("C.md"));
    writePlist(inRoot("Book/BookProperties.plist"),
               QVariantMap{{P::Notes, QStringList{"C.md", "A.md", "B.md"}},
                           {P::Pinned, QStringList{"B.md", "A.md"}}});
    tltest::EventRecorder recorder;

    ASSERT_TRUE(tl_moveItemToPath(doc("A.md"), doc("Renamed.md")));

    EXPECT_EQ(tltest::readFile(doc("Renamed.md")), "a");
    EXPECT_EQ(readPlist(doc("Renamed.md.plist")).value(P::Description), "A.md");
    EXPECT_FALSE(QFileInfo::exists(doc("A.md")) || QFileInfo::exists(doc("A.md.plist")));
    const QVariantMap order = readPlist(inRoot("Book/BookProperties.plist"));
    EXPECT_EQ(order.value(P::Notes).toStringList(), (QStringList{"C.md", "Renamed.md", "B.md"}));
    EXPECT_EQ(order.value(P::Pinned).toStringList(), (QStringList{"B.md", "Renamed.md"}));
    EXPECT_EQ(
        recorder.named(events::FileMoved),
        (QList<PostedEvent>{
            {events::FileMoved, {{"originalPath", doc("A.md")}, {"newPath", doc("Renamed.md")}}},
            {events::FileMoved,
             {{"originalPath", doc("A.md.plist")}, {"newPath", doc("Renamed.md.plist")}}}}));
}

TEST_F(ItemOperations, RenamingABookKeepsItsPlaceInBooks)
{
    makeFolder(inRoot("Book/One"));
    makeFolder(inRoot("Book/Two"));
    writePlist(inRoot("Book/BookProperties.plist"),
               QVariantMap{{P::Books, QStringList{"Two", "One"}}, {P::Notes, QStringList{"One"}}});
    ASSERT_TRUE(tl_moveItemToPath(inRoot("Book/One"), inRoot("Book/First")));
    const QVariantMap order = readPlist(inRoot("Book/BookProperties.plist"));
    EXPECT_EQ(order.value(P::Books).toStringList(), (QStringList{"Two", "First"}));
    EXPECT_EQ(order.value(P::Notes).toStringList(), QStringList{"One"});
}

TEST_F(ItemOperations, MoveToAnotherBookLeavesTheOldListsAlone)
{
    docWithProperties("A.md");
    makeFolder(inRoot("Other"));
    const QVariantMap order{{P::Notes, QStringList{"A.md"}}, {P::Pinned, QStringList{"A.md"}}};
    writePlist(inRoot("Book/BookProperties.plist"), order);
    ASSERT_TRUE(tl_moveItemToPath(doc("A.md"), inRoot("Other/A.md")));
    EXPECT_TRUE(QFileInfo::exists(inRoot("Other/A.md.plist")));
    const QVariantMap after = readPlist(inRoot("Book/BookProperties.plist"));
    EXPECT_EQ(after.value(P::Notes).toStringList(), QStringList{"A.md"});
    EXPECT_EQ(after.value(P::Pinned).toStringList(), QStringList{"A.md"});
}

TEST_F(ItemOperations, AStalePropertiesFileAtTheTargetIsReplaced)
{
    docWithProperties("A.md");
    writePlist(doc("B.md.plist"), QVariantMap{{P::Description, "stale"}});
    ASSERT_TRUE(tl_moveItemToPath(doc("A.md"), doc("B.md")));
    EXPECT_EQ(readPlist(doc("B.md.plist")).value(P::Description), "A.md");
    EXPECT_FALSE(QFileInfo::exists(doc("A.md.plist")));
}

TEST_F(ItemOperations, FailedMovesLoseNothing)
{
    docWithProperties("A.md", "a");
    docWithProperties("Taken.md", "taken");
    makeFolder(inRoot("Locked"));
    const bool permissionsCount = ::geteuid() != 0;
    ASSERT_TRUE(
        QFile(inRoot("Locked")).setPermissions(QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    const struct
    {
        const char *name;
        QString source;
        QString target;
    } cases[] = {
        {"target exists", doc("A.md"), doc("Taken.md")},
        {"missing source", doc("Missing.md"), doc("Other.md")},
        {"read-only folder", doc("A.md"), inRoot("Locked/A.md")},
        {"missing folder", doc("A.md"), inRoot("Nowhere/A.md")},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        if (QString(c.name) == "read-only folder" && !permissionsCount)
            continue;
        const auto before = entries(book());
        tltest::EventRecorder recorder;
        EXPECT_FALSE(tl_moveItemToPath(c.source, c.target));
        EXPECT_FALSE(tl_copyItemToPath(c.source, c.target));
        EXPECT_EQ(entries(book()), before);
        EXPECT_TRUE(recorder.events().isEmpty());
        EXPECT_EQ(tltest::readFile(doc("A.md")), "a");
        EXPECT_EQ(tltest::readFile(doc("Taken.md")), "taken");
        EXPECT_EQ(readPlist(doc("A.md.plist")).value(P::Description), "A.md");
        EXPECT_EQ(readPlist(doc("Taken.md.plist")).value(P::Description), "Taken.md");
    }
    QFile(inRoot("Locked"))
        .setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    EXPECT_TRUE(entries(inRoot("Locked")).isEmpty());
}

TEST_F(ItemOperations, MoveAcrossDevicesTakesThePropertiesFileAlong)
{
    tltest::OtherDeviceFolder other;
    if (other.path().isEmpty())
        GTEST_SKIP() << "no second device";
    docWithProperties("A.md", "a");
    ASSERT_TRUE(tl_moveItemToPath(doc("A.md"), other.path() + "/A.md"));
    EXPECT_EQ(tltest::readFile(other.path() + "/A.md"), "a");
    EXPECT_EQ(readPlist(other.path() + "/A.md.plist").value(P::Description), "A.md");
    EXPECT_TRUE(entries(book()).isEmpty());
    ASSERT_TRUE(tl_moveItemToPath(other.path() + "/A.md", doc("A.md")));
    EXPECT_EQ(entries(book()), (QStringList{"A.md", "A.md.plist"}));
}

TEST_F(ItemOperations, ADocumentOnScreenMovesOnTheMainQueue)
{
    docWithProperties("Shown.md", "shown");
    tltest::EventRecorder recorder;
    {
        OpenDocumentSession session(doc("Shown.md"));
        EXPECT_TRUE(documentIsShown(doc("Shown.md")));
        EXPECT_TRUE(tl_moveItemToPath(doc("Shown.md"), doc("Moved.md")));
        EXPECT_TRUE(QFileInfo::exists(doc("Shown.md")));
    }
    EXPECT_FALSE(documentIsShown(doc("Shown.md")));
    QCoreApplication::processEvents();
    EXPECT_EQ(tltest::readFile(doc("Moved.md")), "shown");
    EXPECT_TRUE(QFileInfo::exists(doc("Moved.md.plist")));
    EXPECT_EQ(recorder.named(events::FileMoved).size(), 2);
}

// Copies and deletion -------------------------------------------------------

TEST_F(ItemOperations, CopyInsideTheLibraryTakesThePropertiesFile)
{
    docWithProperties("A.md", "a");
    tltest::EventRecorder recorder;
    ASSERT_TRUE(tl_copyItemToPath(doc("A.md"), inRoot("B.md")));
    EXPECT_EQ(tltest::readFile(inRoot("B.md")), "a");
    EXPECT_EQ(readPlist(inRoot("B.md.plist")).value(P::Description), "A.md");
    EXPECT_EQ(readPlist(doc("A.md.plist")).value(P::Description), "A.md");
    EXPECT_EQ(recorder.events(), (QList<PostedEvent>{{events::HandleFileModificationInstantly,
                                                      {{"path", inRoot("B.md")}}}}));
}

TEST_F(ItemOperations, CopyOutOfTheLibraryLeavesThePropertiesFileBehind)
{
    docWithProperties("A.md");
    makeFolder(outside(""));
    ASSERT_TRUE(tl_copyItemToPath(doc("A.md"), outside("A.md")));
    EXPECT_TRUE(QFileInfo::exists(outside("A.md")));
    EXPECT_FALSE(QFileInfo::exists(outside("A.md.plist")));
}

TEST_F(ItemOperations, DeleteRemovesTheItemAndItsPropertiesFile)
{
    docWithProperties("A.md");
    makeFile(doc("B.md"));
    tltest::EventRecorder recorder;
    EXPECT_TRUE(tl_deleteItemAtPath(doc("A.md")));
    EXPECT_EQ(entries(book()), QStringList{"B.md"});
    EXPECT_EQ(recorder.events(),
              (QList<PostedEvent>{{events::FileDeletedFromDisk, {{"path", doc("A.md")}}}}));
    EXPECT_FALSE(tl_deleteItemAtPath(doc("A.md")));
}

} // namespace
} // namespace tl::store
