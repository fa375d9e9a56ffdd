// The paths a person takes through the window: open a library, pick a
// document, type, and see the save land; rename by the first line; drag a
// document into another book.
#include "app_tests.h"
#include "browser/document_list_model.h"
#include "browser/event_bridge.h"
#include "browser/outline_model.h"
#include "document/document_pane.h"
#include "document/plain_text_view.h"
#include "document_list_pane.h"
#include "foundation/clock.h"
#include "foundation/scheduler.h"
#include "main_window.h"
#include "outline_pane.h"
#include "platform/settings.h"
#include "store/keys.h"
#include "support/test_environment.h"

#include <QFileInfo>
#include <QMimeData>
#include <QTest>
#include <QTreeView>
#include <memory>

namespace {

using tl::app::MainWindow;
using tl::browser::DocumentListModel;

// Moves the injected clock past the save delay and runs what fell due.
void letSaveTimersRun()
{
    static_cast<tl::ManualClock &>(tl::clock()).advance(1.0);
    tl::Scheduler::main().runDue();
}

class MainWindowTest : public QObject
{
    Q_OBJECT
    QString m_library;
    std::unique_ptr<tl::browser::EventBridge> m_bridge;
    std::unique_ptr<MainWindow> m_window;

    QString book(const QString &name) const { return m_library + u'/' + name; }

    // Selects the book in the outline and waits for its rows.
    void openBook(const QString &path, const QString &expectedRow)
    {
        m_window->outlinePane()->selectBook(path);
        QTRY_VERIFY(m_window->listModel().indexForPath(expectedRow).isValid());
    }

    void selectRow(const QString &path)
    {
        QListView *list = m_window->listPane()->view();
        const QModelIndex row = m_window->listModel().indexForPath(path);
        QVERIFY(row.isValid());
        list->setFocus();
        list->setCurrentIndex(row);
        QTRY_COMPARE(m_window->documentPane()->shownPath(), path);
    }

private Q_SLOTS:
    void init()
    {
        m_library = tltest::makeTemporaryFolder(QStringLiteral("WindowLibrary"));
        QVERIFY(tltest::writeFile(book("Inbox/Note.txt"), "Note\nThe first line names it.\n"));
        QVERIFY(tltest::writeFile(book("Inbox/Other.txt"), "Other\n"));
        QVERIFY(tltest::writeFile(book("Archive/Old.txt"), "Old\n"));
        tl::platform::settings().set(QLatin1String(tl::keys::setting::TavelleFolder), m_library);
        m_bridge = std::make_unique<tl::browser::EventBridge>();
        m_window = std::make_unique<MainWindow>(*m_bridge);
        m_window->openLibrary();
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

    void cleanup()
    {
        m_window.reset();
        m_bridge.reset();
    }

    void typingSavesAfterTheLastKey()
    {
        openBook(book("Inbox"), book("Inbox/Note.txt"));
        selectRow(book("Inbox/Note.txt"));
        tl::app::PlainTextView *editor = m_window->documentPane()->plainTextView();
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
        tl::app::PlainTextView *editor = m_window->documentPane()->plainTextView();
        editor->setFocus();
        editor->moveCursor(QTextCursor::Start);
        editor->moveCursor(QTextCursor::EndOfLine);
        QTest::keyClicks(editor, "book");
        letSaveTimersRun();
        QTRY_VERIFY(QFileInfo::exists(book("Inbox/Notebook.txt")));
        QVERIFY(!QFileInfo::exists(book("Inbox/Note.txt")));
        QCOMPARE(m_window->documentPane()->shownPath(), book("Inbox/Notebook.txt"));
        QTRY_VERIFY(m_window->listModel().indexForPath(book("Inbox/Notebook.txt")).isValid());
    }

    void aDocumentDraggedOntoABookMovesThere()
    {
        openBook(book("Inbox"), book("Inbox/Other.txt"));
        QTreeView *outline = m_window->outlinePane()->view();
        const QModelIndex archive =
            m_window->outlinePane()
                ->view()
                ->model()
                ->match(outline->model()->index(1, 0), tl::browser::OutlineModel::PathRole,
                        book("Archive"), 1, Qt::MatchExactly | Qt::MatchRecursive)
                .value(0);
        QVERIFY(archive.isValid());
        outline->scrollTo(archive);

        // The drag as the list starts it, dropped on the book's row.
        const QModelIndex row = m_window->listModel().indexForPath(book("Inbox/Other.txt"));
        std::unique_ptr<QMimeData> data(m_window->listModel().mimeData({row}));
        QVERIFY(data && data->hasUrls());
        const QPoint at = outline->visualRect(archive).center();
        QWidget *target = outline->viewport();
        QDragEnterEvent enter(at, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &enter);
        QDragMoveEvent move(at, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &move);
        QVERIFY(move.isAccepted());
        QDropEvent drop(at, Qt::MoveAction, data.get(), Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(target, &drop);

        QTRY_VERIFY(QFileInfo::exists(book("Archive/Other.txt")));
        QVERIFY(!QFileInfo::exists(book("Inbox/Other.txt")));
        QTRY_VERIFY(!m_window->listModel().indexForPath(book("Inbox/Other.txt")).isValid());
    }
};

} // namespace

QObject *apptest::makeMainWindowTest()
{
    return new MainWindowTest;
}

#include "main_window_test.moc"
