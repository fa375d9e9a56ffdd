#include "foundation/clock.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/scheduler.h"
#include "platform/alerts.h"
#include "platform/folders.h"
#include "platform/settings.h"
#include "shell/app_delegate.h"
#include "shell/app_state.h"
#include "shell/preferences.h"
#include "shell/shell_hooks.h"
#include "shell/start_item.h"
#include "store/library_folders.h"
#include "store/library_root.h"
#include "store/log.h"
#include "store/properties.h"
#include "store/recent_items.h"
#include "support/test_environment.h"

#include <QDir>
#include <QFileInfo>
#include <gtest/gtest.h>

namespace {

using namespace tl;

class ShellTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        tltest::clearSettings();
        clock = std::make_shared<ManualClock>(QDateTime::currentDateTimeUtc());
        setClock(clock);
        alerts = std::make_shared<platform::HeadlessAlertPresenter>();
        platform::setAlertPresenter(alerts);
        library = tltest::makeTemporaryFolder("library");
        events = std::make_unique<ScopedObserver>(
            QString(), [this](const QString &name, const QVariantMap &payload) {
                posted << name;
                payloads << payload;
            });
    }
    void TearDown() override
    {
        events.reset();
        Scheduler::main().cancel("reopenDocumentsOnLaunch");
        Scheduler::main().cancel("showAllPanes");
        Scheduler::main().cancel("whatsNew");
        shell::shellHooks() = shell::ShellHooks{};
        platform::setAlertPresenter(nullptr);
        setClock(nullptr);
        tltest::clearSettings();
    }
    platform::Settings &settings() { return platform::settings(); }

    std::shared_ptr<ManualClock> clock;
    std::shared_ptr<platform::HeadlessAlertPresenter> alerts;
    QString library;
    QStringList posted;
    QList<QVariantMap> payloads;
    std::unique_ptr<ScopedObserver> events;
};

TEST_F(ShellTest, FirstStartWritesDefaultsRunsEveryUpgradeAndStoresTheBuildNumber)
{
    shell::tl_initPreferences();
    EXPECT_TRUE(settings().boolValue("hideDocumentWhenChangingBook"));
    EXPECT_EQ(settings().integer("showPreviewForNotes"), 4);
    EXPECT_EQ(settings().integer("centerCurrentLine"), 3);
    EXPECT_TRUE(settings().contains("TLFLD"));
    for (const char *upgraded :
         {"cleanUpAttachments", "outlineUseIncreasedSpacing", "showDatesInListOfNotes",
          "autodetectListsHTML", "openMostRecentDocOnLaunch", "useNumericOrder"})
        EXPECT_TRUE(settings().boolValue(upgraded)) << upgraded;
    EXPECT_GE(settings().real("installedVersion"), 300.0);
}

TEST_F(ShellTest, UpgradeRunsOnlyTheStepsAboveTheInstalledVersion)
{
    settings().set("TLFLD", clock->now());
    settings().set("installedVersion", QString("218"));
    shell::tl_initPreferences();
    EXPECT_FALSE(settings().contains("cleanUpAttachments"));
    EXPECT_FALSE(settings().contains("autodetectListsHTML"));
    EXPECT_TRUE(settings().boolValue("openMostRecentDocOnLaunch"));
    EXPECT_TRUE(settings().boolValue("useNumericOrder"));
    // Not a first start: its defaults stay unset.
    EXPECT_FALSE(settings().contains("hideDocumentWhenChangingBook"));

    // A second start at the stored build runs nothing again.
    settings().remove("useNumericOrder");
    shell::tl_initPreferences();
    EXPECT_FALSE(settings().contains("useNumericOrder"));
}

TEST_F(ShellTest, WhatsNewComesHalfASecondAfterTheUpgradeThatAsksForIt)
{
    int shown = 0;
    shell::shellHooks().showWhatsNew = [&] { ++shown; };
    shell::tl_initPreferences();
    clock->advance(0.4);
    Scheduler::main().runDue();
    EXPECT_EQ(shown, 0);
    clock->advance(0.2);
    Scheduler::main().runDue();
    EXPECT_EQ(shown, 1);
}

