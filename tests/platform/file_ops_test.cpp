#include "platform/attributes.h"
#include "platform/file_ops.h"
#include "platform_test_support.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace tl::platform {
namespace {

using tltest::describeTree;
using tltest::freshFolder;
using tltest::readFile;
using tltest::writeFile;

mode_t modeOf(const QString &path)
{
    struct stat st;
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0 ? st.st_mode & 07777 : 0;
}

ino_t inodeOf(const QString &path)
{
    struct stat st;
    return ::lstat(QFile::encodeName(path).constData(), &st) == 0 ? st.st_ino : 0;
}

QStringList namesIn(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                  QDir::NoDotAndDotDot);
}

mode_t currentUmask()
{
    const mode_t mask = ::umask(022);
    ::umask(mask);
    return mask;
}

// A small library-like tree: files with attributes and odd modes, a nested
// folder, a read-only folder, a symbolic link and an empty folder.
void buildTree(const QString &root, bool withAttributes)
{
    writeFile(root + "/Report.md", "# Report\n");
    writeFile(root + "/Report.md.plist", "<plist/>");
    writeFile(root + "/Book/Chapter.txt", "chapter one");
    writeFile(root + "/Locked/Old.txt", "old");
    QDir().mkpath(root + "/Empty");
    QFile::link("Report.md", root + "/Link to report");
    ::chmod(QFile::encodeName(root + "/Report.md").constData(), 0640);
    ::chmod(QFile::encodeName(root + "/Locked").constData(), 0555);
    if (withAttributes) {
        writeAttribute(root + "/Report.md", attributeName("CharacterOffset"),
                       QByteArray("\0\1", 2));
        writeAttribute(root + "/Book", kLabelAttribute, "3");
    }
    const QDateTime past = QDateTime::fromSecsSinceEpoch(978307200); // 2001-01-01
    for (const char *name : {"Report.md", "Book/Chapter.txt", "Book", "Locked", "Empty"})
        setModificationDate(root + "/" + name, past.addSecs(qstrlen(name)));
}

// Atomic writes --------------------------------------------------------------

struct AtomicCase
{
    const char *name;
    bool existing;
    mode_t mode;
    bool withAttributes;
};

void PrintTo(const AtomicCase &c, std::ostream *os)
{
    *os << c.name;
}

class AtomicWrite : public ::testing::TestWithParam<AtomicCase>
{
};

TEST_P(AtomicWrite, ReplacesContentKeepingModeAndAttributes)
{
    const AtomicCase &c = GetParam();
    if (c.withAttributes && !tltest::sandboxTakesUserAttributes())
        GTEST_SKIP() << "no user attributes here";
    const QString folder = freshFolder("atomic");
    const QString path = folder + "/Note.txt";
    if (c.existing) {
        writeFile(path, "old content that is longer than the new one");
        if (c.withAttributes) {
            ASSERT_TRUE(writeAttribute(path, attributeName("CurrentPDFPage"), "12"));
            ASSERT_TRUE(writeAttribute(path, "other.tool", QByteArray("\0x", 2)));
        }
        ::chmod(QFile::encodeName(path).constData(), c.mode);
    }
    const ino_t oldInode = inodeOf(path);
    const QDateTime before = QDateTime::currentDateTime().addSecs(-2);

    ASSERT_TRUE(writeFileAtomically(path, "new"));

    EXPECT_EQ(readFile(path), "new");
    EXPECT_EQ(modeOf(path), c.existing ? c.mode : (0666 & ~currentUmask()));
    if (c.existing) {
        EXPECT_NE(inodeOf(path), oldInode) << "not replaced by a rename";
    }
    if (c.withAttributes) {
        const QMap<QString, QByteArray> expected = {{"com.tavelle.app.CurrentPDFPage#S", "12"},
                                                    {"other.tool", QByteArray("\0x", 2)}};
        EXPECT_EQ(attributes(path), expected);
    }
    EXPECT_GE(modificationDate(path).value(), before);
    EXPECT_EQ(namesIn(folder), QStringList{"Note.txt"}) << "temporary file left behind";
}

