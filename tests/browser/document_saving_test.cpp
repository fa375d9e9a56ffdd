#include "browser/browser_keys.h"
#include "document_view_test_support.h"
#include "foundation/events.h"
#include "foundation/path_string.h"
#include "store/keys.h"
#include "store/properties.h"

namespace {

namespace S = tl::keys::setting;

using DocumentSaving = tltest::DocumentViewTest;

TEST_F(DocumentSaving, ADocumentOnlyLookedAtIsNeverWritten)
{
    const QString path = document("Look.txt", "Look");
    show(path);
    view->writeTextToFile();
    view->selectNewDocument(document("Other.txt", "Other"));
    EXPECT_EQ(dateOf(path), oldDate());
}

TEST_F(DocumentSaving, TheSaveFollowsTheLastKeyAfterTheDelayOfItsLine)
{
    struct Case
    {
        bool caretLineHasText;
        double delay;
    };
    for (const Case c : {Case{true, 0.6}, Case{false, 0.5}}) {
        SCOPED_TRACE(c.delay);
        const QString path = document("Timed.txt", "Timed");
        show(path);
        type("Timed\na", c.caretLineHasText);
        advance(c.delay - 0.05);
        view->textDidChange("Timed\nab", c.caretLineHasText);
        advance(c.delay - 0.05);
        EXPECT_EQ(tltest::readFile(path), "Timed") << "each key restarts the timer";
        EXPECT_TRUE(view->windowEdited());
        advance(0.1);
        EXPECT_EQ(tltest::readFile(path), "Timed\nab");
        EXPECT_FALSE(view->windowEdited());
    }
}

TEST_F(DocumentSaving, WithoutAutosaveOnlyTheSaveCommandWrites)
{
    setSetting(S::NoAutosaveText, true);
    const QString path = document("Manual.txt", "Manual");
    view->startObserving();
    show(path);
    type("Manual\nmore");
    EXPECT_FALSE(tl::Scheduler::main().isPending(view->saveTimerKey()));
    advance(10);
    EXPECT_EQ(tltest::readFile(path), "Manual");
    tl::NotificationCenter::defaultCenter().post(tl::events::SaveCurrentDocument);
    EXPECT_EQ(tltest::readFile(path), "Manual\nmore");
}

TEST_F(DocumentSaving, AnIdenticalSaveNeitherWritesNorChangesTheDate)
{
    const QString path = document("Same.txt", "Same");
    show(path);
    type("Same!");
    view->textDidChange("Same", true);
    tltest::EventRecorder posted;
    view->writeTextToFile();
    EXPECT_EQ(dateOf(path), oldDate());
    EXPECT_FALSE(view->windowEdited());
    EXPECT_TRUE(posted.events().isEmpty());

    view->forceSave = true;
    view->writeTextToFile();
    EXPECT_NE(dateOf(path), oldDate()) << "a forced save writes all the same";
}

TEST_F(DocumentSaving, APlainSaveTellsTheListAndTakesTheNewHash)
{
    const QString path = document("Plain.txt", "Not the title");
    show(path);
    type("Plain text");
    tltest::EventRecorder posted;
    view->writeTextToFile();
    EXPECT_EQ(posted.named(tl::events::FileModifiedOnDisk),
              QList<tltest::PostedEvent>({{tl::events::FileModifiedOnDisk, {{"path", path}}}}));
    EXPECT_EQ(view->md5hash, "F39A0720A929097AFA9DB4505CDF9669") << "MD5 of \"Plain text\"";
    EXPECT_EQ(view->modDateOfPresentedDocument, dateOf(path));
}

TEST_F(DocumentSaving, AChangedFirstLineRenamesTheDocument)
{
    const QString path = document("Hello.txt", "Hello\nbody");
    show(path);
    ASSERT_TRUE(view->titleIsFirstLineOfText);
    QSignalSpy renamed(view.get(), &tl::browser::TLKSDocumentViewController::pathChanged);
    type("World\nbody");
    tltest::EventRecorder posted;
    view->writeTextToFile();
    EXPECT_EQ(namesInBook(), QStringList{"World.txt"});
    EXPECT_EQ(view->path, book + "/World.txt");
    EXPECT_EQ(tltest::readFile(book + "/World.txt"), "World\nbody");
    ASSERT_FALSE(renamed.isEmpty());
    EXPECT_EQ(renamed.last().at(0).toString(), book + "/World.txt");
    bool silent = false;
    for (const auto &[name, move] : posted.named(tl::events::FileMoved))
        silent |= move.value("originalPath") == path && move.value("newPath") == view->path &&
                  move.value("silentReload") == "1";
    EXPECT_TRUE(silent);
}

TEST_F(DocumentSaving, AChangeOfCaseAloneRenamesThroughAnInterimName)
{
    const QString path = document("hello.txt", "hello");
    show(path);
    type("Hello");
    tltest::EventRecorder posted;
    view->writeTextToFile();
    EXPECT_EQ(namesInBook(), QStringList{"Hello.txt"});
    EXPECT_EQ(tltest::readFile(book + "/Hello.txt"), "Hello");
    QStringList targets;
    for (const auto &[name, move] : posted.named(tl::events::FileMoved))
        targets << tl::path::lastComponent(move.value("newPath").toString());
    EXPECT_TRUE(targets.contains("._Hello.txt")) << targets.join(", ").toStdString();
}

TEST_F(DocumentSaving, DeletingAllTextOfAFirstLineDocumentDeletesIt)
{
    const QString path = document("Gone.txt", "Gone\nsoon");
    show(path);
    type("");
    advance(0.6);
    EXPECT_FALSE(QFileInfo::exists(path));
    EXPECT_TRUE(view->path.isEmpty());
    EXPECT_TRUE(namesInBook().isEmpty());
}

TEST_F(DocumentSaving, ADocumentWhoseNameIsNotItsFirstLineKeepsItsName)
{
    const QString path = document("Keep.txt", "Something else");
    show(path);
    type("");
    view->writeTextToFile();
    EXPECT_TRUE(QFileInfo::exists(path));
    EXPECT_EQ(tltest::readFile(path), "");
}

TEST_F(DocumentSaving, ANewDocumentIsNamedFromItsFirstLine)
{
    struct Case
    {
        const char *defaultType;
        const char *extension;
        const char *text;
        const char *name;
    };
    const Case cases[] = {
        {"", "", "Shopping list\nmilk", "Shopping list.txt"},
        {"md", "", "Plans\nmore", "Plans.md"},
        {"txt", "", "Ideas", "Ideas.txt"},
        {"", "fountain", "Scene", "Scene.fountain"},
        {"", "", "Shopping list\nagain", "Shopping list 1.txt"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        setSetting(S::DefaultDocumentType, QLatin1String(c.defaultType));
        view->newDocumentInBook(book, QLatin1String(c.extension));
        EXPECT_EQ(view->viewThatIsVisible, 1);
        tltest::EventRecorder posted;
        type(QLatin1String(c.text));
        advance(0.6);
        EXPECT_EQ(view->path, book + "/" + c.name);
        EXPECT_EQ(tltest::readFile(view->path), QByteArray(c.text));
        EXPECT_TRUE(view->titleIsFirstLineOfText);
        EXPECT_EQ(
            posted.named(tl::events::NewFileCreated),
            QList<tltest::PostedEvent>({{tl::events::NewFileCreated, {{"path", view->path}}}}));
        EXPECT_TRUE(tl::store::tl_propertyForKey(view->path, "CreationDate").isValid());
    }
}

TEST_F(DocumentSaving, ANewDocumentWithoutATitleIsNamedByTheTime)
{
    view->newDocumentInBook(book);
    type("  \n ");
    view->writeTextToFile();
    const QString expected = clock->now().toLocalTime().toString("yyyy-MM-dd HH.mm.ss") + ".txt";
    EXPECT_EQ(view->path, book + "/" + expected);
    EXPECT_TRUE(QFileInfo::exists(view->path));
}

TEST_F(DocumentSaving, ANewDocumentLeftEmptyIsNeverWritten)
{
    view->newDocumentInBook(book);
    type("a");
    view->textDidChange("", true);
    view->writeTextToFile();
    EXPECT_TRUE(namesInBook().isEmpty());
}

TEST_F(DocumentSaving, ALatinOneTextWithANewCharacterBecomesUTF8WithoutAnAlert)
{
    const QString path = document("Cafe.txt", "caf\xe9\r\n");
    show(path);
    ASSERT_EQ(view->stringEncoding, tl::store::TextEncoding::WindowsLatin1);
    ASSERT_EQ(view->plainText, QString::fromUtf8("café\r\n"));
    type(QString::fromUtf8("café ☃\r\n"));
    view->writeTextToFile();
    EXPECT_EQ(tltest::readFile(path), QByteArray("caf\xc3\xa9 \xe2\x98\x83\r\n"));
    EXPECT_EQ(view->stringEncoding, tl::store::TextEncoding::UTF8);
    EXPECT_EQ(view->path, path);
    EXPECT_TRUE(alerts->shownAlerts().isEmpty());
}

TEST_F(DocumentSaving, ALatinOneTextKeepsItsEncodingWhileItFits)
{
    const QString path = document("Latin.txt", "caf\xe9\r\n");
    show(path);
    type(QString::fromUtf8("caf\u00e9!\r\n"));
    view->writeTextToFile();
    EXPECT_EQ(tltest::readFile(path), QByteArray("caf\xe9!\r\n"));
}

TEST_F(DocumentSaving, AFailedWriteShowsTheSavingErrorAndKeepsTheEdits)
{
    const QString path = document("Stuck.txt", "Not the title");
    show(path);
    type("Stuck and more");
    // Something else took the document's place: the write cannot succeed.
    QFile::remove(path);
    makeFolder(path);
    view->writeTextToFile();
    ASSERT_EQ(alerts->shownAlerts().size(), 1);
    EXPECT_EQ(alerts->shownAlerts()[0].message, "Saving Error");
    EXPECT_EQ(alerts->shownAlerts()[0].buttons, QStringList{"OK"});
    EXPECT_TRUE(view->windowEdited());
    EXPECT_EQ(view->plainText, "Stuck and more");
}

TEST_F(DocumentSaving, RenameOnCommandRefusesATakenTitle)
{
    const QString path = document("Draft.txt", "Final");
    document("Final.txt", "other");
    show(path);
    EXPECT_FALSE(view->tl_renameToFirstLineOfText());
    ASSERT_EQ(alerts->shownAlerts().size(), 1);
    EXPECT_EQ(alerts->shownAlerts()[0].message, "Cannot Rename to First Line of Text");
    EXPECT_EQ(alerts->shownAlerts()[0].informativeText, "The title \"Final\" is already taken.");

    QFile::remove(book + "/Final.txt");
    EXPECT_TRUE(view->tl_renameToFirstLineOfText());
    EXPECT_EQ(view->path, book + "/Final.txt");
    EXPECT_TRUE(view->titleIsFirstLineOfText);
}

TEST_F(DocumentSaving, AnHTMLDocumentTypedAsSourceKeepsItsEnvelope)
{
    const QString path = document("Page.html", "<p>x</p>");
    view->path = path;
    view->presentingToggledView = true;
    view->showDocument();
    ASSERT_EQ(view->viewThatIsVisible, 1);
    type("<p>y</p>");
    view->writeTextToFile();
    const QString saved = QString::fromUtf8(tltest::readFile(path));
    EXPECT_TRUE(saved.contains("<!-- Generator: Tavelle ")) << saved;
    EXPECT_TRUE(saved.contains("<p>y</p>"));
}

TEST_F(DocumentSaving, TheFormattedViewSavesItsCleanedInnerHTML)
{
    const QString path = document("Page.html", "<html><head><!-- Generator: Tavelle for Mac 1.0 -->"
                                               "</head><body><p>x</p></body></html>");
    show(path);
    ASSERT_TRUE(view->formattedPage.editable);
    ASSERT_TRUE(view->formattedShouldBeginEditing("<p>x</p>"));
    view->formattedTextDidChange("<p>y</p><ul></ul><div class=\"a\"></div>");
    advance(0.6);
    const QString saved = QString::fromUtf8(tltest::readFile(path));
    EXPECT_TRUE(saved.contains("<p>y</p>")) << saved;
    EXPECT_FALSE(saved.contains("<ul></ul>"));
    EXPECT_FALSE(saved.contains("<div class=\"a\"></div>"));
}

TEST_F(DocumentSaving, AFormattedViewThatNavigatedAwayIsNotSaved)
{
    const QString path = document("Page.html", "<p>x</p>");
    show(path);
    ASSERT_TRUE(view->formattedShouldBeginEditing("<p>x</p>"));
    view->formattedTextDidChange("<p>changed</p>");
    view->setFormattedFrameURL("https://example.org/");
    view->writeTextToFile();
    EXPECT_EQ(tltest::readFile(path), "<p>x</p>");
}

TEST_F(DocumentSaving, AReadOnlyFormattedPageIsNeverSaved)
{
    const QString path = document("Pic.png", "png");
    show(path);
    EXPECT_FALSE(view->formattedShouldBeginEditing("<img>"));
    view->md5hash = "X";
    view->writeTextToFile();
    EXPECT_EQ(tltest::readFile(path), "png");
}

} // namespace
