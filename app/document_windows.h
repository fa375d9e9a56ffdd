#pragma once

#include <QString>

class QWidget;

// The windows that show documents: the main window's document view and the
// small windows beside it (quick entry). Requests from outside ask them for
// the document they name and for the window in front.
namespace tl::app {

class DocumentPane;

// Shows the window, not minimised, above the others and active.
void bringToFront(QWidget *window);
// The main window, also when it was closed, in front.
void bringMainWindowToFront();
// Counts the pane among the document windows until it is destroyed.
void addDocumentPane(DocumentPane *pane);
// The pane that shows the document (an anchor behind it is ignored), other
// than `except`; nothing when none does.
DocumentPane *viewcontrollerForDocumentWithPath(const QString &path,
                                                const DocumentPane *except = nullptr);
// The document window in front: the active one, else the first shown.
DocumentPane *frontDocumentPane();

// A window already showing the document comes to the front; with an anchor
// and the formatted view showing, the document is selected again so the
// view goes to the anchor. False when no window shows it.
bool showInOpenWindow(const QString &path);
// Puts the text in at the caret of the document in front, as a paste would;
// a rendered page turns to its plain text first. False when there is no
// document to take it.
bool insertIntoCurrentDocument(const QString &text);

} // namespace tl::app
