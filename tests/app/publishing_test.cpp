// The publishing sheets answer what the person chose, and a compile started
// from the window runs to a new document that is then shown.
#include "app_tests.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "platform/alerts.h"
#include "publishing/publish_runner.h"
#include "publishing/publish_sheets.h"
#include "store/library_root.h"
#include "support/test_environment.h"

#include <QApplication>
#include <QLineEdit>
#include <QProgressDialog>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

namespace {

using namespace tl::app;

// Accepts the next modal sheet once it shows, after an optional change.
void acceptNextSheet(std::function<void(QDialog *)> change = {})
{
    QTimer::singleShot(0, [change] {
        auto *sheet = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (!sheet)
            return acceptNextSheet(change);
        if (change)
            change(sheet);
        sheet->accept();
    });
}

class PublishingTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void init()
    {
        m_library = tltest::makeTemporaryFolder("publishing");
        tl::store::setLibraryRootOverride(m_library);
        tltest::writeFile(m_library + "/Book/One.md", "# One\n\nFirst.");
        tltest::writeFile(m_library + "/Book/Two.md", "# Two\n\nSecond.");
    }
    void cleanup() { tl::store::setLibraryRootOverride({}); }

    void compileSheetAnswersItsChoice()
    {
        CompileSheet sheet("Chapter", false);
        QCOMPARE(sheet.windowTitle(), QStringLiteral("Compile Documents"));
        sheet.findChild<QLineEdit *>()->clear();
        QCOMPARE(sheet.choice().title, QStringLiteral("Chapter"));
        QVERIFY(sheet.choice().autoFormat);
        QCOMPARE(CompileSheet("Chapter", true).windowTitle(),
                 QStringLiteral("Compile Documents to PDF"));
    }

    void nothingToCompileIsSaid()
    {
        tltest::writeFile(m_library + "/Book/clip.mov", "movie");
        PublishRunner runner(nullptr);
        runner.compile({m_library + "/Book/clip.mov"}, m_library + "/Book");
        QCOMPARE(apptest::alerts().shownAlerts().last().message,
                 QStringLiteral("Selection does not contain any documents that can be compiled "
                                "(plain text, formatted document, Markdown etc.)"));
    }

    void compileRunsAndShowsTheNewDocument()
    {
        QWidget window;
        PublishRunner runner(&window);
        QString shown;
        tl::ScopedObserver observer(QLatin1String(tl::events::ShowItemAtPath),
                                    [&shown](const QString &, const QVariantMap &payload) {
                                        shown = payload.value("path").toString();
                                    });
        QSignalSpy finished(&runner, &PublishRunner::finished);
        acceptNextSheet([](QDialog *sheet) { sheet->findChild<QLineEdit *>()->setText("Draft"); });
        runner.compile({m_library + "/Book"}, m_library + "/Book");
        QVERIFY(finished.wait(20000));
        QCOMPARE(shown, m_library + "/Book/Draft.md");
        QCOMPARE(tltest::readFile(shown), "# One\n\nFirst.\n\n\n# Two\n\nSecond.\n\n\n");
    }

    void eBookRunsAndShowsTheBook()
    {
        QWidget window;
        PublishRunner runner(&window);
        QSignalSpy finished(&runner, &PublishRunner::finished);
        acceptNextSheet();
        runner.createEBook({}, m_library + "/Book");
        QVERIFY(finished.wait(20000));
        QCOMPARE(finished.first().first().toString(), m_library + "/Book/Book.epub");
    }

    void screenshotsWhenAsked()
    {
        const QString folder = qEnvironmentVariable("TAVELLE_SCREENSHOTS");
        if (folder.isEmpty())
            QSKIP("TAVELLE_SCREENSHOTS names no folder");
        CompileSheet compile("Chapter One", true);
        EBookSheet eBook(
            {"My Novel", "Ann Author", "", "", "\u00A92026 - All Rights Reserved.", ""});
        QProgressDialog progress("Compile Documents", "Stop", 0, 100);
        progress.setMinimumWidth(360);
        progress.setValue(40);
        const std::pair<QWidget *, const char *> shots[] = {{&compile, "/compile-sheet.png"},
                                                            {&eBook, "/ebook-sheet.png"},
                                                            {&progress, "/publish-progress.png"}};
        for (const auto &[widget, name] : shots) {
            widget->show();
            QVERIFY(QTest::qWaitForWindowExposed(widget));
            widget->grab().save(folder + QLatin1String(name));
        }
    }

private:
    QString m_library;
};

} // namespace

QObject *apptest::makePublishingTest()
{
    return new PublishingTest;
}

#include "publishing_test.moc"