TEST_F(ShellTest, SettingTheRootPreparesTheLibraryAndPostsTheRootEvents)
{
    shell::tl_setRootToPath(library);
    EXPECT_EQ(store::libraryRoot(), QFileInfo(library).canonicalFilePath());
    for (const char *sub : {"CSS", "BG", "Misc"})
        EXPECT_TRUE(QFileInfo(library + "/TLResources/" + sub).isDir()) << sub;
    EXPECT_TRUE(QFileInfo(store::applicationSupportRootFolder()).isDir());
    EXPECT_TRUE(QFileInfo(platform::temporaryFolder()).isDir());
    const QString welcome = library + "/Quickstart/Welcome to Tavelle.html";
    ASSERT_TRUE(QFileInfo::exists(welcome));
    EXPECT_EQ(store::tl_propertyForKey(welcome, "lineSpacing").toString(), "1.2");
    EXPECT_EQ(store::tl_propertyForKey(welcome, "CSS").toString(), "CSS/Handbook.css");
    EXPECT_EQ(store::recentItems(), QStringList{"/Quickstart/Welcome to Tavelle.html"});
    const qsizetype reload = posted.indexOf("TLKSReloadCurrentBook");
    ASSERT_GE(reload, 0);
    EXPECT_EQ(payloads[reload].value("path").toString(), store::libraryRoot());
    EXPECT_GT(posted.indexOf("TLKSNewTavelleRootSelected"), reload);
}

TEST_F(ShellTest, TheLibraryLogReceivesInitAndSetup)
{
    // Standard error stays where it is, as in the command.
    setStandardErrorRedirectAllowed(false);
    ASSERT_TRUE(tltest::writeFile(library + "/TLMacLog.txt", ""));
    shell::tl_setRootToPath(library);
    setStandardErrorRedirectAllowed(true);
    EXPECT_TRUE(tltest::readFile(library + "/TLMacLog.txt").contains(" init and setup\n"));
}

TEST_F(ShellTest, WelcomeDocumentOnlyGoesIntoAnEmptyLibrary)
{
    struct Case
    {
        const char *label;
        QStringList files;
        bool installs;
    };
    const Case cases[] = {
        {"empty", {}, true},
        {"dotfiles-and-resources", {".hidden", ".DS_Store", "TLResources/Misc/x.txt"}, true},
        {"a-document", {"Notes.md"}, false},
        {"a-book", {"Book/x.md"}, false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.label);
        const QString root = tltest::makeTemporaryFolder(c.label);
        for (const QString &f : c.files)
            ASSERT_TRUE(tltest::writeFile(root + "/" + f, "x"));
        settings().set("TavelleFolder", root);
        shell::installDefaultDocuments();
        EXPECT_EQ(QFileInfo::exists(root + "/Quickstart/Welcome to Tavelle.html"), c.installs);
    }
}

TEST_F(ShellTest, PreviouslySelectedHomesKeepsEachRootOnceNewestFirst)
{
    shell::tl_addToPreviouslySelectedHomes("/a");
    shell::tl_addToPreviouslySelectedHomes("/b");
    shell::tl_addToPreviouslySelectedHomes("/a");
    EXPECT_EQ(settings().array("previouslySelectedHomes"), QVariantList({"/a", "/b"}));
}

TEST_F(ShellTest, ACrashDropsTheCollapsedOutlineAndShowsAllPanes)
{
    int shown = 0;
    shell::shellHooks().showAllPanes = [&] { ++shown; };
    settings().set("TavelleFolder", library);
    settings().set("outlineIsCollapsed", true);
    shell::AppDelegate().initAppSettings();
    EXPECT_FALSE(settings().contains("outlineIsCollapsed"));
    clock->advance(0.1);
    Scheduler::main().runDue();
    EXPECT_EQ(shown, 1);

    settings().set("outlineIsCollapsed", true);
    settings().set("terminatedGracefully", true);
    shell::AppDelegate().initAppSettings();
    EXPECT_TRUE(settings().boolValue("outlineIsCollapsed"));
}

TEST_F(ShellTest, ChooseLibraryAtLaunchAsksEvenWithAValidRootAndRefusesTheHome)
{
    settings().set("TavelleFolder", library);
    const QString other = tltest::makeTemporaryFolder("other");
    alerts->pushFolder(platform::homeFolder());
    alerts->pushFolder(other);
    shell::AppDelegate delegate({.chooseLibrary = true});
    delegate.applicationDidFinishLaunching();
    const QList<platform::Alert> shown = alerts->shownAlerts();
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown[0].message, "Selecting the User Home is not recommended");
    EXPECT_EQ(shown[0].informativeText, "Please choose a different folder");
    EXPECT_EQ(store::libraryRoot(), QFileInfo(other).canonicalFilePath());
}

TEST_F(ShellTest, CancellingTheChooserLeavesTheRootAlone)
{
    shell::AppDelegate delegate({.chooseLibrary = true});
    EXPECT_FALSE(delegate.tl_selectTavelleRoot());
    EXPECT_TRUE(store::libraryRoot().isEmpty());
}

