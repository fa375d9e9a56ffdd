#include "window_fixture.h"

#include "browser/document_list_model.h"
#include "browser/event_bridge.h"
#include "browser/search_index_keeper.h"
#include "document/document_pane.h"
#include "document_list_pane.h"
#include "foundation/clock.h"
#include "foundation/scheduler.h"
#include "main_window.h"
#include "outline_pane.h"
#include "platform/settings.h"
#include "store/keys.h"
#include "support/test_environment.h"

#include <QListView>
#include <QTest>

namespace apptest {

WindowFixture::WindowFixture() = default;

WindowFixture::~WindowFixture()
{
    close();
}

bool WindowFixture::open(const QString &label, const Files &files)
{
    m_library = tltest::makeTemporaryFolder(label);
    for (const auto &[name, bytes] : files)
        if (!tltest::writeFile(item(name), bytes)) {
            QTest::qFail(qPrintable(QStringLiteral("cannot write %1").arg(name)), __FILE__,
                         __LINE__);
            return false;
        }
    tl::platform::settings().set(QLatin1String(tl::keys::setting::TavelleFolder), m_library);
    m_bridge = std::make_unique<tl::browser::EventBridge>();
    m_window = std::make_unique<tl::app::MainWindow>(*m_bridge);
    m_window->openLibrary();
    m_window->show();
    return QTest::qWaitForWindowExposed(m_window.get());
}

void WindowFixture::close()
{
    m_window.reset();
    m_searchIndex.reset();
    m_bridge.reset();
}

void WindowFixture::keepSearchIndex()
{
    m_searchIndex = std::make_unique<tl::browser::SearchIndexKeeper>();
    m_searchIndex->waitForUpdates();
}

void WindowFixture::openBook(const QString &book, const QString &expectedRow) const
{
    m_window->outlinePane()->selectBook(book);
    QTRY_VERIFY(m_window->listModel().indexForPath(expectedRow).isValid());
}

void WindowFixture::selectRow(const QString &path) const
{
    QListView *list = m_window->listPane()->view();
    const QModelIndex row = m_window->listModel().indexForPath(path);
    QVERIFY(row.isValid());
    list->setFocus();
    list->setCurrentIndex(row);
    QTRY_COMPARE(m_window->documentPane()->shownPath(), path);
}

void WindowFixture::letTimersRun(double seconds)
{
    static_cast<tl::ManualClock &>(tl::clock()).advance(seconds);
    tl::Scheduler::main().runDue();
}

} // namespace apptest
