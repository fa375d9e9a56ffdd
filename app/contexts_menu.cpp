#include "contexts_menu.h"

#include "browser/event_bridge.h"
#include "browser/outline_controller.h"
#include "browser/smart_books.h"
#include "contexts/context_keys.h"
#include "contexts/tag_collection.h"
#include "contexts/tag_database.h"
#include "contexts/tag_rename.h"
#include "contexts/text_scan.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "platform/alerts.h"
#include "platform/settings.h"
#include "store/location_settings.h"

#include <QInputDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QProgressDialog>
#include <QTimer>
#include <QWidgetAction>
#include <QtConcurrent>
#include <algorithm>
#include <atomic>
#include <memory>

namespace tl::app {

namespace K = contexts::keys;

namespace {

void post(const char *name)
{
    NotificationCenter::defaultCenter().post(QLatin1String(name));
}

bool allBear(const QStringList &paths, const QString &tag)
{
    return std::all_of(paths.cbegin(), paths.cend(), [&](const QString &path) {
        return contexts::tl_verifiedTagList(path).contains(tag);
    });
}

void assign(const QStringList &paths, const QString &tag, bool on)
{
    for (const QString &path : paths) {
        if (on) {
            contexts::tl_setTag(path, tag);
            contexts::tl_collectTagsInPlist(path);
        } else {
            contexts::tl_clearTag(path, tag);
        }
    }
}

// The switches write the settings that follow the library.
void setLibrarySetting(const char *key, bool on)
{
    platform::settings().set(QLatin1String(key), on);
    store::TLStaticFunctions::tl_setLocationSpecificSetting(on, QLatin1String(key));
}

void switchContexts(bool on)
{
    setLibrarySetting(K::ContextsEnabled, on);
    post(events::ReloadContextSmartBook);
    if (!on)
        return;
    post(events::CollectNewContexts);
    QTimer::singleShot(1000, [] {
        if (contexts::installDefaultContexts())
            post(events::ReloadContextSmartBook);
    });
}

void collectFromDocuments(QWidget *window)
{
    const int answer = platform::alerts().run(
        {QStringLiteral("Extract context tags from existing documents"),
         QStringLiteral("Tavelle will scan all editable documents to find embedded context tags. "
                        "This may take a little while."),
         {QStringLiteral("Extract"), QStringLiteral("Cancel")}});
    if (answer != 0)
        return;
    auto *progress = new QProgressDialog(QStringLiteral("Collecting contexts from documents…"),
                                         QStringLiteral("Stop"), 0, 100, window);
    progress->setObjectName(QStringLiteral("contextsProgress"));
    progress->setWindowTitle(QStringLiteral("Collect Contexts from Documents"));
    progress->setMinimumDuration(0);
    progress->setAttribute(Qt::WA_DeleteOnClose);
    auto stop = std::make_shared<std::atomic_bool>(false);
    QObject::connect(progress, &QProgressDialog::canceled, progress, [stop] { *stop = true; });
    QPointer<QProgressDialog> shown(progress);
    auto *watcher = new QFutureWatcher<contexts::ScanResult>(progress);
    QObject::connect(watcher, &QFutureWatcherBase::finished, progress, [progress] {
        progress->close();
        post(events::ReloadContextSmartBook);
    });
    watcher->setFuture(QtConcurrent::run([stop, shown] {
        return contexts::extractContextsFromDocuments(*stop, [shown](double percent) {
            QMetaObject::invokeMethod(
                qApp,
                [shown, percent] {
                    if (shown)
                        shown->setValue(int(percent));
                },
                Qt::QueuedConnection);
        });
    }));
    progress->show();
}

QAction *switchAction(QMenu *menu, const QString &text, const char *key)
{
    QAction *action = menu->addAction(text);
    action->setCheckable(true);
    QObject::connect(menu, &QMenu::aboutToShow, action, [action, key] {
        action->setChecked(platform::settings().boolValue(QLatin1String(key)));
    });
    return action;
}

} // namespace

void addContextsMenu(QMenu *menu, const QStringList &paths)
{
    if (paths.isEmpty() || !platform::settings().boolValue(QLatin1String(K::ContextsEnabled)))
        return;
    QMenu *contextsMenu = menu->addMenu(QStringLiteral("Contexts"));
    contextsMenu->setObjectName(QStringLiteral("contextsMenu"));
    for (const QString &tag : contexts::tl_listOfAllAvailableTags()) {
        QAction *action = contextsMenu->addAction(tag);
        action->setCheckable(true);
        action->setChecked(allBear(paths, tag));
        QObject::connect(action, &QAction::toggled,
                         [paths, tag](bool on) { assign(paths, tag, on); });
    }
    contextsMenu->addSeparator();
    auto *field = new QLineEdit(contextsMenu);
    field->setObjectName(QStringLiteral("newContextField"));
    field->setPlaceholderText(QStringLiteral("New Context"));
    field->setClearButtonEnabled(true);
    auto *fieldAction = new QWidgetAction(contextsMenu);
    fieldAction->setDefaultWidget(field);
    contextsMenu->addAction(fieldAction);
    QObject::connect(field, &QLineEdit::returnPressed, menu, [menu, field, paths] {
        const QString tag = field->text().trimmed();
        if (!tag.isEmpty())
            assign(paths, tag, true);
        menu->close();
    });
    QObject::connect(contextsMenu->addAction(QStringLiteral("Clear All Contexts")),
                     &QAction::triggered, [paths] {
                         for (const QString &path : paths)
                             contexts::tl_clearAllTags(path);
                     });
}

void addContextRowActions(QMenu *menu, const QString &tag)
{
    QWidget *parent = menu->parentWidget();
    QObject::connect(
        menu->addAction(QStringLiteral("Rename Context…")), &QAction::triggered, [tag, parent] {
            bool ok = false;
            const QString name =
                QInputDialog::getText(parent, QStringLiteral("Rename Context"),
                                      QStringLiteral("New name:"), QLineEdit::Normal, tag, &ok)
                    .trimmed();
            if (!ok || name.isEmpty() || name == tag)
                return;
            contexts::tl_renameTagTo(tag, name);
            post(events::ReloadContextSmartBook);
        });
    QObject::connect(menu->addAction(QStringLiteral("Delete Context")), &QAction::triggered, [tag] {
        contexts::tl_renameTagTo(tag, QString());
        post(events::ReloadContextSmartBook);
    });
    QObject::connect(menu->addAction(QStringLiteral("Exclude Context")), &QAction::triggered,
                     [tag] {
                         contexts::tl_excludeTag(tag);
                         post(events::ReloadContextSmartBook);
                     });
}

void addContextsMenuBar(QMenuBar *bar, QWidget *window)
{
    // Before the Help menu, which stays last.
    auto *menu = new QMenu(QStringLiteral("&Contexts"), bar);
    const QList<QAction *> menus = bar->actions();
    bar->insertMenu(menus.isEmpty() ? nullptr : menus.last(), menu);
    menu->setObjectName(QStringLiteral("contextsMenuBar"));
    QObject::connect(switchAction(menu, QStringLiteral("Use Contexts"), K::ContextsEnabled),
                     &QAction::triggered, switchContexts);
    QAction *automatic = switchAction(menu, QStringLiteral("Extract Contexts Automatically"),
                                      K::ExtractContextsAutomatically);
    QObject::connect(automatic, &QAction::triggered,
                     [](bool on) { setLibrarySetting(K::ExtractContextsAutomatically, on); });
    QObject::connect(menu, &QMenu::aboutToShow, automatic, [automatic] {
        automatic->setEnabled(platform::settings().boolValue(QLatin1String(K::ContextsEnabled)));
    });
    menu->addSeparator();
    QObject::connect(menu->addAction(QStringLiteral("Collect Contexts from Documents")),
                     &QAction::triggered, window, [window] { collectFromDocuments(window); });
    QObject::connect(menu->addAction(QStringLiteral("Refresh Contexts")), &QAction::triggered,
                     window, [] {
                         (void)QtConcurrent::run([] {
                             contexts::tl_refreshContexts();
                             post(events::ReloadContextSmartBook);
                         });
                     });
}

void followContexts(browser::EventBridge &bridge, browser::TLKSOutlineViewController &outline,
                    QObject *owner)
{
    QObject::connect(&bridge, &browser::EventBridge::reloadContextSmartBook, owner,
                     [&outline] { outline.updateSmartBookOfType(browser::Contexts); });
    QObject::connect(&bridge, &browser::EventBridge::updateFavorites, owner,
                     [&outline] { outline.updateSmartBookOfType(browser::Favorites); });
    const auto collect = [] {
        if (contexts::collectionIsBusy())
            return;
        (void)QtConcurrent::run([] {
            if (contexts::collectNewContexts().listFilledFromEmpty)
                post(events::ReloadContextSmartBook);
        });
    };
    QObject::connect(&bridge, &browser::EventBridge::newRootSelected, owner, collect);
    QObject::connect(&bridge, &browser::EventBridge::eventPosted, owner,
                     [collect](const QString &name) {
                         if (name == QLatin1String(events::CollectNewContexts))
                             collect();
                     });
    collect();
}

} // namespace tl::app
