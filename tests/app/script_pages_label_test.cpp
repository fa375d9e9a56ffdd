// The status line's page count follows the shown document: a script's pages
// once counted, nothing for other kinds.
#include "app_tests.h"
#include "script_pages_label.h"
#include "support/test_environment.h"

#include <QTest>

namespace {

class ScriptPagesLabelTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void countsTheShownScriptOnly()
    {
        const QString folder = tltest::makeTemporaryFolder(QStringLiteral("Scripts"));
        QByteArray twoPages;
        for (int i = 0; i < 40; ++i)
            twoPages += "The wind picks up.\n\n";
        const QString script = folder + QStringLiteral("/Storm.fountain");
        const QString note = folder + QStringLiteral("/Note.txt");
        QVERIFY(tltest::writeFile(script, "INT. HOUSE - NIGHT\n\n" + twoPages));
        QVERIFY(tltest::writeFile(note, "Note\n"));

        tl::app::ScriptPagesLabel label;
        label.follow(script);
        QTRY_COMPARE(label.text(), QStringLiteral("2 pages"));
        QVERIFY(!label.isHidden());

        label.follow(note);
        QVERIFY(label.isHidden());
    }
};

} // namespace

QObject *apptest::makeScriptPagesLabelTest()
{
    return new ScriptPagesLabelTest;
}

#include "script_pages_label_test.moc"
