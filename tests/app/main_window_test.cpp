// The paths a person takes through the window: open a library, pick a
// document, type, and see the save land; rename by the first line; drag a
// document into another book; paste and drop material on a book; import
// an export by the menu, by the link of its page and files by a drop on a
// book.
#include "action_registry.h"
#include "app_tests.h"
#include "browser/document_list_model.h"
#include "browser/outline_model.h"
#include "document/document_pane.h"
#include "document/formatted_view.h"
#include "document/plain_text_view.h"
#include "document_list_pane.h"
#include "foundation/clock.h"
#include "main_window.h"
#include "outline_pane.h"
#include "platform/alerts.h"
#include "platform/location_service.h"
#include "support/test_environment.h"
#include "window_fixture.h"

#include <QClipboard>
#include <QFileDialog>
#include <QFileInfo>
#include <QMimeData>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <QWebEnginePage>
#include <QWebEngineScript>
#include <QWebEngineView>
#include <memory>

namespace {

using tl::app::MainWindow;

// Two notes of the same title, the first with a tag.
const char kExport[] =
    "<en-export><note><title>Plan</title><content>&lt;en-note&gt;One&lt;/en-note&gt;</content>"
    "<tag>work</tag></note><note><title>Plan</title><content>&lt;en-note&gt;Two&lt;/en-note&gt;"
    "</content></note></en-export>";
using tl::browser::DocumentListModel;

class MainWindowTest : public QObject
{
    Q_OBJECT
    apptest::WindowFixture m_fixture;

    QString book(const QString &name) const { return m_fixture.item(name); }
    MainWindow *window() const { return &m_fixture.window(); }
    void openBook(const QString &path, const QString &row) { m_fixture.openBook(path, row); }
    void selectRow(const QString &path) { m_fixture.selectRow(path); }
    static void letSaveTimersRun() { apptest::WindowFixture::letTimersRun(); }

    // Picks the file in the next file dialog once it shows.
    static void answerFileDialog(const QString &file)
    {
        QTimer::singleShot(0, [file] {
            auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            if (!dialog)
                return answerFileDialog(file);
            dialog->selectFile(file);
            QMetaObject::invokeMethod(dialog, "accept");
        });
    }

private Q_SLOTS:
    void init()
    {
        QVERIFY(m_fixture.open(QStringLiteral("WindowLibrary"),
                               {{"Inbox/Note.txt", "Note\nThe first line names it.\n"},
                                {"Inbox/Other.txt", "Other\n"},
                                {"Archive/Old.txt", "Old\n"}}));
    }

    void cleanup() { m_fixture.close(); }

    void typingSavesAfterTheLastKey()
    {
        openBook(book("Inbox"), book("Inbox/Note.txt"));
        selectRow(book("Inbox/Note.txt"));
        tl::app::PlainTextView *editor = window()->documentPane()->plainTextView();
        QVERIFY(editor->isVisible());
        QCOMPARE(editor->toPlainText(), QStringLiteral("Note\nThe first line names it.\n"));

        editor->setFocus();
        editor->moveCursor(QTextCursor::End);
        QTest::keyClicks(editor, "More words.");
        // Nothing is written before the pause after the last key.
        QCOMPARE(tltest::readFile(book("Inbox/Note.txt")),
                 QByteArray("Note\nThe first line names it.\n"));
        letSaveTimersRun();
        QCOMPARE(tltest::readFile(book("Inbox/Note.txt")),
                 QByteArray("Note\nThe first line names it.\nMore words."));
    }

    void aNewFirstLineRenamesTheDocument()
    {
        openBook(book("Inbox"), book("Inbox/Note.txt"));
        selectRow(book("Inbox/Note.txt"));
        tl::app::PlainTextView *editor = window()->documentPane()->plainTextView();
        editor->setFocus();
        editor->moveCursor(QTextCursor::Start);
        editor->moveCursor(QTextCursor::EndOfLine);
        QTest::keyClicks(editor, "book");
        letSaveTimersRun();
        QTRY_VERIFY(QFileInfo::exists(book("Inbox/Notebook.txt")));
        QVERIFY(!QFileInfo::exists(book("Inbox/Note.txt")));
        QCOMPARE(window()->documentPane()->shownPath(), book("Inbox/Notebook.txt"));
        QTRY_VERIFY(window()->listModel().indexForPath(book("Inbox/Notebook.txt")).isValid());
    }

