#include "foundation/dates.h"
#include "library_fixture.h"
#include "store/keys.h"
#include "store/list_row.h"

#include <limits>

namespace tl::store {
namespace {

namespace P = keys::property;
namespace S = keys::setting;

using tltest::LibraryTest;

constexpr qint64 kNotPinned = std::numeric_limits<qint64>::max();

TEST_F(LibraryTest, RowKeys)
{
    const QString doc = makeFile(inRoot("Book/Doc.md"));
    QStringList keys = tl_rowForItem(doc).toDictionary().keys();
    keys.sort();
    QStringList expected{"title",           "path",           "parent", "modDate",
                         "DueDate",         "creationDate",   "custom", "taskIcon",
                         "taskIsRepeating", "pinnedSequence", "_TLFAV"};
    expected.sort();
    EXPECT_EQ(keys, expected);

    writePlist(doc + ".plist",
               QVariantMap{{P::CellColor, "red"}, {P::Tags, QStringList{"_TLFAV"}}});
    const QVariantMap row = tl_rowForItem(doc).toDictionary();
    EXPECT_EQ(row.value("cellColor"), "red");
    EXPECT_EQ(row.value("_TLFAV"), "1");
    EXPECT_EQ(row.value("title"), "Doc.md");
    EXPECT_EQ(row.value("path"), doc);
    EXPECT_EQ(row.value("parent"), inRoot("Book"));
    EXPECT_EQ(row.value("pinnedSequence").toLongLong(), kNotPinned);
}

TEST_F(LibraryTest, RowCustomSequenceAndPins)
{
    const QString book = makeFolder(inRoot("Book"));
    for (const char *name : {"d0.md", "d1.md", "d2.md", "d3.md", "d4.md", "d5.md", "d6.md",
                             "Seventh.md", "Loose.md", "Pack.rtfd/x", "Sub/x"})
        makeFile(book + "/" + name);
    const QStringList notes{"d0.md", "d1.md", "d2.md",      "d3.md",    "d4.md",
                            "d5.md", "d6.md", "Seventh.md", "Pack.rtfd"};
    const struct
    {
        const char *name;
        QVariantMap properties;
        bool newAtTop;
        const char *custom;
        qint64 pinned;
    } cases[] = {
        {"Seventh.md", {{P::Notes, notes}}, false, "0007", kNotPinned},
        {"Loose.md", {{P::Notes, notes}}, false, "9000", kNotPinned},
        {"Loose.md", {{P::Notes, notes}}, true, "-0001", kNotPinned},
        {"Loose.md", {}, false, "-0001", kNotPinned}, // no list at all
        {"Loose.md", {{P::Notes, QStringList{}}}, false, "-0001", kNotPinned},
        {"Pack.rtfd", {{P::Notes, notes}}, false, "0008", kNotPinned}, // packages are documents
        {"Sub",
         {{P::Notes, QStringList{"Sub"}}, {P::Books, QStringList{"A", "Sub"}}},
         false,
         "0001",
         kNotPinned}, // books use "Books"
        {"d1.md", {{P::Pinned, QStringList{"x.md", "d1.md"}}}, false, "-0001", 1},
    };
    for (const auto &c : cases) {
        setSetting(S::ManualSortNewAtTop, c.newAtTop);
        writePlist(book + "/BookProperties.plist", c.properties);
        const ListRow row = tl_rowForItem(book + "/" + c.name);
        EXPECT_EQ(row.custom, c.custom) << c.name;
        EXPECT_EQ(row.pinnedSequence, c.pinned) << c.name;
        // The same with the order handed in.
        const ListRow given = tl_rowForItem(book + "/" + c.name, BookOrder::ofBook(book));
        EXPECT_EQ(given.custom, c.custom) << c.name;
    }
}

TEST_F(LibraryTest, RowOfABookReadsItsParentsProperties)
{
    const QString sub = makeFolder(inRoot("Book/Sub"));
    writePlist(sub + "/BookProperties.plist", QVariantMap{{P::CellColor, "blue"}});
    EXPECT_FALSE(tl_rowForItem(sub).cellColor.has_value());
    writePlist(inRoot("Book/BookProperties.plist"),
               QVariantMap{{P::CellColor, "green"}, {P::Tags, QStringList{"_TLFAV"}}});
    const ListRow row = tl_rowForItem(sub);
    EXPECT_EQ(row.cellColor, "green");
    EXPECT_EQ(row.favorite, "1");
}

// When a creation date is stored is the properties' rule; the row shows it.
TEST_F(LibraryTest, RowCreationDate)
{
    const QString doc = makeFile(inRoot("Book/Doc.md"));
    const QDateTime stored(QDate(2018, 4, 5), QTime(6, 7, 8), Qt::UTC);
    writePlist(doc + ".plist", QVariantMap{{P::CreationDate, stored}});
    EXPECT_EQ(tl_rowForItem(doc).creationDate, stored);
}

// Sorting rows made by hand: name, creation and modification dates, custom
// sequence and pin.
class RowSorting : public LibraryTest
{
protected:
    static ListRow row(const QString &title, int created, int modified, const QString &custom,
                       qint64 pin = kNotPinned)
    {
        const QDateTime base(QDate(2020, 1, 1), QTime(0, 0), Qt::UTC);
        ListRow r;
        r.title = title;
        r.path = "/L/" + title;
        r.creationDate = base.addDays(created);
        r.modDate = base.addDays(modified);
        r.dueDate = distantFuture();
        r.custom = custom;
        r.pinnedSequence = pin;
        return r;
    }

