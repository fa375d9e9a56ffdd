// Transcribe Recording through the window: offered on recordings only, and
// the transcript shown once the worker is done.
#include "action_registry.h"
#include "app_tests.h"
#include "document/document_pane.h"
#include "main_window.h"
#include "platform/speech_recognizer.h"
#include "window_fixture.h"

#include <QAction>
#include <QFileInfo>
#include <QTest>

namespace {

// Hears the same words in any language.
class Listener : public tl::platform::SpeechRecognizer
{
public:
    bool isAvailable(const QString &) const override { return true; }
    std::optional<QStringList> transcribe(const tl::platform::TranscriptionJob &job) override
    {
        job.progress(1.0);
        return QStringList{QStringLiteral("call the bank")};
    }
};

class TranscriptionWindowTest : public QObject
{
    Q_OBJECT
    apptest::WindowFixture m_fixture;

private Q_SLOTS:
    void init()
    {
        tl::platform::setSpeechRecognizer(std::make_shared<Listener>());
        QVERIFY(m_fixture.open(QStringLiteral("MemoLibrary"),
                               {{"Memos/Call.m4a", "sound"}, {"Memos/Note.md", "Note\n"}}));
    }

    void cleanup()
    {
        m_fixture.close();
        tl::platform::setSpeechRecognizer(nullptr);
    }

    void aRecordingBecomesATranscriptThatShows()
    {
        QAction *transcribe =
            m_fixture.window().actions().action(tl::app::ActionId::TranscribeRecording);
        const QString memo = m_fixture.item("Memos/Call.m4a");
        m_fixture.openBook(m_fixture.item("Memos"), memo);
        m_fixture.selectRow(m_fixture.item("Memos/Note.md"));
        QVERIFY(!transcribe->isEnabled());
        m_fixture.selectRow(memo);
        QVERIFY(transcribe->isEnabled());
        transcribe->trigger();
        const QString transcript = m_fixture.item("Memos/Call transcript.md");
        QTRY_COMPARE(m_fixture.window().documentPane()->shownPath(), transcript);
        QVERIFY(QFileInfo::exists(transcript));
    }
};

} // namespace

QObject *apptest::makeTranscriptionWindowTest()
{
    return new TranscriptionWindowTest;
}

#include "transcription_window_test.moc"
