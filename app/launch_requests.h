#pragma once

#include <QStringList>

// What the desktop program is asked to do from outside: tavelle:// addresses
// and files or folders, given at start or handed over by a later start.
namespace tl::app {

// The positional arguments as requests: addresses as they are, paths made
// absolute against the working folder.
QStringList launchRequests(const QStringList &arguments);
// Whether the main window is to come to the front for them: a start with
// none asks for it, the services bring their own window, or none.
bool bringsMainWindowForward(const QStringList &requests);
// Addresses go to the scheme, paths to the handling of opened files; the
// quick entry opens 0.2 seconds later, and text to insert goes into the
// document in front.
void runLaunchRequests(const QStringList &requests);

} // namespace tl::app
