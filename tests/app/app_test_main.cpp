// The window tests: real widgets on the offscreen platform (or a virtual X
// server), in a temporary home, with the core put together as the desktop
// program does it and a clock that moves only when a test says so.
#include "app_tests.h"
#include "assembly/core_assembly.h"
#include "document_windows.h"
#include "foundation/clock.h"
#include "platform/alerts.h"
#include "support/test_environment.h"

#include <QApplication>
#include <QTest>

int main(int argc, char **argv)
{
    tltest::isolateEnvironment();
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    tl::setClock(
        std::make_shared<tl::ManualClock>(QDateTime(QDate(2024, 3, 1), QTime(9, 0), Qt::UTC)));

    tl::assembly::CoreParts parts;
    parts.host = tl::assembly::Host::Desktop;
    // The presenter lives as long as the process; the tests read what it showed.
    parts.alerts = std::shared_ptr<tl::platform::AlertPresenter>(
        &apptest::alerts(), [](tl::platform::AlertPresenter *) {});
    parts.showWhatsNew = [] {};
    parts.showAllPanes = [] {};
    parts.effectiveAppearanceName = [] { return QStringLiteral("Light"); };
    parts.openDocuments = [](const QVariantList &) {};
    parts.showInOpenWindow = tl::app::showInOpenWindow;
    tl::assembly::assembleCore(parts);
    if (!tl::assembly::checkAssembly())
        return 1;

    int status = 0;
    for (QObject *test : apptest::allTests()) {
        status |= QTest::qExec(test, argc, argv);
        delete test;
    }
    return status;
}