TEST_F(ShellTest, LaunchShowsTheLastDocumentUnlessNoRestoreIsAsked)
{
    settings().set("TavelleFolder", library);
    const QString doc = library + "/Book/Doc.md";
    ASSERT_TRUE(tltest::writeFile(doc, "# Doc"));
    const auto launch = [&](shell::LaunchOptions options) {
        settings().set("terminatedGracefully", true);
        settings().set("openMostRecentDocOnLaunch", true);
        settings().set("LastSelectedMainWindowDocument", store::libraryRoot() + "/Book/Doc.md");
        posted.clear();
        payloads.clear();
        shell::AppDelegate(options).applicationDidFinishLaunching();
    };
    launch({});
    ASSERT_TRUE(posted.contains("TLKSShowItemAtPathNotification"));
    EXPECT_FALSE(settings().contains("terminatedGracefully"));

    launch({.noRestore = true});
    ASSERT_EQ(posted.indexOf("TLKSShowItemAtPathNotification"), -1);
    const qsizetype book = posted.indexOf("TLKSNewBookSelectedNotification");
    ASSERT_GE(book, 0);
    EXPECT_EQ(payloads[book].value("path").toString(), store::libraryRoot());
}

TEST_F(ShellTest, TerminationKeepsWhatTheNextSessionNeedsAndReopeningCannotLoop)
{
    settings().set("TavelleFolder", library);
    shell::AppDelegate().initAppSettings();
    const QString doc = store::libraryRoot() + "/Doc.md";
    shell::WindowState windows;
    windows.mainWindowVisible = false;
    windows.shownDocument = doc;
    windows.expandedPaths = {"/Book"};
    windows.documentsToOpenOnStartup = {QVariantMap{{"path", doc}, {"tab", "1"}}};
    shell::AppDelegate().applicationWillTerminate(windows);
    EXPECT_TRUE(settings().boolValue("terminatedGracefully"));
    EXPECT_TRUE(settings().boolValue("hideBrowserOnLaunch"));
    EXPECT_EQ(settings().string("LastSelectedMainWindowDocument"), doc);
    EXPECT_TRUE(posted.contains("TLKSSaveCurrentDocument"));

    const QVariantList reopened = shell::AppDelegate().reopenDocumentsOnLaunch();
    ASSERT_EQ(reopened.size(), 1);
    EXPECT_EQ(reopened[0].toMap().value("path").toString(), doc);
    EXPECT_FALSE(shell::readAppState().contains("documentsToOpenOnStartup"));
    EXPECT_EQ(shell::readAppState().value("expandedPaths").toList(), QVariantList{"/Book"});
    EXPECT_TRUE(shell::AppDelegate().reopenDocumentsOnLaunch().isEmpty());
}

TEST_F(ShellTest, CacheCleanUpDeletesThumbnailsOfDocumentsThatAreGone)
{
    settings().set("TavelleFolder", library);
    ASSERT_TRUE(tltest::writeFile(library + "/Book/Kept.pdf", "%PDF"));
    const QString cache = store::cachesRootFolder();
    ASSERT_TRUE(tltest::writeFile(cache + "/Book/Kept.pdf.png", "png"));
    ASSERT_TRUE(tltest::writeFile(cache + "/Book/Gone.jpg@2x.png", "png"));
    shell::clearThumbnailCache();
    EXPECT_TRUE(QFileInfo::exists(cache + "/Book/Kept.pdf.png"));
    EXPECT_FALSE(QFileInfo::exists(cache + "/Book/Gone.jpg@2x.png"));
}

TEST_F(ShellTest, AStartWithNothingToRestoreNeverShowsAnEmptyRoot)
{
    settings().set("TavelleFolder", library);
    ASSERT_TRUE(QDir().mkpath(library + "/Zebra"));
    ASSERT_TRUE(QDir().mkpath(library + "/apples"));
    ASSERT_TRUE(QDir().mkpath(library + "/TLResources/Misc"));
    const QString root = store::libraryRoot();
    EXPECT_EQ(shell::startItemPath(), root + "/apples");

    ASSERT_TRUE(tltest::writeFile(library + "/Zebra/Welcome.html", "<p>Hi</p>"));
    store::tl_addToRecentItems(root + "/Zebra/Welcome.html");
    EXPECT_EQ(shell::startItemPath(), root + "/Zebra/Welcome.html");
    shell::AppDelegate().applicationDidFinishLaunching();
    const qsizetype shown = posted.indexOf("TLKSShowItemAtPathNotification");
    ASSERT_GE(shown, 0);
    EXPECT_EQ(payloads[shown].value("path").toString(), root + "/Zebra/Welcome.html");

    ASSERT_TRUE(tltest::writeFile(library + "/Loose.txt", "Loose"));
    EXPECT_EQ(shell::startItemPath(), root);
}

} // namespace