    static QStringList titles(const QList<ListRow> &rows)
    {
        QStringList result;
        for (const ListRow &r : rows)
            result << r.title;
        return result;
    }
};

TEST_F(RowSorting, ChainsOfStableSorts)
{
    const QList<ListRow> rows{
        row("cherry", 3, 1, "0002"),    row("Banana", 1, 3, "-0001"), row("apple", 2, 2, "0000"),
        row("Pinned", 5, 5, "9000", 0), row("damson", 4, 4, "-0001"),
    };
    const struct
    {
        const char *key;
        bool descending;
        bool newAtTop;
        QStringList expected;
    } cases[] = {
        {"", false, false, {"Pinned", "apple", "Banana", "cherry", "damson"}},
        {"title", false, false, {"Pinned", "apple", "Banana", "cherry", "damson"}},
        {"title", true, false, {"Pinned", "damson", "cherry", "Banana", "apple"}},
        {"modDate", false, false, {"Pinned", "cherry", "apple", "Banana", "damson"}},
        {"modDate", true, false, {"Pinned", "damson", "Banana", "apple", "cherry"}},
        {"creationDate", false, false, {"Pinned", "Banana", "apple", "cherry", "damson"}},
        // Manual order: "-0001" first, ties by creation date; pins do not rise.
        {"custom", false, false, {"Banana", "damson", "apple", "cherry", "Pinned"}},
        {"custom", true, false, {"Banana", "damson", "apple", "cherry", "Pinned"}},
        {"custom", false, true, {"damson", "Banana", "apple", "cherry", "Pinned"}},
        {"unknown", true, false, {"Pinned", "apple", "Banana", "cherry", "damson"}},
    };
    for (const auto &c : cases) {
        setSetting(S::ManualSortNewAtTop, c.newAtTop);
        QList<ListRow> sorted = rows;
        tl_sortByParameter(sorted, c.key, c.descending);
        EXPECT_EQ(titles(sorted), c.expected)
            << c.key << (c.descending ? " descending" : "") << (c.newAtTop ? " new at top" : "");
    }
}

TEST_F(RowSorting, NumericOrderOfNames)
{
    const QList<ListRow> rows{row("Doc 10", 0, 0, "-0001"), row("Doc 2", 0, 0, "-0001"),
                              row("doc 1", 0, 0, "-0001")};
    const struct
    {
        bool numeric;
        QStringList expected;
    } cases[] = {
        {true, {"doc 1", "Doc 2", "Doc 10"}},
        {false, {"doc 1", "Doc 10", "Doc 2"}},
    };
    for (const auto &c : cases) {
        setSetting(S::UseNumericOrder, c.numeric);
        QList<ListRow> sorted = rows;
        tl_sortByParameter(sorted, "title", false);
        EXPECT_EQ(titles(sorted), c.expected) << c.numeric;
    }
}

TEST_F(RowSorting, EmptyListStaysEmpty)
{
    QList<ListRow> rows;
    tl_sortByParameter(rows, "title", false);
    EXPECT_TRUE(rows.isEmpty());
}

} // namespace
} // namespace tl::store
