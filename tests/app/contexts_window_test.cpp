// Contexts in the window: ticking and adding them on items, their smart
// books with counts, and the collection from documents with its progress.
#include "app_tests.h"
#include "browser/outline_model.h"
#include "browser/smart_books.h"
#include "contexts/tag_database.h"
#include "contexts_menu.h"
#include "main_window.h"
#include "outline_pane.h"
#include "platform/alerts.h"
#include "platform/settings.h"
#include "window_fixture.h"

#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QTreeView>

namespace {

using tl::browser::OutlineModel;

class ContextsWindowTest : public QObject
{
    Q_OBJECT
    apptest::WindowFixture m_fixture;

    QString item(const QString &name) const { return m_fixture.item(name); }
    tl::app::MainWindow *window() const { return &m_fixture.window(); }

    QModelIndex outlineRow(int smartType, const QString &path = {}) const
    {
        QAbstractItemModel *model = window()->outlinePane()->view()->model();
        const QModelIndexList rows =
            model->match(model->index(0, 0), OutlineModel::SmartTypeRole, smartType, -1,
                         Qt::MatchExactly | Qt::MatchRecursive);
        for (const QModelIndex &row : rows)
            if (path.isEmpty() || row.data(OutlineModel::PathRole).toString() == path)
                return row;
        return {};
    }

    QAction *menuBarAction(const QString &text) const
    {
        for (QAction *menu : window()->menuBar()->actions())
            if (menu->menu())
                for (QAction *action : menu->menu()->actions())
                    if (action->text() == text)
                        return action;
        return nullptr;
    }

private Q_SLOTS:
    void init()
    {
        tl::platform::Settings &settings = tl::platform::settings();
        settings.set(QStringLiteral("contextsEnabled"), true);
        settings.set(QStringLiteral("extractContextsAutomatically"), true);
        QVERIFY(m_fixture.open(QStringLiteral("ContextsLibrary"),
                               {{"Projects/Plan.md", "Plan\n\nCall @Phone about #idea.\n"},
                                {"Home/Groceries.txt", "Groceries\n@Errands milk\n"}}));
        window()->resize(1100, 600);
    }

    void cleanup()
    {
        m_fixture.close();
        tl::platform::settings().remove(QStringLiteral("contextsEnabled"));
    }

    void contextsAreTickedAndAddedOnItems()
    {
        const QString plan = item("Projects/Plan.md");
        tl::contexts::tl_collectTagsInPlist(item("Home"));
        QMenu menu;
        tl::app::addContextsMenu(&menu, {plan});
        auto *field = menu.findChild<QLineEdit *>(QStringLiteral("newContextField"));
        QVERIFY(field);
        field->setText(QStringLiteral("@Office"));
        Q_EMIT field->returnPressed();
        QCOMPARE(tl::contexts::tl_verifiedTagList(plan), QStringList{"@Office"});

        QMenu again;
        tl::app::addContextsMenu(&again, {plan});
        QMenu *contexts = again.findChild<QMenu *>(QStringLiteral("contextsMenu"));
        QVERIFY(contexts);
        QAction *office = contexts->actions().value(0);
        QCOMPARE(office->text(), QStringLiteral("@Office"));
        QVERIFY(office->isChecked());
        office->setChecked(false);
        QVERIFY(tl::contexts::tl_verifiedTagList(plan).isEmpty());
    }

    void collectionFromDocumentsFillsTheContextBooksWithCounts()
    {
        apptest::alerts().pushAnswer(0);
        QAction *collect = menuBarAction(QStringLiteral("Collect Contexts from Documents"));
        QVERIFY(collect);
        collect->trigger();
        QTRY_COMPARE(tl::contexts::tl_verifiedTagList(item("Home/Groceries.txt")),
                     QStringList{"@Errands"});
        QTRY_VERIFY(outlineRow(tl::browser::Context, QStringLiteral("@Phone")).isValid());
        const QModelIndex phone = outlineRow(tl::browser::Context, QStringLiteral("@Phone"));
        QCOMPARE(phone.data(OutlineModel::CountRole).toInt(), 1);
        window()->outlinePane()->view()->expand(phone.parent());
        if (qEnvironmentVariableIsSet("TAVELLE_SHOTS"))
            window()->grab().save(qEnvironmentVariable("TAVELLE_SHOTS") + "/contexts.png");
    }
};

} // namespace

namespace apptest {
QObject *makeContextsWindowTest()
{
    return new ContextsWindowTest;
}
} // namespace apptest

#include "contexts_window_test.moc"
