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
        struct Row
        {
            const char *name;
            QString url;
            Kind kind;
            bool mainFrame;
            bool webLocation;
            Action action;
            QString target;
        };
        const Row rows[] = {
            {"the page's own load", page, Kind::Own, true, false, Action::Load, {}},
            {"an anchor in the page", page + "#part", Kind::Link, true, false, Action::Load, {}},
            {"a document of the library", other, Kind::Link, true, false, Action::SelectInLibrary,
             m_library + "/Book/Other.md"},
            {"a document with an anchor", other + "#intro", Kind::Link, true, false,
             Action::SelectInLibrary, m_library + "/Book/Other.md#intro"},
            {"a missing file",
             QUrl::fromLocalFile(m_library + "/Gone.md").toString(),
             Kind::Link,
             true,
             false,
             Action::Refuse,
             {}},
            {"the Evernote page's import link",
             QUrl::fromLocalFile(m_library + "/Book/notes.enex").toString() +
                 "#tl-extract-and-import",
             Kind::Link, true, false, Action::ImportNotes, m_library + "/Book/notes.enex"},
            {"the import link on a page of another kind",
             page + "#tl-extract-and-import",
             Kind::Link,
             true,
             false,
             Action::Load,
             {}},
            {"a file outside the library", outside, Kind::Link, true, false, Action::OpenOutside,
             outside},
            {"a web link", "https://example.org/a", Kind::Link, true, false, Action::OpenOutside,
             "https://example.org/a"},
            {"a mail address", "mailto:a@example.org", Kind::Link, true, false, Action::OpenOutside,
             "mailto:a@example.org"},
            {"a script address",
             "javascript:alert(1)",
             Kind::Link,
             true,
             false,
             Action::Refuse,
             {}},
            {"a data page", "data:text/html,hi", Kind::Link, true, false, Action::Refuse, {}},
            {"a form or script navigation",
             "https://example.org/",
             Kind::Other,
             true,
             false,
             Action::Refuse,
             {}},
            {"a frame inside the page",
             "https://example.org/",
             Kind::Own,
             false,
             false,
             Action::Refuse,
             {}},
            {"a redirect of a document",
             "https://example.org/",
             Kind::Redirect,
             true,
             false,
             Action::Refuse,
             {}},
            {"a redirect of a web location",
             "https://example.org/",
             Kind::Redirect,
             true,
             true,
             Action::Load,
             {}},
        };
        for (const Row &r : rows)
            QTest::newRow(r.name) << r.url << int(r.kind) << r.mainFrame << r.webLocation
                                  << int(r.action) << r.target;
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
