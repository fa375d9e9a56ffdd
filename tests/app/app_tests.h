#pragma once

#include <QList>
#include <QObject>
#include <memory>

namespace tl::platform {
class HeadlessAlertPresenter;
}

namespace apptest {

// Every test class of the desktop program, made fresh for the run.
QList<QObject *> allTests();

// The alerts the windows showed, and the answers they are to get.
tl::platform::HeadlessAlertPresenter &alerts();

QObject *makeNavigationRulesTest();
QObject *makeMainWindowTest();
QObject *makeWelcomeWindowTest();
QObject *makeScriptPagesLabelTest();
QObject *makePlainTextViewTest();
QObject *makePublishingTest();
QObject *makeLinkActionsTest();
QObject *makeContextsWindowTest();
QObject *makeTasksWindowTest();
QObject *makeSearchOptionsTest();
QObject *makeOutsideRequestsTest();
QObject *makeTranscriptionWindowTest();
QObject *makeSyncWindowTest();
QObject *makeRecognitionWindowTest();

} // namespace apptest
