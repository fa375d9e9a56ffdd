// Recognize Text through the window: offered for images and PDFs only, run
// with a progress sheet, the new document shown; Cancel makes none.
#include "action_registry.h"
#include "app_tests.h"
#include "document/document_pane.h"
#include "main_window.h"
#include "platform/text_recognizer.h"
#include "recognition/text_recognition_runner.h"
#include "support/scripted_text_recognizer.h"
#include "window_fixture.h"

#include <QFileInfo>
#include <QProgressDialog>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <thread>

namespace {

using tl::app::ActionId;

class RecognitionWindowTest : public QObject
{
    Q_OBJECT
    apptest::WindowFixture m_fixture;
    std::shared_ptr<tltest::ScriptedTextRecognizer> m_recognizer;

    QString item(const QString &name) const { return m_fixture.item(name); }
    tl::app::MainWindow &window() const { return m_fixture.window(); }
    QAction *recognize() const { return window().actions().action(ActionId::RecognizeText); }

private Q_SLOTS:
    void init()
    {
        m_recognizer = std::make_shared<tltest::ScriptedTextRecognizer>();
        tl::platform::setTextRecognizer(m_recognizer);
        QVERIFY(m_fixture.open(QStringLiteral("ScanLibrary"),
                               {{"Scans/Note.md", "Note\n"}, {"Scans/receipt.png", "picture"}}));
        m_fixture.openBook(item("Scans"), item("Scans/receipt.png"));
    }

    void cleanup()
    {
        m_fixture.close();
        tl::platform::setTextRecognizer(nullptr);
    }

    void anImageGivesADocumentThatIsShown()
    {
        m_fixture.selectRow(item("Scans/Note.md"));
        QVERIFY(!recognize()->isEnabled());
        m_fixture.selectRow(item("Scans/receipt.png"));
        QVERIFY(recognize()->isEnabled());
        m_recognizer->push({"Total 12", "Paid"});
        recognize()->trigger();
        QVERIFY(window().recognition().progressSheet());
        const QString document = item("Scans/Total 12.html");
        QTRY_COMPARE(window().documentPane()->shownPath(), document);
        QVERIFY(!window().recognition().progressSheet());
    }

    void cancelStopsTheRunAndMakesNoDocument()
    {
        m_fixture.selectRow(item("Scans/receipt.png"));
        m_recognizer->push({"Total 12"});
        m_recognizer->beforeAnswer = [](int, const tl::platform::RecognitionControl &control) {
            while (!control.isCancelled())
                std::this_thread::yield();
        };
        QSignalSpy finished(&window().recognition(), &tl::app::TextRecognitionRunner::finished);
        recognize()->trigger();
        QProgressDialog *sheet = window().recognition().progressSheet();
        QVERIFY(sheet);
        QCOMPARE(sheet->labelText(), QStringLiteral("Recognizing text..."));
        QTest::mouseClick(sheet->findChild<QPushButton *>(), Qt::LeftButton);
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(finished.first().value(0).toString(), QString());
        QCOMPARE(finished.first().value(1).toBool(), true);
        QVERIFY(!QFileInfo::exists(item("Scans/Total 12.html")));
    }
};

} // namespace

QObject *apptest::makeRecognitionWindowTest()
{
    return new RecognitionWindowTest;
}

#include "recognition_window_test.moc"
