#include "foundation/clock.h"
#include "library_fixture.h"
#include "platform/file_ops.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/reading_order.h"

#include <QFile>

namespace tl::store {
namespace {

using tltest::LibraryTest;

struct Flag
{
    const char *path;
    bool expected;
};

struct Text
{
    const char *input;
    const char *expected;
};

// Path rules that only look at the text, against a root that need not exist.
class ItemPathText : public LibraryTest
{
protected:
    void SetUp() override
    {
        LibraryTest::SetUp();
        setLibraryRootOverride("/A/Lib");
    }
};

TEST_F(ItemPathText, ChildOfTheRootIsAPlainCaseInsensitivePrefixTest)
{
    const Flag cases[] = {
        {"/A/Lib", true},         {"/A/Lib/Book/Doc.md", true},
        {"/a/lib/book", true},    {"/a/lib2/x", true},
        {"/A/Library", true},     {"/A/Li", false},
        {"/B/Lib/Doc.md", false}, {"", false},
        {"A/Lib", false},         {"/X/A/Lib/Doc.md", false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_itemIsChildOfTavelle(c.path), c.expected) << c.path;
}

TEST_F(ItemPathText, NormalizedPathCutsTheRootsLength)
{
    const Text cases[] = {
        {"/A/Lib", ""},           {"/A/Lib/Book/Doc.md", "/Book/Doc.md"}, {"/a/lib2/x", "2/x"},
        {"/a/LIB/Book", "/Book"}, {"/Other/Doc.md", "/Other/Doc.md"},     {"", ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_normalizedPath(c.input), c.expected) << c.input;
}

TEST_F(ItemPathText, WithoutARootNothingIsAChild)
{
    setLibraryRootOverride({});
    platform::settings().remove(keys::setting::TavelleFolder);
    EXPECT_FALSE(tl_itemIsChildOfTavelle("/A/Lib/Doc.md"));
    EXPECT_FALSE(tl_itemIsChildOfTavelle("/"));
    EXPECT_EQ(tl_normalizedPath("/A/Lib/Doc.md"), "/A/Lib/Doc.md");
}

TEST_F(ItemPathText, TheRootComesFromTheSettingWithLinksResolved)
{
    const QString real = makeFolder(home_ + "/Real");
    ASSERT_TRUE(QFile::link(real, home_ + "/Linked"));
    setLibraryRootOverride({});
    setSetting(keys::setting::TavelleFolder, home_ + "/Linked");
    EXPECT_EQ(libraryRoot(), real);
    EXPECT_EQ(tl_normalizedPath(real + "/Doc.md"), "/Doc.md");
    // Read afresh: a new setting takes effect at the next call.
    setSetting(keys::setting::TavelleFolder, root_);
    EXPECT_EQ(libraryRoot(), root_);
    // A root chosen before it is made is resolved once it is there.
    setSetting(keys::setting::TavelleFolder, home_ + "/Linked/Later");
    EXPECT_EQ(libraryRoot(), home_ + "/Linked/Later");
    makeFolder(real + "/Later");
    EXPECT_EQ(libraryRoot(), real + "/Later");
}

TEST(ItemPathDisplay, ArrowsInsteadOfSlashes)
{
    const Text cases[] = {
        {"/Book/Sub/Doc.md", "Book ⟩ Sub ⟩ Doc.md"},
        {"Book/Doc.md", "Book ⟩ Doc.md"},
        {"//Doc.md", " ⟩ Doc.md"},
        {"Doc.md", "Doc.md"},
        {"", ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_pathFormattedForDisplay(QString::fromUtf8(c.input)),
                  QString::fromUtf8(c.expected))
            << c.input;
}

TEST(ItemPathDisplay, ContextMenuLabelNameAndFontSize)
{
    EXPECT_EQ(tl_pathFormattedForContextMenu("/Book/Sub/Doc.md", 1).normalPart, "Doc");
    EXPECT_TRUE(tl_pathFormattedForContextMenu("/Book/Sub/Doc.md", 1)
                    .faintPart.endsWith(QString::fromUtf8(" ⟩ ")));
    EXPECT_EQ(tl_pathFormattedForContextMenu("/Book/Doc.md", 1).fontSize, 13);
    EXPECT_EQ(tl_pathFormattedForContextMenu("/Book/Doc.md", 2).fontSize, 12);
    EXPECT_EQ(tl_pathFormattedForContextMenu("/Book/Doc.md", 3).fontSize, 12);
}

TEST(ItemPathKinds, DotFiles)
{
    const Flag cases[] = {
        {"/a/..foo", false},  // ".." answers before "/." is looked for
        {"/a/..foo/b", true}, // below a hidden folder
        {"/a/.hidden", true}, {"/a/.git/config", true}, {"/a/b~", true},   {"/a/b", false},
        {"/a/b.c", false},    {"/a/b~/c", false},       {".hidden", true}, {"plain", false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_pathIsDotFile(c.path), c.expected) << c.path;
}

TEST(ItemPathKinds, FinderIcon)
{
    const Flag cases[] = {
        {"/a/Icon\r", true},  {"/a/Icons", true},   {"/a/Icon.png", false},  {"/a/Icon", false},
        {"/a/Iconic", false}, {"/a/icon\r", false}, {"/a/b.d/Icon\r", true}, {"Icon\r", true},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_pathIsFinderIcon(c.path), c.expected) << c.path;
}

TEST(ItemPathKinds, SystemFilesTaskPlistsAndTrash)
{
    const struct
    {
        const char *path;
        bool system, task, trashed;
    } cases[] = {
        {"/L/Book/TLTasklistDetails.plist", true, true, false},
        {"/L/Book/TLTasklistDetails_inactive.plist", true, true, false},
        {"/L/Book/BookProperties.plist", true, false, false},
        {"/L/Book/Doc.md.plist", false, false, false},
        {"/L/.Trash/Doc.md", false, false, true},
        {"/L/.TLTrash/Book/BookProperties.plist", true, false, true},
        {"/L/Trash/Doc.md", false, false, false},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(tl_pathIsSystemFile(c.path), c.system) << c.path;
        EXPECT_EQ(tl_pathIsTaskPlist(c.path), c.task) << c.path;
        EXPECT_EQ(tl_itemIsTrashed(c.path), c.trashed) << c.path;
    }
}

TEST(ItemPathKinds, DisplayFilterRules)
{
    const Flag cases[] = {
        {"/L/Doc.md.plist", true}, // property file
        {"/L/Doc.PLIST", false},   // case-sensitive
        {"/L/Doc.plist.md", false},
        {"/L/Doc.md.__sidecar", true},
        {"/L/.DS_Store", true}, // dot file
        {"/L/Book/.git", true},
        {"/L/Icon\r", true},          // Finder icon
        {"/L/__NewNoteTmp.md", true}, // being created
        {"/L/Book/x__NewNoteTmp y.md", true},
        {"/L/__NewNoteTmp/Doc.md", false}, // only the last component counts
        {"/L/TLResources", true},
        {"/L/TLResources/Misc/Settings.txt", true},
        {"/L/TLResources/CSS/Theme.css", false},
        {"TLResources", true}, // a bare name works too
        {"/L/Book/TLImages", true},
        {"/L/Book/TLImages/pic.png", false},
        {"/L/Book/tlimages", false},
        {"/L/Book/Doc.md", false},
        {"/L/Book/Doc.md.owncloud", true},
        {"/L/Book/Doc.nextcloud.md", false},
        {"/L/TLMacLog.txt", false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_pathIsExcludedFromDisplay(c.path), c.expected) << c.path;
}

TEST_F(ItemPathText, RecentlyModifiedFilter)
{
    const Flag cases[] = {
        {"/A/Lib/Doc.md.plist", true},
        {"/A/Lib/TLResources/Misc/x.txt", true},
        {"/A/Lib/TLResources/CSS/a.css", false},
        {"/A/Lib/Book/TLResources/x.txt", false},
        {"/A/Lib/TLResources/Misc/RecentItems.txt", true},
        {"/A/Lib/Book/Doc.autosave", true},
        {"/A/Lib/Dropbox Log.txt", true},
        {"/A/Lib/Book/.Doc.md.icloud", true},
        {"/A/Lib/Book/Doc.md.nextcloud", true},
        {"/A/Lib/Book/.DS_Store", true},
        {"/A/Lib/.git/HEAD", true},
        {"/A/Lib/Book/Doc.md", false},
        {"/Else/TLResources/x.txt", false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_pathIsExcludedFromRecentlyModified(c.path), c.expected) << c.path;
}

TEST_F(LibraryTest, RecentlyModifiedPeriodFollowsTheSettingAndTheClock)
{
    const QDateTime now(QDate(2024, 5, 20), QTime(12, 0), Qt::UTC);
    useManualClock(now);
    const QString doc = makeFile(inRoot("Book/Doc.md"));
    constexpr qint64 day = 86400;
    const struct
    {
        std::optional<int> weeks; // recentlyModifiedSince; nothing leaves it unset
        qint64 age;               // seconds before now
        bool expected;
    } cases[] = {
        {std::nullopt, 7 * day, true}, // unset reads 0: seven days, the threshold included
        {std::nullopt, 7 * day + 1, false},
        {0, 0, true},
        {1, 10 * day, true},
        {1, 14 * day, true},
        {1, 14 * day + 1, false},
        {-1, 0, false}, // a period of no days
        {-2, 0, false},
    };
    for (const auto &c : cases) {
        if (c.weeks)
            setSetting(keys::setting::RecentlyModifiedSince, *c.weeks);
        else
            platform::settings().remove(keys::setting::RecentlyModifiedSince);
        ASSERT_TRUE(platform::setModificationDate(doc, now.addSecs(-c.age)));
        EXPECT_EQ(tl_pathIsRecentlyModified(doc), c.expected)
            << "weeks " << c.weeks.value_or(0) << " age " << c.age;
    }
}

TEST_F(LibraryTest, RecentlyModifiedLeavesOutFoldersExcludedAndMissingItems)
{
    const QDateTime now(QDate(2024, 5, 20), QTime(12, 0), Qt::UTC);
    useManualClock(now);
    const QString book = makeFolder(inRoot("Book"));
    const QString plist = makeFile(inRoot("Book/Doc.md.plist"));
    for (const QString &path : {book, plist})
        ASSERT_TRUE(platform::setModificationDate(path, now));
    EXPECT_FALSE(tl_pathIsRecentlyModified(book));
    EXPECT_FALSE(tl_pathIsRecentlyModified(plist));
    EXPECT_FALSE(tl_pathIsRecentlyModified(inRoot("Book/Missing.md")));
}

TEST_F(LibraryTest, ExistenceByExactName)
{
    makeFile(inRoot("Book/doc.md"));
    makeFolder(inRoot("Book/Sub"));
    makeFile(inRoot("Book/") + QString::fromUtf8("Caf\xc3\xa9.md")); // composed
    const struct
    {
        QString path;
        bool exists;
        bool folder;
    } cases[] = {
        {inRoot("Book/doc.md"), true, false},
        {inRoot("Book/doc.MD"), false, false},
        {inRoot("Book/Doc.md"), false, false},
        {inRoot("Book/Sub"), true, true},
        {inRoot("Book/sub"), false, false},
        {inRoot("Book/Missing"), false, false},
        {inRoot("Book/") + QString::fromUtf8("Cafe\xcc\x81.md"), true, false}, // decomposed
        {root_, true, true},
    };
    for (const auto &c : cases) {
        bool folder = !c.folder;
        EXPECT_EQ(tl_fileExistsAtPathIsDirectory(c.path, &folder), c.exists) << c.path;
        if (c.exists) {
            EXPECT_EQ(folder, c.folder) << c.path;
        }
        EXPECT_EQ(tl_fileExistsAtPathIsDirectory(c.path), c.exists) << c.path;
    }
}

TEST(ItemPathNames, PropertiesFileStubAndTaskList)
{
    EXPECT_EQ(tl_plistPath("/L/Book/Doc.md"), "/L/Book/Doc.md.plist");
    EXPECT_EQ(tl_plistPath("/L/Book/Doc"), "/L/Book/Doc.plist");
    EXPECT_EQ(tl_iCloudStub("/L/Book/Doc.md"), "/L/Book/.Doc.md.icloud");
}

TEST_F(LibraryTest, TaskListsAndImagesFolders)
{
    makeFile(inRoot("Tasks/TLTasklistDetails.plist"));
    makeFolder(inRoot("Plain"));
    EXPECT_TRUE(tl_bookIsTasklist(inRoot("Tasks")));
    EXPECT_FALSE(tl_bookIsTasklist(inRoot("Plain")));

    EXPECT_TRUE(tl_pathIsBook(inRoot("Plain")));
    EXPECT_TRUE(tl_pathIsBook(makeFolder(inRoot("Slides.key"))));
    EXPECT_FALSE(tl_pathIsBook(inRoot("Tasks/TLTasklistDetails.plist")));
    EXPECT_FALSE(tl_pathIsBook(inRoot("Missing")));
    EXPECT_FALSE(tl_pathIsBook(""));

    const QString images = tl_imagesFolderAtMyPath(inRoot("Deep/Book/Doc.md"));
    EXPECT_EQ(images, inRoot("Deep/Book/TLImages"));
    EXPECT_TRUE(QFileInfo(images).isDir());
}

TEST(ItemPathAnchors, SplitOnlyWhereTheExtensionIsUnknown)
{
    const struct
    {
        const char *path;
        const char *anchor;
        const char *withoutAnchor;
    } cases[] = {
        {"/L/Book/Doc.md#Heading", "Heading", "/L/Book/Doc.md"},
        {"/L/Book/Report #2.txt", "", "/L/Book/Report #2.txt"},
        {"/L/Book/Report #2", "2", "/L/Book/Report "},
        {"/L/Book/Doc#1.md", "", "/L/Book/Doc#1.md"},
        {"/L/Book/Doc#1.MD", "", "/L/Book/Doc#1.MD"},
        {"/L/Book/Doc.md#Part.md", "", "/L/Book/Doc.md#Part.md"}, // reads as a file name
        {"/L/Book/Doc.md#Sec.2", "Sec.2", "/L/Book/Doc.md"},
        {"/L/Book/Doc.md#a#b", "b", "/L/Book/Doc.md#a"},
        {"/L/Bo#ok/Doc", "", "/L/Bo#ok/Doc"},
        {"/L/Book/Doc", "", "/L/Book/Doc"},
        {"/L/Book/Doc.pdf", "", "/L/Book/Doc.pdf"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(tl_pathAnchor(c.path), c.anchor) << c.path;
        EXPECT_EQ(tl_pathWithoutAnchor(c.path), c.withoutAnchor) << c.path;
        EXPECT_EQ(tl_pathByAppendingAnchor(tl_pathWithoutAnchor(c.path), tl_pathAnchor(c.path)),
                  c.path);
    }
    EXPECT_EQ(tl_pathByAppendingAnchor("/L/Doc.md", "Top"), "/L/Doc.md#Top");
    EXPECT_EQ(tl_pathByAppendingAnchor("/L/Doc.md", ""), "/L/Doc.md");
}

TEST(ItemPathLinks, EscapingForMarkdownLinks)
{
    const Text cases[] = {
        {"file:///L/My Doc.md#Heading One", "file:///L/My%20Doc.md#Heading One"},
        {"file:///L/My%20Doc.md", "file:///L/My%20Doc.md"},
        {"http://example.com/a b(1)", "http://example.com/a b%281%29"},
        {"https://example.com/x?y=1", "https://example.com/x?y=1"},
        {"mailto:me@example.com", "mailto:me@example.com"},
        {"Book/My Doc.md", "Book/My%20Doc.md"},
        {"Book/My%20Doc.md", "Book/My%20Doc.md"},
        {"Doc (1).md", "Doc%20%281%29.md"},
        {"Book/Doc.md#My Heading", "Book/Doc.md#My Heading"},
        {"Book/Doc (2).md#Part (a)", "Book/Doc%20%282%29.md#Part %28a%29"},
        {"Report #2.txt", "Report%20%232.txt"},
        {"Book/Caf\xc3\xa9.md", "Book/Caf%C3%A9.md"},
        {"../Other/Doc.md", "../Other/Doc.md"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_pathEscapedForMarkdownLink(QString::fromUtf8(c.input)), c.expected) << c.input;
}

TEST_F(LibraryTest, RelativeLinks)
{
    makeFile(inRoot("a/b/Doc.md"));
    makeFile(inRoot("a/c/Doc.md"));
    makeFile(inRoot("Top.md"));
    makeFile(inRoot("a/My Doc.md"));
    makeFile(inRoot("a/50%25 x.md")); // a literal "%" in the name on disk
    makeFile(inRoot("a/50% x.md"));
    makeFolder(inRoot("My Book"));
    const struct
    {
        QString target;
        QString base;
        const char *expected;
    } cases[] = {
        {inRoot("a/b/Doc.md"), inRoot("a/b"), "Doc.md"},
        {inRoot("a/b"), inRoot("a/b"), "./"},
        {inRoot("a/c/Doc.md"), inRoot("a/b"), "../c/Doc.md"},
        {inRoot("Top.md"), inRoot("a/b"), "../../Top.md"},
        {inRoot("a/b/Doc.md"), root_, "a/b/Doc.md"},
        {"tavelle://show/a/b/Doc.md", inRoot("a"), "b/Doc.md"},
        {"tavelle://a/b/Doc.md", inRoot("a"), "b/Doc.md"},
        {inRoot("a/My%20Doc.md"), inRoot("a/b"), "../My%20Doc.md"}, // stays encoded
        {inRoot("a/My Doc.md"), inRoot("a/b"), "../My Doc.md"},
        {inRoot("a/50%25 x.md"), inRoot("a/b"), "../50%25 x.md"}, // literal form exists
        {inRoot("My%20Book/Missing.md"), inRoot("My Book"), "Missing.md"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_makeRelativeToPath(c.target, c.base), c.expected)
            << c.target << " from " << c.base;
}

TEST(ItemPathScheme, PathFromURL)
{
    const Text cases[] = {
        {"tavelle://show/Book/Doc.md", "/Book/Doc.md"},
        {"tavelle://Book/Doc.md", "/Book/Doc.md"},
        {"tavelle://show", "/"},
        {"/Book/Doc.md", "/Book/Doc.md"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_pathFromTavelleURLScheme(c.input), c.expected) << c.input;
}

TEST(ItemPathScheme, Actions)
{
    const Flag cases[] = {
        {"tavelle://grab?x=1", true},
        {"TAVELLE://Search/x", true},
        {"tavelle://addnewdocument", true}, // begins with an action
        {"tavelle://show/Book", false},
        {"tavelle://", false},
        {"http://grab", false},
        {"x-tavelle://grab", false},
        {"", false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_isTavelleURLSchemeAction(c.path), c.expected) << c.path;
}

TEST(ItemPathEscaping, Wildcards)
{
    const Text cases[] = {
        {"abc", "abc"},
        {"a*b?", "a\\*b\\?"},
        {"\xc3\x9c"
         "1 x",
         "\xc3\x9c\\1\\ x"},
        {"", ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(tl_stringByEscapingWildcards(QString::fromUtf8(c.input)),
                  QString::fromUtf8(c.expected))
            << c.input;
}

TEST_F(LibraryTest, CustomPlainTextExtensions)
{
    EXPECT_TRUE(customPlaintextExtensions().isEmpty());
    makeFile(inRoot("TLResources/Misc/CustomPlainTextExtensions.txt"), "  tex2 \n\n sty\tfoo  \n");
    EXPECT_EQ(customPlaintextExtensions(), (QSet<QString>{"tex2", "sty", "foo"}));
}

TEST_F(LibraryTest, ListOfBooks)
{
    const QString shelf = makeFolder(inRoot("Shelf"));
    for (const char *name : {"Book 10", "Book 2", "alpha", "Pack.rtfd", "TLImages", ".git", "Prot"})
        makeFolder(shelf + "/" + name);
    makeFile(shelf + "/Doc.md");
    writePlist(shelf + "/Notes.plist", QVariantMap{});
    ASSERT_TRUE(QFile::link(shelf + "/Gone", shelf + "/Dangling"));
    writePlist(shelf + "/Prot/BookProperties.plist",
               QVariantMap{{keys::property::IsProtected, true}});

    QStringList expected;
    for (const char *name : {"alpha", "Book 2", "Book 10", "Dangling", "Pack.rtfd", "Prot"})
        expected << shelf + "/" + name;
    EXPECT_EQ(tl_listOfBooksAtPath(shelf), expected);

    setSetting(keys::setting::ProtectionEnabled, true);
    expected.removeLast();
    EXPECT_EQ(tl_listOfBooksAtPath(shelf), expected);

    EXPECT_TRUE(tl_listOfBooksAtPath(inRoot("Missing")).isEmpty());
}

TEST_F(LibraryTest, ReadingOrderWalk)
{
    namespace P = keys::property;
    const QString walk = makeFolder(inRoot("Walk"));
    for (const char *name : {"a.md", "b.md", "c.md", "X/x1.md", "X/x2.md", "Y/y.md",
                             "Pack.rtfd/inner.txt", "TLImages/pic.png", ".hidden.md"})
        makeFile(walk + "/" + name);
    writePlist(walk + "/a.md.plist", QVariantMap{});
    const struct
    {
        const char *name;
        QVariantMap properties;
        QStringList expected;
    } cases[] = {
        {"by title", {}, {"a.md", "b.md", "c.md", "Pack.rtfd", "X/x1.md", "X/x2.md", "Y/y.md"}},
        {"custom order",
         {{P::SortOrderForNotes, "custom"},
          {P::Notes, QStringList{"c.md", "a.md", "b.md", "Pack.rtfd"}},
          {P::Books, QStringList{"Y", "X"}}},
         {"c.md", "a.md", "b.md", "Pack.rtfd", "Y/y.md", "X/x1.md", "X/x2.md"}},
        {"title descending, only in this book",
         {{P::SortOrderForNotes, "title"}, {P::SortNotesDescending, "YES"}},
         {"Pack.rtfd", "c.md", "b.md", "a.md", "Y/y.md", "X/x1.md", "X/x2.md"}},
        {"descending needs YES",
         {{P::SortOrderForNotes, "title"}, {P::SortNotesDescending, "yes"}},
         {"a.md", "b.md", "c.md", "Pack.rtfd", "X/x1.md", "X/x2.md", "Y/y.md"}},
        {"pins on top",
         {{P::Pinned, QStringList{"c.md", "Y"}}},
         {"c.md", "a.md", "b.md", "Pack.rtfd", "Y/y.md", "X/x1.md", "X/x2.md"}},
    };
    for (const auto &c : cases) {
        writePlist(walk + "/BookProperties.plist", c.properties);
        QStringList expected;
        for (const QString &name : c.expected)
            expected << walk + "/" + name;
        EXPECT_EQ(tl_sortedListOfAllItemsInHierarchy(walk), expected) << c.name;
    }
}

} // namespace
} // namespace tl::store