    // Drags the data onto the book's row in the outline and drops it there.
    void dropOnOutlineBook(const QString &path, QMimeData *data, Qt::DropAction action)
    {
        QTreeView *outline = window()->outlinePane()->view();
        const QModelIndex target =
            outline->model()
                ->match(outline->model()->index(1, 0), tl::browser::OutlineModel::PathRole, path, 1,
                        Qt::MatchExactly | Qt::MatchRecursive)
                .value(0);
        QVERIFY(target.isValid());
        outline->scrollTo(target);
        const QPoint at = outline->visualRect(target).center();
        QWidget *viewport = outline->viewport();
        QDragEnterEvent enter(at, action, data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &enter);
        QDragMoveEvent move(at, action, data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &move);
        QVERIFY(move.isAccepted());
        QDropEvent drop(at, action, data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(viewport, &drop);
    }

    void aDocumentDraggedOntoABookMovesThere()
    {
        openBook(book("Inbox"), book("Inbox/Other.txt"));
        // The drag as the list starts it, dropped on the book's row.
        const QModelIndex row = window()->listModel().indexForPath(book("Inbox/Other.txt"));
        std::unique_ptr<QMimeData> data(window()->listModel().mimeData({row}));
        QVERIFY(data && data->hasUrls());
        dropOnOutlineBook(book("Archive"), data.get(), Qt::MoveAction);

        QTRY_VERIFY(QFileInfo::exists(book("Archive/Other.txt")));
        QVERIFY(!QFileInfo::exists(book("Inbox/Other.txt")));
        QTRY_VERIFY(!window()->listModel().indexForPath(book("Inbox/Other.txt")).isValid());
    }

    void importBringsAnExportsNotesIntoTheShownBook()
    {
        const QString sources = tltest::makeTemporaryFolder(QStringLiteral("ImportSources"));
        QVERIFY(tltest::writeFile(sources + "/notes.enex", kExport));
        openBook(book("Inbox"), book("Inbox/Note.txt"));
        answerFileDialog(sources + "/notes.enex");
        window()->actions().action(tl::app::ActionId::Import)->trigger();

        QTRY_VERIFY(QFileInfo::exists(book("Inbox/Plan.html")));
        QVERIFY(QFileInfo::exists(book("Inbox/Plan 1.html")));
        QProgressDialog *sheet = nullptr;
        QTRY_VERIFY((sheet = window()->findChild<QProgressDialog *>()) &&
                    sheet->labelText().contains("2 notes imported."));
        QCOMPARE(sheet->windowTitle(), QStringLiteral("Import Finished"));
        QPointer<QProgressDialog> closing = sheet;
        QTest::mouseClick(sheet->findChild<QPushButton *>(), Qt::LeftButton);
        QTRY_VERIFY(!closing);
        QTRY_COMPARE(window()->documentPane()->shownPath(), book("Inbox/Plan.html"));
    }

    void theExportPagesLinkAsksForTheImport()
    {
        QVERIFY(tltest::writeFile(book("Archive/notes.enex"), kExport));
        openBook(book("Archive"), book("Archive/notes.enex"));
        selectRow(book("Archive/notes.enex"));
        tl::app::FormattedView *view = window()->documentPane()->formattedView();
        QWebEnginePage *page = view->findChild<QWebEngineView *>()->page();
        // The page's script listens once it has answered.
        QTRY_VERIFY_WITH_TIMEOUT(view->pageIsReady(), 20000);
        // One click in the page itself; answers may come after the test, so
        // the flag outlives it.
        const auto clicked = std::make_shared<bool>(false);
        const QString click = QStringLiteral(
            "(function () { var a = document.querySelector('a');"
            " if (window.clickedOnce || !a || document.title !== 'CannotLoadError') return false;"
            " window.clickedOnce = true; a.click(); return true; })()");
        const qsizetype shown = apptest::alerts().shownAlerts().size();
        apptest::alerts().pushAnswer(0);
        QTRY_VERIFY_WITH_TIMEOUT(
            [&] {
                if (!*clicked)
                    page->runJavaScript(
                        click, QWebEngineScript::ApplicationWorld,
                        [clicked](const QVariant &done) { *clicked |= done.toBool(); });
                return *clicked;
            }(),
            20000);
        QTRY_COMPARE(apptest::alerts().shownAlerts().size(), shown + 1);
        const tl::platform::Alert question = apptest::alerts().shownAlerts().last();
        QCOMPARE(question.message, QStringLiteral("Import Evernote Notes?"));
        QCOMPARE(
            question.informativeText,
            QStringLiteral("The notes contained in this file will be added to the book Archive"));
        QTRY_VERIFY(QFileInfo::exists(book("Archive/Plan 1.html")));
    }

    void filesDroppedOnABookAreImported()
    {
        const QString sources = tltest::makeTemporaryFolder(QStringLiteral("DropSources"));
        QVERIFY(tltest::writeFile(sources + "/notes.enex", kExport));
        QVERIFY(tltest::writeFile(sources + "/plan.opml", "<opml><body/></opml>"));
        QVERIFY(tltest::writeFile(sources + "/plain.txt", "Plain\n"));
        openBook(book("Inbox"), book("Inbox/Note.txt"));
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(sources + "/notes.enex"),
                      QUrl::fromLocalFile(sources + "/plan.opml"),
                      QUrl::fromLocalFile(sources + "/plain.txt")});
        dropOnOutlineBook(book("Archive"), &data, Qt::CopyAction);

