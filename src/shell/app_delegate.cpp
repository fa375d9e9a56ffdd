#include "shell/app_delegate.h"

#include "foundation/compare.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "foundation/scheduler.h"
#include "platform/alerts.h"
#include "platform/cloud.h"
#include "platform/file_ops.h"
#include "platform/folders.h"
#include "platform/settings.h"
#include "shell/app_state.h"
#include "shell/preferences.h"
#include "shell/shell_hooks.h"
#include "shell/shell_keys.h"
#include "shell/start_item.h"
#include "shell/url_actions.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_folders.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/plist_file.h"
#include "store/properties.h"
#include "store/recent_items.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

namespace tl::shell {

namespace S = keys::setting;

namespace {

NotificationCenter &center()
{
    return NotificationCenter::defaultCenter();
}

bool rootIsExistingFolder()
{
    const QString root = store::libraryRoot();
    return !root.isEmpty() && QFileInfo(root).isDir();
}

void addDropboxHome()
{
    const QString home = userHome();
    for (const char *sub : {"/Dropbox/Tavelle", "/Library/CloudStorage/Dropbox/Tavelle"}) {
        const QString candidate = home + QLatin1String(sub);
        if (QFileInfo(candidate).isDir()) {
            tl_addToPreviouslySelectedHomes(candidate);
            return;
        }
    }
}

} // namespace

QString userHome()
{
    const QString home = platform::homeFolder();
    const qsizetype container = home.indexOf(QStringLiteral("/Library/Containers"));
    return container < 0 ? home : home.left(container);
}

bool isUserHome(const QString &path)
{
    return QDir::cleanPath(store::resolvingSymlinks(path)) ==
           QDir::cleanPath(store::resolvingSymlinks(userHome()));
}

AppDelegate::AppDelegate(LaunchOptions options) : m_options(options)
{
}

AppDelegate &appDelegate()
{
    static AppDelegate delegate;
    return delegate;
}

void AppDelegate::initAppSettings()
{
    // The line is logged even where standard error stays (the command).
    if (plainLogEnabled()) {
        redirectStandardErrorToLibraryLog();
        logLine(QStringLiteral("init and setup"));
    }

    platform::Settings &settings = platform::settings();
    if (platform::hasCloudIdentity()) {
        settings.set(S::ICloudAvailable, true);
        const QString container = platform::cloudContainerFolder();
        if (!container.isEmpty()) {
            settings.set(S::UbiquityContainerPath, store::resolvingSymlinks(container));
            logLine(QStringLiteral("iCloud is available"));
            const QString documents = container + QStringLiteral("/Documents");
            const bool existed = QFileInfo(documents).isDir();
            platform::makeFolder(documents);
            logLine(existed ? QStringLiteral("iCloud > Tavelle already exists")
                            : QStringLiteral("iCloud > Tavelle created"));
        }
    } else {
        settings.remove(S::ICloudAvailable);
        settings.remove(S::UbiquityContainerIdentifier);
    }

    if (m_options.chooseLibrary || !rootIsExistingFolder())
        return;
    const QString root = store::libraryRoot();
    platform::makeFolder(platform::temporaryFolder());
    const QString resources = root + u'/' + QLatin1String(names::TLResources);
    if (!QFileInfo::exists(resources))
        for (const char *sub : {"/CSS", "/BG", "/Misc"})
            platform::makeFolder(resources + QLatin1String(sub));
    platform::makeFolder(store::applicationSupportRootFolder());
    tl_initPreferences();
    if (!settings.string(S::TavelleFolder).isEmpty())
        installDefaultDocuments();
    if (!settings.contains(S::TerminatedGracefully)) {
        // The last session crashed: never leave the user with hidden columns.
        settings.remove(S::OutlineIsCollapsed);
        Scheduler::main().schedule(QStringLiteral("showAllPanes"), 0.1,
                                   [] { shellHooks().showAllPanes(); });
    }
}

void installDefaultDocuments()
{
    const QString root = store::libraryRoot();
    const QStringList entries =
        QDir(root).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    for (const QString &name : entries)
        if (!name.startsWith(u'.') && !name.contains(QLatin1String(names::TLResources)))
            return;
    const QString fileName = QStringLiteral("Welcome to Tavelle.html");
    const QString source = platform::resourcesFolder() + QStringLiteral("/Welcome/") + fileName;
    const QString folder = root + QStringLiteral("/Quickstart");
    const QString target = folder + u'/' + fileName;
    platform::makeFolder(folder);
    if (!platform::copyItem(source, target)) {
        logLine(QStringLiteral("Copy failed: %1").arg(source));
        return;
    }
    store::tl_setProperty(target, QStringLiteral("1.2"), keys::property::LineSpacing);
    store::tl_setProperty(target, QStringLiteral("CSS/Handbook.css"), keys::property::CSS);
    store::tl_addToRecentItems(target);
}

void tl_addToPreviouslySelectedHomes(const QString &path)
{
    platform::Settings &settings = platform::settings();
    QVariantList homes = settings.array(S::PreviouslySelectedHomes);
    homes.removeIf([&](const QVariant &v) { return localizedCompare(v.toString(), path) == 0; });
    homes.prepend(path);
    settings.set(S::PreviouslySelectedHomes, homes);
}

void tl_setRootToPath(const QString &path)
{
    platform::Settings &settings = platform::settings();
    const bool serverWanted = settings.contains(S::LaunchLocalWebDAVServer);
    if (serverWanted)
        shellHooks().terminateServer();
    settings.set(S::TavelleFolder, path);
    tl_addToPreviouslySelectedHomes(path);
    if (serverWanted)
        shellHooks().launchServer();
    appDelegate().initAppSettings();
    center().post(events::ReloadCurrentBook, {{"path", store::libraryRoot()}});
    center().post(events::NewTavelleRootSelected);
}

bool AppDelegate::tl_selectTavelleRoot()
{
    const bool rootSet = !platform::settings().string(S::TavelleFolder).isEmpty();
    const QString message =
        !m_options.chooseLibrary && rootSet
            ? QStringLiteral("The previously selected folder\n\"%1\"\n cannot be found. - Please "
                             "select a different folder or cancel.")
                  .arg(platform::settings().string(S::TavelleFolder))
            : QStringLiteral("Select a folder which Tavelle can use to store your documents");
    platform::AlertPresenter &alerts = platform::alerts();
    while (true) {
        const std::optional<QString> chosen =
            alerts.chooseFolder(message, QStringLiteral("Choose"));
        if (!chosen)
            return false;
        if (isUserHome(*chosen)) {
            alerts.run({QLatin1String(kHomeFolderAlert),
                        QLatin1String(kHomeFolderAlertText),
                        {QStringLiteral("Select Folder...")}});
            continue;
        }
        tl_setRootToPath(*chosen);
        return true;
    }
}

void AppDelegate::applicationWillFinishLaunching()
{
    logLine(QStringLiteral("will Finish Launching"));
    platform::Settings &settings = platform::settings();
    if (m_options.chooseLibrary)
        settings.set(S::IgnoreDroppedFilesOnLaunch, true);
    if (settings.string(S::TavelleFolder).isEmpty()) {
        if (platform::hasCloudIdentity() && !platform::cloudContainerFolder().isEmpty())
            tl_addToPreviouslySelectedHomes(platform::cloudContainerFolder() +
                                            QStringLiteral("/Documents"));
        addDropboxHome();
    }
    if (!settings.contains(S::SelectAppearanceManually)) {
        if (shellHooks().effectiveAppearanceName().contains(u"Dark"))
            settings.set(S::DarkTheme, true);
        else
            settings.remove(S::DarkTheme);
    }
}

void AppDelegate::applicationDidFinishLaunching()
{
    platform::Settings &settings = platform::settings();
    const QString root = store::libraryRoot();
    const bool rootSet = !settings.string(S::TavelleFolder).isEmpty();
    if (m_options.chooseLibrary || (rootSet && !rootIsExistingFolder())) {
        if (!tl_selectTavelleRoot())
            return;
    } else if (rootIsExistingFolder()) {
        if (settings.contains(S::TerminatedGracefully) &&
            settings.boolValue(S::OpenMostRecentDocOnLaunch) && !m_options.noRestore &&
            !isHandlingURLEvent()) {
            settings.remove(S::TerminatedGracefully);
            const QString last = settings.string(S::LastSelectedMainWindowDocument);
            if (!last.isEmpty() && last.startsWith(root) && QFileInfo::exists(last))
                center().post(events::ShowItemAtPath, {{"path", last}});
            else
                store::TLStaticFunctions::showMostRecentDocument();
        } else if (m_options.noRestore || isHandlingURLEvent()) {
            center().post(events::NewBookSelected, {{"path", root}});
        } else {
            showStartItem();
        }
    }
    Scheduler::main().schedule(QStringLiteral("reopenDocumentsOnLaunch"), 0.3,
                               [this] { shellHooks().openDocuments(reopenDocumentsOnLaunch()); });
    if (settings.contains(S::LaunchLocalWebDAVServer))
        shellHooks().launchServer();
    const QString leftover =
        store::libraryRoot() + QStringLiteral("/TLResources/Misc/RecentlyModifiedItems.txt");
    if (QFileInfo::exists(leftover))
        platform::removeItem(leftover);
}

QVariantList AppDelegate::reopenDocumentsOnLaunch()
{
    QVariantMap state = readAppState();
    const QVariantList documents = state.value(kDocumentsToOpenOnStartup).toList();
    if (documents.isEmpty())
        return {};
    state.remove(kDocumentsToOpenOnStartup);
    writeAppState(state);
    return documents;
}

void AppDelegate::applicationWillTerminate(const WindowState &windows)
{
    platform::Settings &settings = platform::settings();
    settings.set(S::TerminatedGracefully, true);
    center().post(events::SaveCurrentDocument);
    if (shellHooks().serverIsRunning())
        shellHooks().terminateServer();
    if (windows.mainWindowVisible)
        settings.remove(S::HideBrowserOnLaunch);
    else
        settings.set(S::HideBrowserOnLaunch, true);
    settings.set(S::LastSelectedMainWindowDocument, windows.shownDocument);
    QVariantMap state = readAppState();
    state.insert(kExpandedPaths, windows.expandedPaths);
    if (!windows.documentsToOpenOnStartup.isEmpty())
        state.insert(kDocumentsToOpenOnStartup, windows.documentsToOpenOnStartup);
    writeAppState(state);
    clearThumbnailCache();
}

void clearThumbnailCache()
{
    const QString cache = store::cachesRootFolder();
    const QString root = store::libraryRoot();
    if (root.isEmpty() || !QFileInfo(cache).isDir())
        return;
    QStringList gone;
    QDirIterator it(cache, QDir::Files | QDir::Hidden | QDir::System, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        QString document = root + file.mid(cache.size());
        document.replace(QStringLiteral(".pdf.png"), QStringLiteral(".pdf"));
        document.remove(QStringLiteral("@2x.png"));
        document.remove(QStringLiteral("@3x.png"));
        if (!QFileInfo::exists(document))
            gone << file;
    }
    for (const QString &file : gone) {
        logLine(QStringLiteral("clear cache: %1").arg(file));
        platform::removeItem(file);
    }
}

} // namespace tl::shell
