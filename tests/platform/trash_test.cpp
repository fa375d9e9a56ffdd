#include "platform/attributes.h"
#include "platform/file_ops.h"
#include "platform/folders.h"
#include "platform/trash.h"
#include "platform_test_support.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace tl::platform {
namespace {

using tltest::describeTree;
using tltest::freshFolder;
using tltest::writeFile;

// The info file of a trashed item, "[Trash Info]" lines as written.
QStringList infoLines(const QString &trashed)
{
    const QString files = QFileInfo(trashed).absolutePath();
    const QString info =
        QFileInfo(files).absolutePath() + "/info/" + QFileInfo(trashed).fileName() + ".trashinfo";
    const QByteArray text = tltest::readFile(info);
    return text.isEmpty() ? QStringList() : QString::fromUtf8(text).split('\n', Qt::SkipEmptyParts);
}

bool existsAt(const QString &path)
{
    return QFileInfo(path).exists() || QFileInfo(path).isSymLink();
}

void expectDeletionDate(const QString &line, const QDateTime &before, const QDateTime &after)
{
    ASSERT_TRUE(line.startsWith("DeletionDate=")) << line.toStdString();
    const QString text = line.mid(13);
    EXPECT_TRUE(
        QRegularExpression("^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d$").match(text).hasMatch())
        << text.toStdString();
    const QDateTime date = QDateTime::fromString(text, Qt::ISODate);
    EXPECT_GE(date, before.addMSecs(-before.time().msec()));
    EXPECT_LE(date, after);
}

TEST(Trash, RoundTripWithTheInfoFile)
{
    const QString folder = freshFolder("trash round trip");
    const QString path = folder + "/Report 100% \u00e9.md";
    writeFile(path, "report");
    const QDateTime before = QDateTime::currentDateTime();

    const std::optional<QString> trashed = trashItem(path);
    const QDateTime after = QDateTime::currentDateTime();

    ASSERT_TRUE(trashed);
    EXPECT_EQ(*trashed, trashFilesFolder() + "/Report 100% \u00e9.md");
    EXPECT_EQ(trashFilesFolder(), dataHomeFolder() + "/Trash/files");
    EXPECT_FALSE(existsAt(path));
    EXPECT_EQ(tltest::readFile(*trashed), "report");
    const QStringList lines = infoLines(*trashed);
    ASSERT_EQ(lines.size(), 3) << lines.join("|").toStdString();
    EXPECT_EQ(lines[0], "[Trash Info]");
    EXPECT_EQ(lines[1],
              "Path=" + QString::fromLatin1(QFile::encodeName(path).toPercentEncoding("/")));
    EXPECT_TRUE(lines[1].contains("Report%20100%25%20%C3%A9.md")) << lines[1].toStdString();
    expectDeletionDate(lines[2], before, after);

    ASSERT_TRUE(restoreItem(*trashed));
    EXPECT_EQ(tltest::readFile(path), "report");
    EXPECT_FALSE(existsAt(*trashed));
    EXPECT_TRUE(infoLines(*trashed).isEmpty()) << "info file left behind";
}

TEST(Trash, TakenNamesAreNumbered)
{
    QStringList originals, trashed;
    for (int i = 0; i < 3; ++i) {
        originals << freshFolder("trash same name") + "/Notes.txt";
        writeFile(originals.last(), QByteArray::number(i));
        const auto result = trashItem(originals.last());
        ASSERT_TRUE(result);
        trashed << *result;
    }
    EXPECT_EQ(QFileInfo(trashed[1]).fileName(), QFileInfo(trashed[0]).fileName() + ".2");
    EXPECT_EQ(QFileInfo(trashed[2]).fileName(), QFileInfo(trashed[0]).fileName() + ".3");
    // Each goes back to its own place, whatever order.
    for (int i : {1, 0, 2}) {
        ASSERT_TRUE(restoreItem(trashed[i]));
        EXPECT_EQ(tltest::readFile(originals[i]), QByteArray::number(i));
    }
}

TEST(Trash, FoldersKeepEverything)
{
    const QString book = freshFolder("trash book") + "/Book";
    writeFile(book + "/Chapter.md", "one");
    writeFile(book + "/Chapter.md.plist", "<plist/>");
    if (tltest::sandboxTakesUserAttributes())
        writeAttribute(book + "/Chapter.md", attributeName("CharacterOffset"), "42");
    const auto before = describeTree(book);

    const auto trashed = trashItem(book);
    ASSERT_TRUE(trashed);
    EXPECT_EQ(describeTree(*trashed), before);
    ASSERT_TRUE(restoreItem(*trashed));
    EXPECT_EQ(describeTree(book), before);
}

TEST(Trash, RestoreRefusesATakenPlace)
{
    const QString path = freshFolder("trash taken") + "/Note.txt";
    writeFile(path, "trashed");
    const auto trashed = trashItem(path);
    ASSERT_TRUE(trashed);
    writeFile(path, "new one");

    EXPECT_FALSE(restoreItem(*trashed));
    EXPECT_EQ(tltest::readFile(path), "new one");
    EXPECT_EQ(tltest::readFile(*trashed), "trashed");
    EXPECT_EQ(infoLines(*trashed).value(0), "[Trash Info]") << "info lost on a failed restore";
}

TEST(Trash, RestoreMakesMissingParents)
{
    const QString folder = freshFolder("trash parents");
    const QString path = folder + "/Book/Note.txt";
    writeFile(path, "x");
    const auto trashed = trashItem(path);
    ASSERT_TRUE(trashed);
    ASSERT_TRUE(removeItem(folder + "/Book"));
    ASSERT_TRUE(restoreItem(*trashed));
    EXPECT_EQ(tltest::readFile(path), "x");
}

TEST(Trash, NothingToTrashOrRestore)
{
    const QString folder = freshFolder("trash nothing");
    const QStringList infoBefore = QDir(dataHomeFolder() + "/Trash/info").entryList(QDir::Files);
    EXPECT_EQ(trashItem(folder + "/Missing.txt"), std::nullopt);
    EXPECT_EQ(trashItem(""), std::nullopt);
    EXPECT_EQ(QDir(dataHomeFolder() + "/Trash/info").entryList(QDir::Files), infoBefore);

    writeFile(folder + "/files/Loose.txt", "x");
    EXPECT_FALSE(restoreItem(folder + "/files/Loose.txt")) << "no info file";
    EXPECT_FALSE(restoreItem(folder + "/files/Missing.txt"));
    EXPECT_TRUE(existsAt(folder + "/files/Loose.txt"));
}

TEST(Trash, FailedMoveLeavesNoInfoFile)
{
    const QString folder = freshFolder("trash locked");
    writeFile(folder + "/Note.txt", "x");
    const QStringList infoBefore = QDir(dataHomeFolder() + "/Trash/info").entryList(QDir::Files);
    {
        tltest::ReadOnlyFolder locked(folder);
        if (!locked.held())
            GTEST_SKIP() << "this file system cannot hold root back";
        EXPECT_EQ(trashItem(folder + "/Note.txt"), std::nullopt);
    }
    EXPECT_EQ(tltest::readFile(folder + "/Note.txt"), "x");
    EXPECT_EQ(QDir(dataHomeFolder() + "/Trash/info").entryList(QDir::Files), infoBefore);
}

TEST(Trash, ItemsOnAnotherDeviceUseTheirOwnTrash)
{
    tltest::OtherDeviceFolder other;
    if (other.path().isEmpty())
        GTEST_SKIP() << "no second device";
    const QString mountTrash = "/dev/shm/.Trash-" + QString::number(::getuid());
    const bool hadMountTrash = existsAt(mountTrash);
    const QString path = other.path() + "/Note.txt";
    writeFile(path, "elsewhere");

    const auto trashed = trashItem(path);
    ASSERT_TRUE(trashed);
    EXPECT_FALSE(existsAt(path));
    // /dev/shm is writable (the folder above was made there), so its own trash
    // serves, and paths in it are relative to the mount.
    EXPECT_EQ(*trashed, mountTrash + "/files/Note.txt");
    EXPECT_EQ(infoLines(*trashed).value(1),
              "Path=" + QString(path).mid(QString("/dev/shm/").size()));
    ASSERT_TRUE(restoreItem(*trashed));
    EXPECT_EQ(tltest::readFile(path), "elsewhere");
    if (!hadMountTrash)
        QDir(mountTrash).removeRecursively();
}

} // namespace
} // namespace tl::platform
