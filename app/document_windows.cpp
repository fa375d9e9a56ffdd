#include "document_windows.h"

#include "document/document_pane.h"
#include "document/formatted_view.h"
#include "document/plain_text_view.h"
#include "editing/line_operations.h"
#include "editing/text_buffer.h"
#include "main_window.h"
#include "store/item_path.h"

#include <QApplication>
#include <QList>
#include <QPointer>

namespace tl::app {

using browser::TLKSDocumentViewController;

namespace {

QList<QPointer<DocumentPane>> &panes()
{
    static QList<QPointer<DocumentPane>> list;
    list.removeAll(nullptr);
    return list;
}

// As a paste at the caret: one undo step, the save timer started.
void insertIntoPlainText(PlainTextView *view, const QString &text)
{
    const QTextCursor cursor = view->textCursor();
    const editing::TextRange selection{cursor.selectionStart(),
                                       cursor.selectionEnd() - cursor.selectionStart()};
    view->applyRule([&](editing::EditorBuffer &buffer, editing::EditorContext &) {
        editing::tl_smartReplaceCharactersInRange(buffer, selection,
                                                  editing::withNewlineParagraphs(text));
    });
}

} // namespace

void bringToFront(QWidget *window)
{
    window->show();
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->raise();
    window->activateWindow();
}

void bringMainWindowToFront()
{
    for (QWidget *widget : QApplication::topLevelWidgets())
        if (auto *main = qobject_cast<MainWindow *>(widget)) {
            bringToFront(main);
            return;
        }
}

void addDocumentPane(DocumentPane *pane)
{
    panes().append(pane);
}

DocumentPane *viewcontrollerForDocumentWithPath(const QString &path, const DocumentPane *except)
{
    const QString document = store::tl_pathWithoutAnchor(path);
    for (DocumentPane *pane : panes())
        if (pane != except && !document.isEmpty() && pane->shownPath() == document)
            return pane;
    return nullptr;
}

DocumentPane *frontDocumentPane()
{
    DocumentPane *shown = nullptr;
    for (DocumentPane *pane : panes()) {
        if (pane->window() == QApplication::activeWindow())
            return pane;
        if (!shown && pane->window()->isVisible())
            shown = pane;
    }
    return shown;
}

bool showInOpenWindow(const QString &path)
{
    DocumentPane *pane = viewcontrollerForDocumentWithPath(path);
    if (!pane)
        return false;
    bringToFront(pane->window());
    TLKSDocumentViewController &controller = pane->controller();
    if (!store::tl_pathAnchor(path).isEmpty() &&
        controller.viewThatIsVisible == browser::FormattedView)
        controller.selectNewDocument(path);
    return true;
}

bool insertIntoCurrentDocument(const QString &text)
{
    DocumentPane *pane = frontDocumentPane();
    if (!pane || text.isEmpty())
        return false;
    TLKSDocumentViewController &controller = pane->controller();
    if (controller.viewThatIsVisible == browser::FormattedView) {
        if (pane->formattedView()->isEditable()) {
            pane->formattedView()->insertText(text);
            return true;
        }
        // A rendered page takes no typing: its plain text does.
        if (!pane->canToggleView() || !controller.tl_togglePlainTextAndFormattedView())
            return false;
    }
    if (controller.viewThatIsVisible != browser::PlainTextView)
        return false;
    insertIntoPlainText(pane->plainTextView(), text);
    return true;
}

} // namespace tl::app
