#include "app_tests.h"

#include "platform/alerts.h"

namespace apptest {

QList<QObject *> allTests()
{
    return {makeNavigationRulesTest(),  makeWelcomeWindowTest(),    makeMainWindowTest(),
            makeScriptPagesLabelTest(), makePlainTextViewTest(),    makePublishingTest(),
            makeLinkActionsTest(),      makeContextsWindowTest(),   makeTasksWindowTest(),
            makeSearchOptionsTest(),    makeOutsideRequestsTest(),  makeTranscriptionWindowTest(),
            makeSyncWindowTest(),       makeRecognitionWindowTest()};
}

tl::platform::HeadlessAlertPresenter &alerts()
{
    static auto *presenter = new tl::platform::HeadlessAlertPresenter;
    return *presenter;
}

} // namespace apptest
