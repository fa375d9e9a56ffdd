// The window's link commands: what goes on the clipboard, and a link whose
// target is missing offering to create it.
#include "app_tests.h"
#include "document/backlinks_list.h"
#include "link_actions.h"
#include "links/backlinks.h"
#include "platform/alerts.h"
#include "store/library_root.h"
#include "support/test_environment.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTest>

namespace {

class LinkActionsTest : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void copiesTheLinkForms()
    {
        const QString root = tltest::makeTemporaryFolder(QStringLiteral("LinkLibrary"));
        tl::store::setLibraryRootOverride(root);
        tl::app::copyLinkToClipboard(root + QStringLiteral("/My Book/Doc.md#top"));
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 QStringLiteral("tavelle://show/My%20Book/Doc.md#top"));
        tl::app::copyMarkdownLinkToClipboard(root + QStringLiteral("/My Book/Doc.md"));
        QCOMPARE(QGuiApplication::clipboard()->text(),
                 QStringLiteral("[Doc](tavelle:///My%20Book/Doc.md)"));
        tl::store::setLibraryRootOverride({});
    }

    void aMissingTargetIsOfferedForCreation()
    {
        const QString root = tltest::makeTemporaryFolder(QStringLiteral("LinkLibrary2"));
        tl::store::setLibraryRootOverride(root);
        QVERIFY(tltest::writeFile(root + QStringLiteral("/A/from.md"), "[[New.md]]"));
        const qsizetype before = apptest::alerts().shownAlerts().size();
        apptest::alerts().pushAnswer(0);
        QCOMPARE(tl::app::followLibraryLink(root + QStringLiteral("/A/New.md"),
                                            root + QStringLiteral("/A/from.md")),
                 QString());
        QCOMPARE(apptest::alerts().shownAlerts().size(), before + 1);
        QCOMPARE(tltest::readFile(root + QStringLiteral("/A/New.md")), QByteArray("New"));
        QCOMPARE(tl::app::followLibraryLink(root + QStringLiteral("/A/New.md"), QString()),
                 root + QStringLiteral("/A/New.md"));
        tl::store::setLibraryRootOverride({});
    }

    void theBacklinksListShowsWhoLinksHere()
    {
        const QString root = tltest::makeTemporaryFolder(QStringLiteral("LinkLibrary3"));
        tl::store::setLibraryRootOverride(root);
        QVERIFY(tltest::writeFile(root + QStringLiteral("/A/x.md"), "x"));
        QVERIFY(tltest::writeFile(root + QStringLiteral("/B/z.md"), "[x](../A/x.md)"));
        tl::links::tl_addBacklink(root + QStringLiteral("/A/x.md"),
                                  root + QStringLiteral("/B/z.md"));
        tl::app::BacklinksList list;
        list.follow(root + QStringLiteral("/A/x.md"));
        QCOMPARE(list.count(), 1);
        QCOMPARE(list.item(0)->text(), QStringLiteral("z"));
        QVERIFY(!list.isHidden());
        list.follow(root + QStringLiteral("/B/z.md"));
        QVERIFY(list.isHidden());
        tl::store::setLibraryRootOverride({});
    }
};

} // namespace

QObject *apptest::makeLinkActionsTest()
{
    return new LinkActionsTest;
}

#include "link_actions_test.moc"