        QTRY_VERIFY(QFileInfo::exists(book("Archive/Plan.html")));
        QTRY_VERIFY(QFileInfo::exists(book("Archive/plan.opml")));
        QVERIFY(QFileInfo::exists(book("Archive/plain.txt")));
        // The export's notes come in, never the export itself.
        QVERIFY(!QFileInfo::exists(book("Archive/notes.enex")));
    }

    void insertLocationPutsThePositionAtTheCaret()
    {
        // The desktop's service gives one fresh fix, good to five metres.
        class OneFix : public tl::platform::LocationService
        {
        public:
            bool start() override
            {
                QTimer::singleShot(0, this, [this] {
                    Q_EMIT positionUpdated({48.8584, 2.2945, 5, tl::clock().now()});
                });
                return true;
            }
            void stop() override {}
        };
        tl::platform::setLocationServiceFactory([] { return std::make_unique<OneFix>(); });
        openBook(book("Inbox"), book("Inbox/Note.txt"));
        selectRow(book("Inbox/Note.txt"));
        tl::app::PlainTextView *editor = window()->documentPane()->plainTextView();
        editor->moveCursor(QTextCursor::End);
        QAction *insert = window()->actions().action(tl::app::ActionId::InsertLocation);
        QVERIFY(insert->isEnabled());
        insert->trigger();
        // Plain text shows no picture.
        QTRY_VERIFY(editor->toPlainText().endsWith(
            QStringLiteral("Coordinates (5m): [48.858400°N 002.294500°E]"
                           "(https://maps.google.com/?ll=48.858400,2.294500)")));
        QVERIFY(editor->toPlainText().contains(QStringLiteral("\nTime: ")));
        QVERIFY(!QFileInfo::exists(book("Inbox/TLImages")));
        tl::platform::setLocationServiceFactory({});
    }

    void aPasteInTheListMakesADocumentThatIsShown()
    {
        openBook(book("Inbox"), book("Inbox/Note.txt"));
        auto *clipboard = new QMimeData;
        clipboard->setText(QStringLiteral("Pasted words\nand more"));
        QGuiApplication::clipboard()->setMimeData(clipboard);
        QListView *list = window()->listPane()->view();
        list->setFocus();
        QTest::keyClick(list, Qt::Key_V, Qt::ControlModifier);

        QTRY_COMPARE(window()->documentPane()->shownPath(), book("Inbox/Pasted words.txt"));
        QCOMPARE(tltest::readFile(book("Inbox/Pasted words.txt")),
                 QByteArray("Pasted words\nand more"));
        QTRY_COMPARE(window()->listPane()->selectedPaths(),
                     QStringList{book("Inbox/Pasted words.txt")});
    }

    void aPageDroppedOnABookBecomesItsDocument()
    {
        openBook(book("Inbox"), book("Inbox/Note.txt"));
        QMimeData data;
        data.setHtml(QStringLiteral("<p>Clipped <b>page</b></p>"));
        data.setText(QStringLiteral("Clipped page"));
        dropOnOutlineBook(book("Archive"), &data, Qt::CopyAction);

        QTRY_COMPARE(window()->documentPane()->shownPath(), book("Archive/Clipped page.html"));
        QCOMPARE(tltest::readFile(book("Archive/Clipped page.html")),
                 QByteArray("<p>Clipped <b>page</b></p>"));
    }
};

} // namespace

QObject *apptest::makeMainWindowTest()
{
    return new MainWindowTest;
}

#include "main_window_test.moc"
