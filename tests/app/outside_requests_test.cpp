// Requests from outside reaching the window: a show request for a document
// already on show brings its window forward and goes to the anchor.
#include "app_tests.h"
#include "document/document_pane.h"
#include "document/formatted_view.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "main_window.h"
#include "shell/url_actions.h"
#include "window_fixture.h"

#include <QTest>

namespace {

class OutsideRequestsTest : public QObject
{
    Q_OBJECT
    apptest::WindowFixture m_fixture;

    QString item(const QString &name) const { return m_fixture.item(name); }
    tl::app::DocumentPane *document() const { return m_fixture.window().documentPane(); }

private Q_SLOTS:
    void init()
    {
        QByteArray longText = "# Long\n\n";
        for (int line = 0; line < 150; ++line)
            longText += "A paragraph to scroll past.\n\n";
        longText += "<h2 id=\"far\">Far</h2>\n\nThe end.\n";
        QVERIFY(m_fixture.open(QStringLiteral("RequestLibrary"),
                               {{"Book/Long.md", longText}, {"Book/Short.txt", "Short\n"}}));
    }

    void cleanup() { m_fixture.close(); }

    void aSecondShowRequestGoesToTheAnchorInTheOpenWindow()
    {
        m_fixture.openBook(item("Book"), item("Book/Long.md"));
        m_fixture.selectRow(item("Book/Long.md"));
        tl::app::FormattedView *view = document()->formattedView();
        QTRY_VERIFY(view->pageIsReady());
        QCOMPARE(view->scrollOffset(), 0.0);

        int shownAnew = 0;
        const tl::ScopedObserver shows(
            QLatin1String(tl::events::ShowItemAtPath),
            [&shownAnew](const QString &, const QVariantMap &) { ++shownAnew; });
        tl::shell::handleTavelleURL(QStringLiteral("tavelle://show/Book/Long.md#far"));
        QCOMPARE(shownAnew, 0);
        QCOMPARE(document()->controller().anchor, QStringLiteral("far"));
        QTRY_VERIFY(view->scrollOffset() > 0);

        // A document no window shows is shown as ever.
        tl::shell::handleTavelleURL(QStringLiteral("tavelle://show/Book/Short.txt"));
        QCOMPARE(shownAnew, 1);
    }
};

} // namespace

QObject *apptest::makeOutsideRequestsTest()
{
    return new OutsideRequestsTest;
}

#include "outside_requests_test.moc"
