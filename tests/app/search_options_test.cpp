// The search field's options in the window: Return searches the shown book,
// and the scope and field buttons change the settings and the results.
#include "app_tests.h"
#include "browser/browser_keys.h"
#include "browser/document_list_model.h"
#include "browser/search_field.h"
#include "document_list_pane.h"
#include "main_window.h"
#include "platform/settings.h"
#include "search_options_panel.h"
#include "window_fixture.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QLineEdit>
#include <QTest>

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

    void click(QButtonGroup *group, int id) const
    {
        QTest::mouseClick(group->button(id), Qt::LeftButton);
    }

private Q_SLOTS:
    void init()
    {
        tl::platform::Settings &settings = tl::platform::settings();
        for (const char *key : {S::SearchAllBooks, S::SearchTitle, S::SearchContent})
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
};

} // namespace

QObject *apptest::makeSearchOptionsTest()
{
    return new SearchOptionsTest;
}

#include "search_options_test.moc"
