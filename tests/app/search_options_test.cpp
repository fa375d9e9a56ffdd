// The search field in the window: Return searches the shown book, and the
// scope and field buttons change the settings and the results; the searches
// run are offered again; the outline shows Search Results while the list does.
#include "app_tests.h"
#include "browser/browser_keys.h"
#include "browser/document_list_model.h"
#include "browser/outline_model.h"
#include "browser/search_field.h"
#include "browser/smart_books.h"
#include "document_list_pane.h"
#include "main_window.h"
#include "outline_pane.h"
#include "platform/settings.h"
#include "search_options_panel.h"
#include "shell/url_actions.h"
#include "store/library_root.h"
#include "window_fixture.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QTreeView>

namespace {

namespace S = tl::keys::setting;
using tl::browser::DocumentListModel;

class SearchOptionsTest : public QObject
{
    Q_OBJECT
    apptest::WindowFixture m_fixture;

    QStringList listed() const
    {
        QStringList names;
        const DocumentListModel &model = m_fixture.window().listModel();
        for (int row = 0; row < model.rowCount(); ++row)
            if (const QModelIndex index = model.index(row, 0);
                !index.data(DocumentListModel::IsHeaderRole).toBool())
                names << index.data(DocumentListModel::PathRole).toString().section(u'/', -2);
        return names;
    }

    int outlineSmartType() const
    {
        return m_fixture.window()
            .outlinePane()
            ->view()
            ->currentIndex()
            .data(tl::browser::OutlineModel::SmartTypeRole)
            .toInt();
    }

    bool captionIsEnabled(const QString &text) const
    {
        for (const QLabel *label :
             m_fixture.window().listPane()->searchOptions()->findChildren<QLabel *>())
            if (label->text() == text)
                return label->isEnabled();
        return false;
    }

    void click(QButtonGroup *group, int id) const
    {
        QTest::mouseClick(group->button(id), Qt::LeftButton);
    }

private Q_SLOTS:
    void init()
    {
        tl::platform::Settings &settings = tl::platform::settings();
        for (const char *key :
             {S::SearchAllBooks, S::SearchTitle, S::SearchContent, S::RecentSearchTerms})
            settings.remove(QLatin1String(key));
        QVERIFY(
            m_fixture.open(QStringLiteral("SearchLibrary"), {{"Book/Tea.md", "green organiser\n"},
                                                             {"Book/Organ.md", "pipes\n"},
                                                             {"Other/Far.md", "organiser too\n"}}));
        m_fixture.keepSearchIndex();
    }

    void cleanup() { m_fixture.close(); }

    void theOptionsChangeTheFieldAndTheScopeOfTheResults()
    {
        tl::app::DocumentListPane *pane = m_fixture.window().listPane();
        m_fixture.openBook(m_fixture.item("Book"), m_fixture.item("Book/Tea.md"));
        QVERIFY(!pane->searchOptions()->isVisible());
        QTest::keyClicks(pane->filterField(), "organ");
        QTest::keyClick(pane->filterField(), Qt::Key_Return);
        QTRY_COMPARE(listed(), QStringList({"Book/Organ.md", "Book/Tea.md"}));
        QVERIFY(pane->searchOptions()->isVisible());
        QVERIFY(captionIsEnabled(QStringLiteral("Find:")));
        QVERIFY(captionIsEnabled(QStringLiteral("In:")));

        tl::app::SearchOptionsPanel *options = pane->searchOptions();
        click(options->optionButtons(), tl::browser::SearchFieldController::TitleOnly);
        QVERIFY(tl::platform::settings().boolValue(QLatin1String(S::SearchTitle)));
        QTRY_COMPARE(listed(), QStringList{"Book/Organ.md"});

        click(options->optionButtons(), tl::browser::SearchFieldController::ContentOnly);
        QTRY_COMPARE(listed(), QStringList{"Book/Tea.md"});
        click(options->scopeButtons(), 1);
        QVERIFY(tl::platform::settings().boolValue(QLatin1String(S::SearchAllBooks)));
        QTRY_COMPARE(listed(), QStringList({"Other/Far.md", "Book/Tea.md"}));

        // Clearing the field goes back to the book and closes the options.
        pane->filterField()->clear();
        QVERIFY(!options->isVisible());
        QTRY_COMPARE(listed(), QStringList({"Book/Organ.md", "Book/Tea.md"}));
    }

    void recentSearchesOfferTheSearchesRunAndSearchAgain()
    {
        tl::app::DocumentListPane *pane = m_fixture.window().listPane();
        QLineEdit *field = pane->filterField();
        auto *recents = field->findChild<QAction *>(QStringLiteral("recentSearches"));
        auto *menu = field->findChild<QMenu *>(QStringLiteral("recentSearchesMenu"));
        QVERIFY(recents && menu);
        QVERIFY(!recents->isVisible());
        m_fixture.openBook(m_fixture.item("Book"), m_fixture.item("Book/Tea.md"));
        // Typing alone filters and is no search to remember.
        QTest::keyClicks(field, "pipes");
        QVERIFY(!recents->isVisible());
        QTest::keyClick(field, Qt::Key_Return);
        field->clear();
        QTest::keyClicks(field, "green");
        QTest::keyClick(field, Qt::Key_Return);
        QTRY_COMPARE(listed(), QStringList{"Book/Tea.md"});
        QVERIFY(recents->isVisible());

        recents->trigger();
        QStringList titles;
        for (const QAction *entry : menu->actions())
            titles << entry->text();
        QCOMPARE(titles, QStringList({"Recent Searches", "green", "pipes", "", "Clear"}));
        menu->actions().at(2)->trigger();
        QCOMPARE(field->text(), QStringLiteral("pipes"));
        QTRY_COMPARE(listed(), QStringList{"Book/Organ.md"});
        QCOMPARE(tl::platform::settings().array(QLatin1String(S::RecentSearchTerms)),
                 QVariantList({"pipes", "green"}));

        menu->close();
        recents->trigger();
        menu->actions().constLast()->trigger();
        QVERIFY(!recents->isVisible());
        QVERIFY(!tl::platform::settings().contains(QLatin1String(S::RecentSearchTerms)));
    }

    void aSearchFromOutsideSelectsSearchResultsUntilTheFieldIsCleared()
    {
        tl::app::MainWindow &window = m_fixture.window();
        tl::shell::handleTavelleURL(QStringLiteral("tavelle://search?organiser"));
        QTRY_COMPARE(listed(), QStringList({"Other/Far.md", "Book/Tea.md"}));
        QCOMPARE(outlineSmartType(), int(tl::browser::SearchResults));
        // The whole library leaves no book to choose: the scope greys, the field does not.
        QVERIFY(!captionIsEnabled(QStringLiteral("In:")));
        QVERIFY(captionIsEnabled(QStringLiteral("Find:")));

        window.listPane()->filterField()->clear();
        QCOMPARE(window.outlinePane()->selectedPath(), tl::store::libraryRoot());
        const auto *outline =
            static_cast<const tl::browser::OutlineModel *>(window.outlinePane()->view()->model());
        QVERIFY(!outline->smartBookIndex(tl::browser::SearchResults).isValid());
    }
};

} // namespace

QObject *apptest::makeSearchOptionsTest()
{
    return new SearchOptionsTest;
}

#include "search_options_test.moc"
