#include "foundation/events.h"
#include "library_fixture.h"
#include "platform/file_ops.h"
#include "store/custom_order.h"
#include "store/keys.h"
#include "support/event_recorder.h"

#include <QFileInfo>

namespace tl::store {
namespace {

namespace P = keys::property;
using tltest::PostedEvent;

class CustomOrder : public tltest::LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        makeFile(inRoot("Book/A.md"));
        makeFile(inRoot("Book/B.md"));
        makeFolder(inRoot("Book/Sub"));
        makeFolder(inRoot("Book/Deck.key"));
    }
    QString bookProperties() const { return inRoot("Book/BookProperties.plist"); }
    QStringList list(const char *key) const
    {
        return readPlist(bookProperties()).value(key).toStringList();
    }
};

TEST_F(CustomOrder, SequenceNumbers)
{
    writePlist(bookProperties(), QVariantMap{{P::Notes, QStringList{"B.md", "Deck.key", "A.md"}},
                                             {P::Books, QStringList{"Other", "Sub"}}});
    const std::pair<const char *, std::optional<qsizetype>> cases[] = {
        {"Book/A.md", 2},
        {"Book/B.md", 0},
        {"Book/Sub", 1},
        {"Book/Deck.key", 1},
        {"Book/Missing.md", std::nullopt},
    };
    for (const auto &[path, expected] : cases)
        EXPECT_EQ(tl_customSequenceNrForPath(inRoot(path)), expected) << path;
    makeFile(inRoot("Book/Unlisted.md"));
    EXPECT_EQ(tl_customSequenceNrForPath(inRoot("Book/Unlisted.md")), std::nullopt);
}

TEST_F(CustomOrder, RenamesAndRemovals)
{
    const QVariantMap start{{P::Notes, QStringList{"B.md", "A.md"}},
                            {P::Books, QStringList{"Sub"}},
                            {P::Pinned, QStringList{"A.md", "Sub"}}};
    const struct
    {
        const char *name;
        QString oldPath;
        QString newPath; // the item is renamed to it first when not empty
        QStringList notes, books, pinned;
    } cases[] = {
        {"rename a document",
         inRoot("Book/A.md"),
         inRoot("Book/C.md"),
         {"B.md", "C.md"},
         {"Sub"},
         {"C.md", "Sub"}},
        {"rename a book",
         inRoot("Book/Sub"),
         inRoot("Book/Sub2"),
         {"B.md", "A.md"},
         {"Sub2"},
         {"A.md", "Sub2"}},
        {"remove", inRoot("Book/A.md"), {}, {"B.md"}, {"Sub"}, {"Sub"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        writePlist(bookProperties(), start);
        const QString &old = c.oldPath;
        if (!c.newPath.isEmpty()) {
            ASSERT_TRUE(platform::moveItem(old, c.newPath));
        }
        tl_changeSortOrderToPath(old, c.newPath);
        EXPECT_EQ(list(P::Notes), c.notes);
        EXPECT_EQ(list(P::Books), c.books);
        EXPECT_EQ(list(P::Pinned), c.pinned);
        if (!c.newPath.isEmpty()) {
            ASSERT_TRUE(platform::moveItem(c.newPath, old));
        }
    }
}

TEST_F(CustomOrder, WritesOnlyWhenAListChanged)
{
    writePlist(bookProperties(), QVariantMap{{P::Notes, QStringList{"B.md"}}});
    ASSERT_TRUE(platform::setModificationDate(bookProperties(), oldDate()));
    tl_changeSortOrderToPath(inRoot("Book/A.md"), inRoot("Book/C.md"));
    EXPECT_EQ(platform::modificationDate(bookProperties()), oldDate());

    makeFolder(inRoot("Plain"));
    tl_changeSortOrderToPath(inRoot("Plain/A.md"), inRoot("Plain/C.md"));
    EXPECT_FALSE(QFileInfo::exists(inRoot("Plain/BookProperties.plist")));
}

TEST_F(CustomOrder, MovesToAnotherBookChangeNothing)
{
    writePlist(bookProperties(), QVariantMap{{P::Notes, QStringList{"A.md"}}});
    makeFolder(inRoot("Other"));
    tl_changeSortOrderToPath(inRoot("Book/A.md"), inRoot("Other/A.md"));
    EXPECT_EQ(list(P::Notes), QStringList{"A.md"});
}

TEST_F(CustomOrder, PinsToggle)
{
    tltest::EventRecorder recorder;
    tl_pinToTop(inRoot("Book/A.md"));
    EXPECT_EQ(list(P::Pinned), QStringList{"A.md"});
    tl_pinToTop(inRoot("Book/B.md"));
    EXPECT_EQ(list(P::Pinned), (QStringList{"B.md", "A.md"}));
    tl_pinToTop(inRoot("Book/A.md"));
    EXPECT_EQ(list(P::Pinned), QStringList{"B.md"});
    const PostedEvent modified{events::FileModifiedOnDisk, {{"path", bookProperties()}}};
    EXPECT_EQ(recorder.events(), (QList<PostedEvent>{modified, modified, modified}));
}

} // namespace
} // namespace tl::store
