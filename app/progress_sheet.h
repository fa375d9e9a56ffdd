#pragma once

#include <QString>

class QProgressDialog;
class QWidget;

namespace tl::app {

// A window-modal progress sheet with one button, shown at once and kept
// until its owner closes it; the bar runs to `maximum`, or without an end
// when that is 0.
QProgressDialog *openProgressSheet(QWidget *window, const QString &title, const QString &label,
                                   const QString &button, int maximum = 100);

// What a sheet's work made, made known to the lists and shown; nothing for
// an empty path.
void showMadeDocument(const QString &path);

} // namespace tl::app
