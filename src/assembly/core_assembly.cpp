#include "assembly/core_assembly.h"

#include "contexts/tag_database.h"
#include "convert/html_to_text.h"
#include "convert/store_registration.h"
#include "importers/store_registration.h"
#include "links/link_jobs.h"
#include "links/link_resolution.h"
#include "platform/alerts.h"
#include "platform/settings.h"
#include "screenplay/script_page.h"
#include "server/control/server_control.h"
#include "shell/shell_hooks.h"
#include "store/conflict_copies.h"
#include "store/side_jobs.h"
#include "store/text_conversions.h"
#include "sync/conflict_names.h"
#include "sync/conflict_watch.h"
#include "tasks/task_list.h"

#include <QSet>
#include <cstdio>

namespace tl::assembly {

namespace {

// The parts registered so far, by name.
struct Registry
{
    Host host = Host::Command;
    bool assembled = false;
    QSet<QString> registered;
};

Registry &registry()
{
    static Registry r;
    return r;
}

void mark(const char *name)
{
    registry().registered.insert(QLatin1String(name));
}

template <typename Hook, typename Value>
void install(Hook &hook, const Value &value, const char *name)
{
    if (!value)
        return;
    hook = value;
    mark(name);
}

struct Requirement
{
    const char *name;
    bool desktopOnly;
};

// What each host must have before it runs.
constexpr Requirement kRequired[] = {
    {"settings store", false},
    {"alert presenter", false},
    {"server control", false},
    {"Markdown to HTML conversion", false},
    {"Fountain to HTML conversion", false},
    {"HTML to plain text conversion", false},
    {"window alert presenter", true},
    {"showWhatsNew hook", true},
    {"showAllPanes hook", true},
    {"effectiveAppearanceName hook", true},
    {"openDocuments hook", true},
    {"showInOpenWindow hook", true},
};

} // namespace

void assembleCore(const CoreParts &parts)
{
    Registry &r = registry();
    r.host = parts.host;
    r.assembled = true;

    // The store's file is chosen now, on the main thread, before any worker reads it.
    platform::settings();
    mark("settings store");

    if (parts.alerts) {
        platform::setAlertPresenter(parts.alerts);
        mark("window alert presenter");
    }
    mark("alert presenter");

    shell::appDelegate().setOptions(parts.launch);
    server::installServerControl();
    mark("server control");

    convert::registerConversionsWithStore();
    if (store::textConversions().markdownToHTML)
        mark("Markdown to HTML conversion");
    store::textConversions().htmlToPlainText = [](const QString &html) {
        return convert::tl_htmlToPlainText(html);
    };
    mark("HTML to plain text conversion");
    store::textConversions().fountainToHTML = [](const QString &fountain, const QString &) {
        return screenplay::scriptPageForText(fountain).html;
    };
    mark("Fountain to HTML conversion");
    importers::registerImportersWithStore();

    store::sideJobs().changePathInTagDB = contexts::tl_changePathInTagDBToPath;
    store::sideJobs().moveTask = tasks::tl_moveTaskToPath;
    store::sideJobs().copyTaskDetails = tasks::tl_copyTaskDetailsToPath;
    links::registerLinkJobs();
    store::setConflictCopyRule(sync::isConflictCopyInLibrary);

    shell::ShellHooks &hooks = shell::shellHooks();
    install(hooks.showWhatsNew, parts.showWhatsNew, "showWhatsNew hook");
    install(hooks.showAllPanes, parts.showAllPanes, "showAllPanes hook");
    install(hooks.effectiveAppearanceName, parts.effectiveAppearanceName,
            "effectiveAppearanceName hook");
    install(hooks.openDocuments, parts.openDocuments, "openDocuments hook");
    install(hooks.showInOpenWindow, parts.showInOpenWindow, "showInOpenWindow hook");
    const bool mayAsk = parts.host == Host::Desktop;
    hooks.findAlternativePath = [mayAsk](const QString &wanted) {
        return links::tl_findAlternativePathExcluding({wanted, {}, mayAsk, {}});
    };
    // Only the window lives long enough to see a sync client's work arrive.
    if (parts.host == Host::Desktop)
        sync::installConflictWatch();
}

QStringList missingParts()
{
    const Registry &r = registry();
    if (!r.assembled)
        return {QStringLiteral("the core (assembleCore was never called)")};
    QStringList missing;
    for (const Requirement &requirement : kRequired)
        if ((!requirement.desktopOnly || r.host == Host::Desktop) &&
            !r.registered.contains(QLatin1String(requirement.name)))
            missing << QLatin1String(requirement.name);
    return missing;
}

bool checkAssembly()
{
    const QStringList missing = missingParts();
    for (const QString &name : missing)
        std::fprintf(stderr, "Tavelle cannot start: %s is not registered\n", qPrintable(name));
    return missing.isEmpty();
}

} // namespace tl::assembly
