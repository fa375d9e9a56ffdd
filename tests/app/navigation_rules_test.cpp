// Where the formatted view lets a navigation go.
#include "app_tests.h"
#include "document/navigation_rules.h"
#include "support/test_environment.h"

#include <QTest>

namespace {

using tl::app::decideNavigation;
using tl::app::Navigation;
using Action = tl::app::NavigationDecision::Action;
using Kind = Navigation::Kind;

class NavigationRulesTest : public QObject
{
    Q_OBJECT
    QString m_library;
    QString m_outside;

private Q_SLOTS:
    void initTestCase()
    {
        m_library = tltest::makeTemporaryFolder(QStringLiteral("NavigationLibrary"));
        m_outside = tltest::makeTemporaryFolder(QStringLiteral("NavigationOutside"));
        QVERIFY(tltest::writeFile(m_library + "/Book/Doc.md", "# Doc\n"));
        QVERIFY(tltest::writeFile(m_library + "/Book/Other.md", "# Other\n"));
        QVERIFY(tltest::writeFile(m_outside + "/Elsewhere.pdf", "%PDF"));
    }

    void decides_data()
    {
        QTest::addColumn<QString>("url");
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("mainFrame");
        QTest::addColumn<bool>("webLocation");
        QTest::addColumn<int>("action");
        QTest::addColumn<QString>("target");

        const QString page = QUrl::fromLocalFile(m_library + "/Book/Doc.md").toString();
        const QString other = QUrl::fromLocalFile(m_library + "/Book/Other.md").toString();
        const QString outside = QUrl::fromLocalFile(m_outside + "/Elsewhere.pdf").toString();
        const auto row = [](const char *name) { return QTest::newRow(name); };
        row("the page's own load")
            << page << int(Kind::Own) << true << false << int(Action::Load) << "";
        row("an anchor in the page")
            << page + "#part" << int(Kind::Link) << true << false << int(Action::Load) << "";
        row("a document of the library")
            << other << int(Kind::Link) << true << false << int(Action::SelectInLibrary)
            << m_library + "/Book/Other.md";
        row("a document with an anchor")
            << other + "#intro" << int(Kind::Link) << true << false << int(Action::SelectInLibrary)
            << m_library + "/Book/Other.md#intro";
        row("a missing file") << QUrl::fromLocalFile(m_library + "/Gone.md").toString()
                              << int(Kind::Link) << true << false << int(Action::Refuse) << "";
        row("a file outside the library")
            << outside << int(Kind::Link) << true << false << int(Action::OpenOutside) << outside;
        row("a web link") << "https://example.org/a" << int(Kind::Link) << true << false
                          << int(Action::OpenOutside) << "https://example.org/a";
        row("a mail address") << "mailto:a@example.org" << int(Kind::Link) << true << false
                              << int(Action::OpenOutside) << "mailto:a@example.org";
        row("a script address") << "javascript:alert(1)" << int(Kind::Link) << true << false
                                << int(Action::Refuse) << "";
        row("a data page") << "data:text/html,hi" << int(Kind::Link) << true << false
                           << int(Action::Refuse) << "";
        row("a form or script navigation") << "https://example.org/" << int(Kind::Other) << true
                                           << false << int(Action::Refuse) << "";
        row("a frame inside the page") << "https://example.org/" << int(Kind::Own) << false << false
                                       << int(Action::Refuse) << "";
        row("a redirect of a document") << "https://example.org/" << int(Kind::Redirect) << true
                                        << false << int(Action::Refuse) << "";
        row("a redirect of a web location") << "https://example.org/" << int(Kind::Redirect) << true
                                            << true << int(Action::Load) << "";
    }

    void decides()
    {
        QFETCH(QString, url);
        QFETCH(int, kind);
        QFETCH(bool, mainFrame);
        QFETCH(bool, webLocation);
        QFETCH(int, action);
        QFETCH(QString, target);
        Navigation navigation;
        navigation.url = QUrl(url);
        navigation.kind = Kind(kind);
        navigation.isMainFrame = mainFrame;
        navigation.pageUrl = QUrl::fromLocalFile(m_library + "/Book/Doc.md");
        navigation.pageIsWebLocation = webLocation;
        const auto decision = decideNavigation(navigation, m_library);
        QCOMPARE(int(decision.action), action);
        QCOMPARE(decision.target, target);
    }
};

} // namespace

QObject *apptest::makeNavigationRulesTest()
{
    return new NavigationRulesTest;
}

#include "navigation_rules_test.moc"
