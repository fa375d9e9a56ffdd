// The welcome window: a library used before is taken at once, the home
// folder is refused with the alert, and a cancelled chooser ends the start.
#include "app_tests.h"
#include "platform/alerts.h"
#include "platform/settings.h"
#include "shell/app_delegate.h"
#include "shell/shell_keys.h"
#include "store/keys.h"
#include "support/test_environment.h"
#include "welcome_window.h"

#include <QDir>
#include <QListWidget>
#include <QSignalSpy>
#include <QTest>

namespace {

using tl::app::WelcomeWindow;
namespace S = tl::keys::setting;

class WelcomeWindowTest : public QObject
{
    Q_OBJECT

    void offer(const QStringList &libraries)
    {
        QVariantList homes;
        for (const QString &library : libraries)
            homes << library;
        tl::platform::settings().set(QLatin1String(S::PreviouslySelectedHomes), homes);
        tl::platform::settings().remove(QLatin1String(S::TavelleFolder));
    }

    static QListWidget *recent(WelcomeWindow &window) { return window.findChild<QListWidget *>(); }

private Q_SLOTS:
    void aLibraryUsedBeforeIsTakenAtOnce()
    {
        const QString library = tltest::makeTemporaryFolder(QStringLiteral("Earlier"));
        offer({library});
        WelcomeWindow window;
        QSignalSpy chosen(&window, &WelcomeWindow::libraryChosen);
        QCOMPARE(recent(window)->count(), 1);
        QVERIFY(recent(window)->item(0));
        Q_EMIT recent(window)->itemActivated(recent(window)->item(0));
        QCOMPARE(chosen.count(), 1);
        QCOMPARE(tl::platform::settings().string(QLatin1String(S::TavelleFolder)), library);
    }

    void theHomeFolderIsRefusedWithTheAlert()
    {
        offer({QDir::homePath()});
        WelcomeWindow window;
        QSignalSpy chosen(&window, &WelcomeWindow::libraryChosen);
        QSignalSpy cancelled(&window, &WelcomeWindow::cancelled);
        const qsizetype before = apptest::alerts().shownAlerts().size();
        // The chooser that follows the alert is cancelled.
        apptest::alerts().pushFolder(std::nullopt);
        Q_EMIT recent(window)->itemActivated(recent(window)->item(0));
        const QList<tl::platform::Alert> shown = apptest::alerts().shownAlerts().mid(before);
        QCOMPARE(shown.size(), 1);
        QCOMPARE(shown.first().message, QLatin1String(tl::shell::kHomeFolderAlert));
        QCOMPARE(shown.first().informativeText, QLatin1String(tl::shell::kHomeFolderAlertText));
        QCOMPARE(shown.first().buttons, QStringList{QStringLiteral("Select Folder...")});
        QCOMPARE(chosen.count(), 0);
        QCOMPARE(cancelled.count(), 1);
        QVERIFY(tl::platform::settings().string(QLatin1String(S::TavelleFolder)).isEmpty());
    }
};

} // namespace

QObject *apptest::makeWelcomeWindowTest()
{
    return new WelcomeWindowTest;
}

#include "welcome_window_test.moc"
