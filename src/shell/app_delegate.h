#pragma once

#include <QString>
#include <QStringList>
#include <QVariantList>

namespace tl::shell {

// The two launch gestures of the desktop, as options.
struct LaunchOptions
{
    bool chooseLibrary = false; // --choose-library: ask for the library root
    bool noRestore = false;     // --no-restore: show the root book, not the last document
};

// What the windows hand over at the end of a session.
struct WindowState
{
    bool mainWindowVisible = true;
    QString shownDocument;
    QVariantList expandedPaths;
    // One dictionary per extra document window, in window order.
    QVariantList documentsToOpenOnStartup;
};

// The life of the process: per-library folders, settings upgrades, the
// library root, and what survives from one session to the next.
class AppDelegate
{
public:
    explicit AppDelegate(LaunchOptions options = {});

    void applicationWillFinishLaunching();
    void applicationDidFinishLaunching();
    void applicationWillTerminate(const WindowState &state);

    // Prepares folders and settings for the current root.
    void initAppSettings();
    // Asks for a root with the folder chooser until one is taken; false on cancel.
    bool tl_selectTavelleRoot();
    // The documents of the last session's extra windows, removed from the
    // state file first so a crash while reopening cannot loop.
    QVariantList reopenDocumentsOnLaunch();

    const LaunchOptions &options() const { return m_options; }
    void setOptions(const LaunchOptions &options) { m_options = options; }

private:
    LaunchOptions m_options;
};

// The process's delegate; the composition root gives it the launch options.
AppDelegate &appDelegate();

// Switches the library root: server, settings, events.
void tl_setRootToPath(const QString &path);
void tl_addToPreviouslySelectedHomes(const QString &path);
// Puts the welcome document into an empty library.
void installDefaultDocuments();
// The user's real home, also from inside a sandbox container.
QString userHome();
bool isUserHome(const QString &path);
// Deletes thumbnails whose document is gone.
void clearThumbnailCache();

// The alert shown when the home folder is chosen as the library.
inline constexpr char kHomeFolderAlert[] = "Selecting the User Home is not recommended";
inline constexpr char kHomeFolderAlertText[] = "Please choose a different folder";

} // namespace tl::shell
