#pragma once

// What a benchmark of the window needs before its main window: a home of its
// own below a fresh folder, and the core put together as the desktop program
// does it, with no questions shown, over the library at the root given.
#include "assembly/core_assembly.h"
#include "browser/document_list_model.h"
#include "document_windows.h"
#include "main_window.h"
#include "outline_pane.h"
#include "platform/alerts.h"
#include "platform/settings.h"
#include "store/keys.h"

#include <QCoreApplication>
#include <QDir>
#include <cstdlib>

// The folder holding the home; the caller removes it at the end.
inline QString makeSandbox(const char *name)
{
    QByteArray templ = (QDir::tempPath() + '/' + name + "-XXXXXX").toLocal8Bit();
    const QString base = QString::fromLocal8Bit(mkdtemp(templ.data()));
    for (const auto &[variable, sub] : {std::pair{"HOME", "home"},
                                        {"XDG_CONFIG_HOME", "home/.config"},
                                        {"XDG_DATA_HOME", "home/.local/share"},
                                        {"XDG_CACHE_HOME", "home/.cache"},
                                        {"TMPDIR", "tmp"}}) {
        QDir().mkpath(base + '/' + sub);
        setenv(variable, (base + '/' + sub).toLocal8Bit().constData(), 1);
    }
    return base;
}

inline void assembleHeadlessDesktop(const QString &root)
{
    tl::assembly::CoreParts parts;
    parts.host = tl::assembly::Host::Desktop;
    parts.alerts = std::make_shared<tl::platform::HeadlessAlertPresenter>();
    parts.showWhatsNew = [] {};
    parts.showAllPanes = [] {};
    parts.effectiveAppearanceName = [] { return QStringLiteral("Light"); };
    parts.openDocuments = [](const QVariantList &) {};
    parts.showInOpenWindow = tl::app::showInOpenWindow;
    tl::assembly::assembleCore(parts);
    tl::platform::settings().set(QLatin1String(tl::keys::setting::TavelleFolder), root);
}

// Opens the library in the window and shows the book, once its list holds at
// least the documents wanted.
inline void showBook(tl::app::MainWindow &window, const QString &book, int documents)
{
    window.openLibrary();
    window.show();
    window.outlinePane()->selectBook(book);
    const tl::browser::DocumentListModel &list = window.listModel();
    while (list.rowCount() < documents || list.isLoading())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
}
