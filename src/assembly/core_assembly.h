#pragma once

#include "shell/app_delegate.h"

#include <QString>
#include <QStringList>
#include <QVariantList>
#include <functional>
#include <memory>

namespace tl::platform {
class AlertPresenter;
}

// The one place the program is put together: the settings store, the alert
// presenter, the shell's hooks, the side jobs and the conversions are
// registered here, for the command and the desktop program alike. Each main
// calls assembleCore first and stops when checkAssembly names a missing part.
namespace tl::assembly {

enum class Host { Command, Desktop };

struct CoreParts
{
    Host host = Host::Command;
    shell::LaunchOptions launch;
    // The desktop's presenter with windows; the command keeps the headless one.
    std::shared_ptr<platform::AlertPresenter> alerts;
    // What only the windows can do; the desktop must fill each of them.
    std::function<void()> showWhatsNew;
    std::function<void()> showAllPanes;
    std::function<QString()> effectiveAppearanceName;
    std::function<void(const QVariantList &)> openDocuments;
    std::function<bool(const QString &)> showInOpenWindow;
};

void assembleCore(const CoreParts &parts);

// The names of the parts a host needs that are not registered; empty when
// the program is complete.
QStringList missingParts();
// Writes one line per missing part to the standard error stream, as
// "Tavelle cannot start: NAME is not registered", and answers false then.
bool checkAssembly();

} // namespace tl::assembly
