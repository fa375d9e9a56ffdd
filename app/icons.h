#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

// Pictures for the core's icon names: the desktop theme's icons where one
// fits, small drawings for the task states.
namespace tl::app {

// "icon-book-...", "icon-doc-..." and "task-..." names; a picture path
// (a preview) is loaded as it is.
QIcon iconNamed(const QString &name);
// A freedesktop icon by name, or its symbolic form when the theme has only that.
QIcon themeIcon(const QString &name);
// An item's icon as the store decides it.
QIcon iconForItem(const QString &path);
// The colour of a colour label ("red", "blue", ...); invalid for "default"
// and unknown names.
QColor colorForLabel(const QString &name);
// The red of overdue tasks: their marks, dates and badges.
QColor overdueColor();
// The label names the menus offer, in menu order.
const QStringList &colorLabelNames();

} // namespace tl::app
