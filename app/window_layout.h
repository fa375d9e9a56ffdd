#pragma once

class QMainWindow;
class QSplitter;

// The main window's frame, its panes' widths and which panes show, kept
// per library in the machine's state file.
namespace tl::app {

void restoreWindowLayout(QMainWindow *window, QSplitter *panes);
void saveWindowLayout(const QMainWindow *window, const QSplitter *panes);

} // namespace tl::app
