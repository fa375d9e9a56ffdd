#pragma once

#include "shell/app_delegate.h"

#include <QMainWindow>
#include <memory>

class QLabel;
class QSplitter;
class QUndoStack;

namespace tl::browser {
class DocumentListModel;
class EventBridge;
class TLKSDocumentListViewController;
class TLKSOutlineViewController;
} // namespace tl::browser

// The main window: the outline, the document list and the document view
// side by side, with the menus, the toolbar and the status line. It only
// puts the panes together and routes the commands to them.
namespace tl::app {

class ActionRegistry;
class ScriptPagesLabel;
class TranscriptionRunner;
class DocumentListPane;
class DocumentPane;
class InlineRenamer;
class ItemActions;
class OutlinePane;
class TextRecognitionRunner;
struct ActionState;

class MainWindow : public QMainWindow
{
    Q_OBJECT
public:
    explicit MainWindow(browser::EventBridge &bridge, QWidget *parent = nullptr);
    ~MainWindow() override;

    OutlinePane *outlinePane() const { return m_outline; }
    DocumentListPane *listPane() const { return m_list; }
    DocumentPane *documentPane() const { return m_document; }
    ActionRegistry &actions() const { return *m_actions; }
    browser::DocumentListModel &listModel() const { return *m_listModel; }
    TextRecognitionRunner &recognition() const { return *m_recognition; }

    // Reads the library: the tree, the watcher, the panes as they were left.
    void openLibrary();
    // Brings back every pane (after a crash).
    void showAllPanes();
    // What the end of the session keeps of this window.
    shell::WindowState windowState() const;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void buildActions();
    void showItemAtPath(const QString &path);
    void startRename();
    void newDocument();
    void newBook();
    void updateActions();
    void updateTitle();
    QStringList selectedItems() const;
    bool focusInOutline() const;
    // The selected image or PDF, else the one shown; empty for neither.
    QString recognitionTarget() const;

    browser::EventBridge &m_bridge;
    QUndoStack *m_undo;
    ActionRegistry *m_actions;
    ItemActions *m_items;
    std::unique_ptr<browser::TLKSOutlineViewController> m_outlineController;
    std::unique_ptr<browser::TLKSDocumentListViewController> m_listController;
    std::unique_ptr<browser::DocumentListModel> m_listModel;
    QSplitter *m_panes;
    OutlinePane *m_outline;
    DocumentListPane *m_list;
    DocumentPane *m_document;
    InlineRenamer *m_listRenamer;
    InlineRenamer *m_outlineRenamer;
    QLabel *m_status;
    ScriptPagesLabel *m_scriptPages;
    TranscriptionRunner *m_transcriber = nullptr;
    TextRecognitionRunner *m_recognition = nullptr;
};

} // namespace tl::app
