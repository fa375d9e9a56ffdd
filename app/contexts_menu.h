#pragma once

#include <QString>
#include <QStringList>

class QMenu;
class QMenuBar;
class QObject;
class QWidget;

namespace tl::browser {
class EventBridge;
class TLKSOutlineViewController;
} // namespace tl::browser

// The window's side of contexts: menus that hand the user's choices to the
// contexts of the core, and the collection in the background. No state of
// its own beyond the run in flight: the core answers every question.
namespace tl::app {

// "Contexts" for the selected items: each available context to tick, a
// field for a new one, and "Clear All Contexts".
void addContextsMenu(QMenu *menu, const QStringList &paths);
// For a context's row in the outline: rename, delete, exclude.
void addContextRowActions(QMenu *menu, const QString &tag);
// The "Contexts" menu of the menu bar: the two switches, the collection from
// documents with its progress and Stop, and a refresh of the index.
void addContextsMenuBar(QMenuBar *bar, QWidget *window);
// The outline follows changes of contexts and favourites, and a collection
// of changed property files runs on a worker at start and when asked for.
void followContexts(browser::EventBridge &bridge, browser::TLKSOutlineViewController &outline,
                    QObject *owner);

} // namespace tl::app
