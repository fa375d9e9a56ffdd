#include "shell/preferences.h"

#include "foundation/clock.h"
#include "foundation/compare.h"
#include "foundation/path_string.h"
#include "foundation/scheduler.h"
#include "platform/file_ops.h"
#include "platform/settings.h"
#include "shell/shell_hooks.h"
#include "shell/shell_keys.h"
#include "shell/version.h"
#include "store/item_path.h"
#include "store/keys.h"
#include "store/library_folders.h"
#include "store/library_root.h"
#include "store/location_settings.h"
#include "store/plist_file.h"

#include <QFileInfo>
#include <functional>

namespace tl::shell {

namespace S = keys::setting;

namespace {

struct FirstStartValue
{
    const char *key;
    QVariant value;
};

const std::vector<FirstStartValue> &firstStartValues()
{
    static const std::vector<FirstStartValue> values{
        {"hideDocumentWhenChangingBook", true},
        {"showPreviewForNotes", qint64(4)},
        {"fsAutoHideColumns", true},
        {"fsUseDocWidthAsPageWidth", true},
        {"resizeWindowWhenHidingFrames", true},
        {"DoNotFadeHeaderAndFooter", true},
        {"listViewUsesTreeViewFont", true},
        {"listViewUsesBoldFont", true},
        {"HighlightLinks", true},
        {"AutoIndentLists", true},
        {"IndentWithTabs", true},
        {"highlightCurrentLine", qint64(1)},
        {"centerCurrentLine", qint64(3)},
        {"HighlightMarkdown", true},
        {"tapMarkdownToPositionCursor", true},
        {"useTabToIndent", true},
        {"insertClosingCharacters", true},
        {"formatFirstLineAsTitle", true},
        {"openLinkInBrowser", true},
        {"contextsEnabled", true},
    };
    return values;
}

void set(const char *key)
{
    platform::settings().set(key, true);
}

void copyDefaultInboxToLibrary()
{
    const QString inbox = platform::settings().string(S::DefaultInbox);
    if (!inbox.isEmpty())
        store::TLStaticFunctions::tl_setLocationSpecificSetting(inbox, S::DefaultInbox);
}

struct UpgradeStep
{
    double below;
    std::function<void()> run;
};

const std::vector<UpgradeStep> &upgradeSteps()
{
    static const std::vector<UpgradeStep> steps{
        {194, [] { set("cleanUpAttachments"); }},
        {197, [] { set("formatFirstLineAsTitle"); }},
        {200, [] { set("outlineUseIncreasedSpacing"); }},
        {201, [] { set("showDatesInListOfNotes"); }},
        {217, [] { set("autodetectListsHTML"); }},
        {220,
         [] {
             set("openMostRecentDocOnLaunch");
             copyDefaultInboxToLibrary();
             Scheduler::main().schedule(QStringLiteral("whatsNew"), 0.5,
                                        [] { shellHooks().showWhatsNew(); });
         }},
        {229, [] { set("useNumericOrder"); }},
    };
    return steps;
}

// Ordered union: the old list's entries the new one lacks go to its end.
QVariantList mergedTagLists(QVariantList current, const QVariantList &old)
{
    for (const QVariant &tag : old) {
        const bool present = std::any_of(current.begin(), current.end(), [&](const QVariant &t) {
            return localizedCompare(t.toString(), tag.toString()) == 0;
        });
        if (!present)
            current << tag;
    }
    return current;
}

void migrateTagFile()
{
    const QString old =
        store::applicationSupportRootFolder() + QStringLiteral("/AvailableTags.plist");
    if (!QFileInfo::exists(old))
        return;
    const QString current =
        store::libraryRoot() + QStringLiteral("/TLResources/Misc/AvailableTags.txt");
    if (QFileInfo::exists(current)) {
        const QVariantList merged =
            mergedTagLists(store::readPlistArray(current), store::readPlistArray(old));
        if (store::writePlistFile(current, merged, false))
            platform::removeItem(old);
    } else if (QFileInfo::exists(store::tl_iCloudStub(current))) {
        // Still on its way from the cloud: leave both alone.
    } else {
        platform::moveItem(old, current);
    }
}

} // namespace

void tl_initPreferences()
{
    platform::Settings &settings = platform::settings();
    if (!settings.contains(S::FirstLaunchDate)) {
        for (const FirstStartValue &v : firstStartValues())
            settings.set(v.key, v.value);
        settings.set(S::FirstLaunchDate, clock().now());
        settings.set(S::InstalledVersion, QString::fromLatin1(kShortVersion));
    }
    const double installed = settings.real(S::InstalledVersion);
    for (const UpgradeStep &step : upgradeSteps())
        if (installed < step.below)
            step.run();
    migrateTagFile();
    store::TLStaticFunctions::tl_readLocationSpecificSettings();
    settings.set(S::InstalledVersion, QString::number(kBuildNumber));
    settings.synchronize();
}

} // namespace tl::shell
