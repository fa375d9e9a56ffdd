#pragma once

#include <QStringList>

// What the desktop program is asked to do from outside: tavelle:// addresses
// and files or folders, given at start or handed over by a later start.
namespace tl::app {

// The positional arguments as requests: addresses as they are, paths made
// absolute against the working folder.
QStringList launchRequests(const QStringList &arguments);
// Addresses go to the scheme, paths to the handling of opened files.
void runLaunchRequests(const QStringList &requests);

} // namespace tl::app
