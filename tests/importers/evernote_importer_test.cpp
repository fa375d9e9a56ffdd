#include "contexts/tag_database.h"
#include "importers/evernote_importer.h"
#include "importers/file_import.h"
#include "store/library_fixture.h"

#include <QDir>
#include <QFileInfo>
#include <QTimeZone>
#include <gtest/gtest.h>

namespace {

using tl::importers::TLKSEvernoteImporter;

// "hello" and "world" in base64, and the MD5 of "world".
const char kWorldHash[] = "7d793037a0760186574b0282f2f435e7";

const char kExport[] =
    "<?xml version=\"1.0\"?>\n<en-export>\n"
    "<note><title>Plan a/b</title><content><![CDATA[<en-note><en-todo checked=\"true\"/>done"
    "<en-todo/>open<en-media hash=\"5d41402abc4b2a76b9719d911017c592\" type=\"image/png\"/>"
    "<en-media type=\"audio/mpeg\" hash=\"7d793037a0760186574b0282f2f435e7\"></en-media>"
    "</en-note>]]></content>\n<created>20200102T030405Z</created>"
    "<updated>2021-02-03T04:05:06Z</updated><tag> work </tag>"
    "<note-attributes><source-url>https://x.org/a</source-url><author>Ann</author>"
    "</note-attributes>\n"
    "<resource><data>aGVs\nbG8=</data><mime>image/png</mime>"
    "<resource-attributes><file-name>my pic.png</file-name></resource-attributes></resource>\n"
    "<resource><data>d29ybGQ=</data><mime>audio/mpeg</mime></resource></note>\n"
    "<note><title>Plan a/b</title><content>&lt;en-note&gt;two&lt;/en-note&gt;</content></note>\n"
    "<note><title>Cut</title><content>";

class EvernoteImport : public tltest::LibraryTest
{
protected:
    QString run(const QByteArray &text, TLKSEvernoteImporter **out = nullptr)
    {
        const QString path = makeFile(inRoot("Book/notes.enex"), text);
        importer = std::make_unique<TLKSEvernoteImporter>(path);
        finished = importer->start();
        if (out)
            *out = importer.get();
        return inRoot("Book");
    }
    std::unique_ptr<TLKSEvernoteImporter> importer;
    bool finished = false;
};

TEST_F(EvernoteImport, NotesAndResourcesComeInUntilTheFileIsCut)
{
    const QString book = run(kExport);
    EXPECT_FALSE(finished);
    EXPECT_EQ(importer->noteCount(), 2);
    const QString first = book + "/Plan a-b.html";
    EXPECT_EQ(importer->notes(), QStringList({first, book + "/Plan a-b 1.html"}));
    const QString html = QString::fromUtf8(tltest::readFile(first));
    EXPECT_TRUE(html.contains(
        "<input type=\"checkbox\" class=\"tl_checkbox\" checked=\"\">done"
        "<input type=\"checkbox\" class=\"tl_checkbox\">open"
        "<a href=\"TLImages/my-pic.png\"><img src=\"TLImages/my-pic.png\"></a>"
        "<br/>&nbsp;<audio src=\"7d793037a0760186574b0282f2f435e7.mp3\" controls></audio>"
        "&nbsp;<br/>"))
        << html.toStdString();
    EXPECT_EQ(tltest::readFile(book + "/TLImages/my-pic.png"), "hello");
    EXPECT_EQ(tltest::readFile(book + "/TLImages/" + kWorldHash + ".mp3"), "world");
    EXPECT_EQ(readPlist(first + ".plist").value("URL").toString(), "https://x.org/a");
    EXPECT_EQ(readPlist(first + ".plist").value("author").toString(), "Ann");
    EXPECT_TRUE(readPlist(first + ".plist").value("Tags").toStringList().contains("work"));
    EXPECT_EQ(QFileInfo(first).lastModified().toUTC(),
              QDateTime(QDate(2021, 2, 3), QTime(4, 5, 6), QTimeZone::utc()));
    EXPECT_TRUE(QString::fromUtf8(tltest::readFile(book + "/Plan a-b 1.html")).contains("two"));
    EXPECT_FALSE(QFile::exists(book + "/Cut.html"));
}

// Every tag of a note stays on it and lists it, though none was known before.
TEST_F(EvernoteImport, ANoteKeepsAllItsTagsAndItsCreationDate)
{
    const QString book = run("<en-export><note><title>T</title><content>&lt;en-note/&gt;</content>"
                             "<created>20200102T030405Z</created><tag>alpha</tag><tag>beta</tag>"
                             "<tag>alpha</tag></note></en-export>");
    EXPECT_TRUE(finished);
    const QVariantMap properties = readPlist(book + "/T.html.plist");
    EXPECT_EQ(properties.value("Tags").toStringList(), QStringList({"alpha", "beta"}));
    EXPECT_EQ(properties.value("CreationDate").toDateTime(),
              QDateTime(QDate(2020, 1, 2), QTime(3, 4, 5), QTimeZone::utc()));
    for (const char *tag : {"alpha", "beta"})
        EXPECT_EQ(tl::contexts::tl_listOfAllItemsForTag(tag), QStringList{book + "/T.html"}) << tag;
}

// Stopped after the first note, the import keeps it and goes no further.
TEST_F(EvernoteImport, AStopKeepsTheNotesWritten)
{
    const QString path =
        makeFile(inRoot("Book/notes.enex"), "<en-export><note><title>One</title></note>"
                                            "<note><title>Two</title></note></en-export>");
    std::atomic_bool stop = false;
    const tl::importers::ImportedFile imported = tl::importers::tl_importIntoBook(
        path, inRoot("Book"), [&stop](const QString &) { stop = true; }, &stop);
    EXPECT_FALSE(imported.complete);
    EXPECT_EQ(imported.documents, QStringList{inRoot("Book/One.html")});
    EXPECT_FALSE(QFile::exists(inRoot("Book/Two.html")));
}

TEST_F(EvernoteImport, DatesInTheirThreeForms)
{
    const QDateTime expected(QDate(2020, 1, 2), QTime(3, 4, 5), QTimeZone::utc());
    for (const char *text :
         {"20200102T030405Z", "2020-01-02T03:04:05Z", "2020-01-02T03:04:05.0000Z"})
        EXPECT_EQ(tl::importers::dateFromEvernoteDate(text), expected) << text;
}

} // namespace