INSTANTIATE_TEST_SUITE_P(Cases, AtomicWrite,
                         ::testing::Values(AtomicCase{"NewFile", false, 0, false},
                                           AtomicCase{"PrivateFile", true, 0600, false},
                                           AtomicCase{"ExecutableWithAttributes", true, 0755, true},
                                           AtomicCase{"ReadOnlyWithAttributes", true, 0444, true}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(FileOps, AtomicWriteMakesMissingParentFolders)
{
    const QString path = freshFolder("atomic-parents") + "/a/b/Note.txt";
    ASSERT_TRUE(writeFileAtomically(path, "text"));
    EXPECT_EQ(readFile(path), "text");
}

TEST(FileOps, AtomicWriteThroughALinkKeepsTheLink)
{
    const QString folder = freshFolder("atomic-link");
    writeFile(folder + "/Real.txt", "old");
    ASSERT_TRUE(QFile::link("Real.txt", folder + "/Alias.txt"));
    ASSERT_TRUE(writeFileAtomically(folder + "/Alias.txt", "new"));
    EXPECT_TRUE(QFileInfo(folder + "/Alias.txt").isSymLink());
    EXPECT_EQ(readFile(folder + "/Real.txt"), "new");
}

TEST(FileOps, FailedAtomicWriteLeavesTheOriginalAlone)
{
    const bool attributesHere = tltest::sandboxTakesUserAttributes();
    const QString folder = freshFolder("atomic-fail");
    const QString path = folder + "/Note.txt";
    writeFile(path, "original");
    if (attributesHere)
        writeAttribute(path, "com.tavelle.app.Offset", "7");
    const auto before = describeTree(path);
    bool written = true;
    {
        tltest::FileSizeLimit limit(16);
        written = writeFileAtomically(path, QByteArray(4096, 'x'));
    }
    EXPECT_FALSE(written);
    EXPECT_EQ(describeTree(path), before);
    EXPECT_EQ(namesIn(folder), QStringList{"Note.txt"}) << "temporary file left behind";
}

TEST(FileOps, AtomicWriteIntoReadOnlyFolderFailsCleanly)
{
    const QString folder = freshFolder("atomic-readonly");
    writeFile(folder + "/Note.txt", "original");
    {
        tltest::ReadOnlyFolder locked(folder);
        if (!locked.held())
            GTEST_SKIP() << "this file system cannot hold root back";
        EXPECT_FALSE(writeFileAtomically(folder + "/Note.txt", "new"));
    }
    EXPECT_EQ(readFile(folder + "/Note.txt"), "original");
    EXPECT_EQ(namesIn(folder), QStringList{"Note.txt"});
}

TEST(FileOps, AtomicWriteRefusesAFolder)
{
    const QString folder = freshFolder("atomic-folder");
    QDir().mkpath(folder + "/Book");
    EXPECT_FALSE(writeFileAtomically(folder + "/Book", "x"));
    EXPECT_TRUE(QFileInfo(folder + "/Book").isDir());
    EXPECT_EQ(namesIn(folder), QStringList{"Book"});
}

// In-place writes and reads -------------------------------------------------

TEST(FileOps, InPlaceWriteKeepsTheFileItself)
{
    const QString path = freshFolder("inplace") + "/Note.txt";
    writeFile(path, "a long old content");
    const ino_t inode = inodeOf(path);
    ASSERT_TRUE(writeFileInPlace(path, "short"));
    EXPECT_EQ(readFile(path), "short");
    EXPECT_EQ(inodeOf(path), inode);

    const QString nested = freshFolder("inplace") + "/x/y/New.txt";
    ASSERT_TRUE(writeFileInPlace(nested, "made"));
    EXPECT_EQ(readFile(nested), "made");
}

TEST(FileOps, ReadFile)
{
    const QString folder = freshFolder("read");
    writeFile(folder + "/Empty.txt", "");
    writeFile(folder + "/Binary", QByteArray("a\0b", 3));
    EXPECT_EQ(platform::readFile(folder + "/Empty.txt"), QByteArray());
    EXPECT_EQ(platform::readFile(folder + "/Binary"), QByteArray("a\0b", 3));
    EXPECT_EQ(platform::readFile(folder + "/Missing"), std::nullopt);
    EXPECT_EQ(platform::readFile(folder), std::nullopt);
}

// Copies and moves ----------------------------------------------------------

TEST(FileOps, CopyKeepsEverything)
{
    const bool attributesHere = tltest::sandboxTakesUserAttributes();
    const QString source = freshFolder("copy-source") + "/Library";
    QDir().mkpath(source);
    buildTree(source, attributesHere);
    const auto before = describeTree(source);
    const QString target = freshFolder("copy-target") + "/Library copy";

    ASSERT_TRUE(copyItem(source, target));

    EXPECT_EQ(describeTree(target), before);
    EXPECT_EQ(describeTree(source), before);
}

TEST(FileOps, CopyAndMoveRefuseAnExistingDestinationOrAMissingSource)
{
    for (const auto operation : {copyItem, moveItem}) {
        const QString folder = freshFolder("refuse");
        writeFile(folder + "/A.txt", "a");
        writeFile(folder + "/B.txt", "b");
        EXPECT_FALSE(operation(folder + "/A.txt", folder + "/B.txt"));
        EXPECT_EQ(readFile(folder + "/A.txt"), "a");
        EXPECT_EQ(readFile(folder + "/B.txt"), "b");
        EXPECT_FALSE(operation(folder, folder + "/Inside"));
        EXPECT_FALSE(QFileInfo::exists(folder + "/Inside"));
        EXPECT_FALSE(operation(folder + "/Missing", folder + "/C.txt"));
    }
}

TEST(FileOps, FailedCopyLeavesNoPartialCopy)
{
    const QString source = freshFolder("copy-fail") + "/Book";
    buildTree(source, false);
    writeFile(source + "/Zlarge.bin", QByteArray(64 * 1024, 'z'));
    const auto before = describeTree(source);
    const QString target = freshFolder("copy-fail-target") + "/Book";
    bool copied = true;
    {
        tltest::FileSizeLimit limit(1024);
        copied = copyItem(source, target);
    }
    EXPECT_FALSE(copied);
    EXPECT_FALSE(QFileInfo::exists(target));
    EXPECT_EQ(describeTree(source), before);
}

TEST(FileOps, MoveWithinADevice)
{
    const QString folder = freshFolder("move");
    buildTree(folder + "/Book", false);
    const auto before = describeTree(folder + "/Book");
    ASSERT_TRUE(moveItem(folder + "/Book", folder + "/Renamed"));
    EXPECT_FALSE(QFileInfo::exists(folder + "/Book"));
    EXPECT_EQ(describeTree(folder + "/Renamed"), before);
}

TEST(FileOps, MoveAcrossDevicesCopiesThenRemoves)
{
    tltest::OtherDeviceFolder other;
    if (other.path().isEmpty())
        GTEST_SKIP() << "no second device";
    const bool attributesHere = tltest::sandboxTakesUserAttributes();
    for (const char *item : {"Book", "Book/Report.md", "Book/Link to report"}) {
        SCOPED_TRACE(item);
        const QString source = freshFolder("move-device") + "/Book";
        buildTree(source, attributesHere);
        const QString from = source + QString(item).mid(4);
        const auto before = describeTree(from);
        const QString to = other.path() + "/" + QFileInfo(from).fileName();

        ASSERT_TRUE(moveItem(from, to));
        EXPECT_FALSE(QFileInfo(from).exists() || QFileInfo(from).isSymLink());
        EXPECT_EQ(describeTree(to), before);
        // And back again, onto the first device.
        ASSERT_TRUE(moveItem(to, from));
        EXPECT_EQ(describeTree(from), before);
    }
}

TEST(FileOps, FailedMoveAcrossDevicesKeepsTheSource)
{
    tltest::OtherDeviceFolder other;
    if (other.path().isEmpty())
        GTEST_SKIP() << "no second device";
    const QString source = freshFolder("move-device-fail") + "/Book";
    buildTree(source, false);
    writeFile(source + "/Zlarge.bin", QByteArray(64 * 1024, 'z'));
    const auto before = describeTree(source);
    bool moved = true;
    {
        tltest::FileSizeLimit limit(1024);
        moved = moveItem(source, other.path() + "/Book");
    }
    EXPECT_FALSE(moved);
    EXPECT_EQ(describeTree(source), before);
    EXPECT_EQ(namesIn(other.path()), QStringList{});
}

// Removal and folders ------------------------------------------------------

TEST(FileOps, RemoveDoesNotFollowLinks)
{
    const QString outside = freshFolder("remove-outside");
    writeFile(outside + "/Keep.txt", "keep");
    const QString folder = freshFolder("remove");
    buildTree(folder + "/Book", false);
    ::chmod(QFile::encodeName(folder + "/Book/Locked").constData(), 0755);
    QFile::link(outside, folder + "/Book/Outside");

    ASSERT_TRUE(removeItem(folder + "/Book"));
    EXPECT_EQ(namesIn(folder), QStringList{});
    EXPECT_EQ(readFile(outside + "/Keep.txt"), "keep");
    EXPECT_FALSE(removeItem(folder + "/Book"));
}

TEST(FileOps, MakeFolder)
{
    const QString folder = freshFolder("mkdir");
    EXPECT_TRUE(makeFolder(folder + "/a/b/c"));
    EXPECT_TRUE(QFileInfo(folder + "/a/b/c").isDir());
    EXPECT_TRUE(makeFolder(folder + "/a/b/c"));
    writeFile(folder + "/File", "x");
    EXPECT_FALSE(makeFolder(folder + "/File"));
    EXPECT_FALSE(makeFolder(folder + "/File/Below"));
}

// Dates ---------------------------------------------------------------------

TEST(FileOps, ModificationDateRoundTrip)
{
    const QString path = freshFolder("dates") + "/Note.txt";
    writeFile(path, "x");
    const QDateTime dates[] = {QDateTime::fromMSecsSinceEpoch(978307200123),
                               QDateTime::fromMSecsSinceEpoch(-1500), // before 1970
                               QDateTime::currentDateTime().addDays(400)};
    for (const QDateTime &date : dates) {
        ASSERT_TRUE(setModificationDate(path, date));
        EXPECT_EQ(modificationDate(path), date);
    }
    EXPECT_FALSE(setModificationDate(path + ".missing", dates[0]));
    EXPECT_FALSE(setModificationDate(path, QDateTime()));
    EXPECT_EQ(modificationDate(path + ".missing"), std::nullopt);
}

TEST(FileOps, CreationDateIsTheBirthTime)
{
    const QDateTime before = QDateTime::currentDateTime().addSecs(-2);
    const QString path = freshFolder("birth") + "/Note.txt";
    writeFile(path, "x");
    const std::optional<QDateTime> born = creationDate(path);
    if (!born)
        GTEST_SKIP() << "this file system records no birth time";
    EXPECT_GE(*born, before);
    // Changing the modification date must not move the birth time.
    setModificationDate(path, QDateTime::fromSecsSinceEpoch(978307200));
    EXPECT_EQ(creationDate(path), born);
    EXPECT_EQ(creationDate(path + ".missing"), std::nullopt);
}

} // namespace
} // namespace tl::platform
