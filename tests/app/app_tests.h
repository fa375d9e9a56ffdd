#pragma once

#include <QList>
#include <QObject>

namespace apptest {

// Every test class of the desktop program, made fresh for the run.
QList<QObject *> allTests();

QObject *makeNavigationRulesTest();
QObject *makeMainWindowTest();

} // namespace apptest
