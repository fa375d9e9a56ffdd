#pragma once

#include <QString>
#include <QVariantList>
#include <functional>

namespace tl::shell {

// What the shell asks of the layers above it: the views and the server.
// Each starts as nothing to do, so the shell runs headless; the desktop
// program and the server control fill in what they own.
struct ShellHooks
{
    std::function<void()> showWhatsNew = [] {};
    // Brings back all three panes after a crash.
    std::function<void()> showAllPanes = [] {};
    std::function<bool()> serverIsRunning = [] { return false; };
    std::function<void()> launchServer = [] {};
    std::function<void()> terminateServer = [] {};
    // The system's appearance; a name holding "Dark" turns the dark theme on.
    std::function<QString()> effectiveAppearanceName = [] { return QStringLiteral("Light"); };
    // Opens the last session's extra document windows.
    std::function<void(const QVariantList &)> openDocuments = [](const QVariantList &) {};
    // A replacement for a linked item that is missing, with its anchor; ""
    // when none is found. The links subsystem fills it in.
    std::function<QString(const QString &wanted)> findAlternativePath = [](const QString &) {
        return QString();
    };
    // Brings the window already showing the document to the front (following
    // its anchor); false when no window shows it.
    std::function<bool(const QString &path)> showInOpenWindow = [](const QString &) {
        return false;
    };
};

ShellHooks &shellHooks();

} // namespace tl::shell
