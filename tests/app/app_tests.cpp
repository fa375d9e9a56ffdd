#include "app_tests.h"

namespace apptest {

QList<QObject *> allTests()
{
    return {makeNavigationRulesTest(), makeMainWindowTest()};
}

} // namespace apptest
