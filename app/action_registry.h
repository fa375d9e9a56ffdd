#pragma once

#include <QAction>
#include <QHash>
#include <QKeySequence>
#include <QObject>
#include <QStringList>
#include <functional>

class QMenu;
class QMenuBar;
class QToolBar;
class QUndoStack;

// Every command of the window, made once, with its shortcut and the rule
// that tells when it can run. Menus, the toolbar and context menus show
// these same actions.
namespace tl::app {

// What the rules look at; the main window gathers it from its panes.
struct ActionState
{
    bool hasLibrary = false;
    bool bookShown = false;     // a plain book is shown in the list
    bool itemsSelected = false; // list or outline rows that are items
    bool oneItemSelected = false;
    bool documentSelected = false;     // one selected item that is a document
    bool documentShown = false;        // the document view shows a file
    bool canToggleView = false;        // plain text and formatted can swap
    bool booksSelected = false;        // every selected item is a book
    bool taskListSelected = false;     // the first selected book is a task list
    bool tasksSelected = false;        // every selected item is a task
    bool recordingSelected = false;    // one selected item that is a sound recording
    bool textEditorShown = false;      // the document view takes inserted text
    bool recognizableSelected = false; // an image or PDF selected or shown
    // Why recordings cannot be transcribed; empty when they can.
    QString transcriptionRefusal;
};

enum class ActionId {
    NewDocument,
    NewBook,
    Import,
    ChooseLibrary,
    Save,
    Rename,
    Duplicate,
    DuplicateAsPlainText,
    DuplicateAsMarkdown,
    DuplicateAsFormatted,
    DuplicateAsFountain,
    DuplicateAsLatex,
    Compile,
    CreateEBook,
    MoveToTrash,
    ShowInFileManager,
    OpenWithDefaultApplication,
    CopyLink,
    CopyMarkdownLink,
    CheckLinks,
    Pin,
    ToggleFavorite,
    TogglePlainAndFormatted,
    ShowOutline,
    ShowDocumentList,
    Filter,
    Refresh,
    Server,
    Quit,
    About,
    ToggleTaskList,
    SetDueDate,
    ExtractTasks,
    TranscribeRecording,
    InsertLocation,
    QuickNote,
    InsertSelection,
    RecognizeText,
    Paste,
};

// The action's shortcut, for windows other than the main one that offer it.
QKeySequence defaultShortcut(ActionId id);

class ActionRegistry : public QObject
{
    Q_OBJECT
public:
    ActionRegistry(QUndoStack *undoStack, QObject *parent);

    QAction *action(ActionId id) const { return m_actions.value(id); }
    QAction *undoAction() const { return m_undo; }
    QAction *redoAction() const { return m_redo; }
    // The colour label actions; each carries its label name as data.
    const QList<QAction *> &colorLabelActions() const { return m_colorLabels; }

    // Calls the handler when the action is triggered.
    void onTriggered(ActionId id, std::function<void()> handler);
    void onColorLabel(std::function<void(const QString &)> handler);

    void update(const ActionState &state);

    // The menu bar and toolbar of the main window.
    void fillMenuBar(QMenuBar *bar) const;
    void fillToolBar(QToolBar *bar) const;
    // The menu of list and outline rows.
    void fillItemMenu(QMenu *menu) const;

private:
    QMenu *colorLabelMenu(QWidget *parent) const;
    QMenu *duplicateAsMenu(QWidget *parent) const;

    QHash<ActionId, QAction *> m_actions;
    QHash<ActionId, std::function<bool(const ActionState &)>> m_rules;
    QList<QAction *> m_colorLabels;
    QAction *m_undo = nullptr;
    QAction *m_redo = nullptr;
};

} // namespace tl::app
