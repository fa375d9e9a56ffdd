#include "action_registry.h"

#include "icons.h"

#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QToolBar>
#include <QUndoStack>

namespace tl::app {

namespace {

using Rule = std::function<bool(const ActionState &)>;

struct ActionSpec
{
    ActionId id;
    const char *text;
    QKeySequence shortcut;
    const char *icon;
    Rule enabled;
    bool checkable = false;
};

bool always(const ActionState &)
{
    return true;
}

const std::vector<ActionSpec> &specs()
{
    using K = QKeySequence;
    static const std::vector<ActionSpec> table{
        {ActionId::NewDocument, "&New Document", K(K::New), "document-new",
         [](const ActionState &s) { return s.bookShown; }},
        {ActionId::NewBook, "New &Book", K(QStringLiteral("Ctrl+Shift+N")), "folder-new",
         [](const ActionState &s) { return s.hasLibrary; }},
        {ActionId::Import, "&Import...", K(QStringLiteral("Ctrl+Shift+I")), "document-import",
         [](const ActionState &s) { return s.bookShown; }},
        {ActionId::ChooseLibrary, "Choose &Library Folder...", K(), "folder-open", always},
        {ActionId::Save, "&Save", K(K::Save), "document-save",
         [](const ActionState &s) { return s.documentShown; }},
        {ActionId::Rename, "&Rename", K(Qt::Key_F2), nullptr,
         [](const ActionState &s) { return s.oneItemSelected; }},
        {ActionId::Duplicate, "D&uplicate", K(QStringLiteral("Ctrl+D")), nullptr,
         [](const ActionState &s) { return s.oneItemSelected; }},
        {ActionId::DuplicateAsPlainText, "Plain Text", K(), nullptr,
         [](const ActionState &s) { return s.documentSelected; }},
        {ActionId::DuplicateAsMarkdown, "Markdown", K(), nullptr,
         [](const ActionState &s) { return s.documentSelected; }},
        {ActionId::DuplicateAsFormatted, "Formatted Document", K(), nullptr,
         [](const ActionState &s) { return s.documentSelected; }},
        {ActionId::DuplicateAsFountain, "Fountain Screenplay", K(), nullptr,
         [](const ActionState &s) { return s.documentSelected; }},
        {ActionId::DuplicateAsLatex, "LaTeX", K(), nullptr,
         [](const ActionState &s) { return s.documentSelected; }},
        {ActionId::Compile, "&Compile...", K(), nullptr,
         [](const ActionState &s) { return s.itemsSelected || s.bookShown; }},
        {ActionId::CreateEBook, "Create &E-Book...", K(), nullptr,
         [](const ActionState &s) { return s.itemsSelected || s.bookShown; }},
        {ActionId::MoveToTrash, "Move to &Trash", K(K::Delete), "user-trash",
         [](const ActionState &s) { return s.itemsSelected; }},
        {ActionId::ShowInFileManager, "Show in File &Manager", K(), "system-file-manager",
         [](const ActionState &s) { return s.oneItemSelected; }},
        {ActionId::OpenWithDefaultApplication, "Open With Default Application", K(), nullptr,
         [](const ActionState &s) { return s.documentSelected; }},
        {ActionId::CopyLink, "Copy &Link", K(), nullptr,
         [](const ActionState &s) { return s.oneItemSelected; }},
        {ActionId::CopyMarkdownLink, "Copy &Markdown Link", K(), nullptr,
         [](const ActionState &s) { return s.oneItemSelected; }},
        {ActionId::CheckLinks, "Check Lin&ks", K(), nullptr,
         [](const ActionState &s) { return s.hasLibrary; }},
        {ActionId::Pin, "&Pin to Top", K(QStringLiteral("Ctrl+Shift+P")), "view-pin",
         [](const ActionState &s) { return s.oneItemSelected; }},
        {ActionId::ToggleFavorite, "&Favorite", K(QStringLiteral("Ctrl+Shift+F")), "starred",
         [](const ActionState &s) { return s.itemsSelected; }},
        {ActionId::TogglePlainAndFormatted, "Toggle Plain &Text and Formatted View",
         K(QStringLiteral("Ctrl+Shift+T")), "format-text-rich",
         [](const ActionState &s) { return s.canToggleView; }},
        {ActionId::ShowOutline, "Show &Outline", K(QStringLiteral("Ctrl+Alt+1")), nullptr,
         [](const ActionState &s) { return s.hasLibrary; }, true},
        {ActionId::ShowDocumentList, "Show Document &List", K(QStringLiteral("Ctrl+Alt+2")),
         nullptr, [](const ActionState &s) { return s.hasLibrary; }, true},
        {ActionId::Filter, "&Filter Documents", K(K::Find), "edit-find",
         [](const ActionState &s) { return s.hasLibrary; }},
        {ActionId::Refresh, "&Reload", K(K::Refresh), "view-refresh",
         [](const ActionState &s) { return s.hasLibrary; }},
        {ActionId::Server, "&Server...", K(), "network-server", always},
        {ActionId::Quit, "&Quit", K(K::Quit), "application-exit", always},
        {ActionId::About, "&About Tavelle", K(), "help-about", always},
        {ActionId::ToggleTaskList, "Make Task List", K(), nullptr,
         [](const ActionState &s) { return s.booksSelected; }},
        {ActionId::SetDueDate, "Set Due &Date...", K(QStringLiteral("Ctrl+Shift+D")), nullptr,
         [](const ActionState &s) { return s.tasksSelected; }},
        {ActionId::ExtractTasks, "E&xtract Tasks", K(), nullptr,
         [](const ActionState &s) { return s.documentShown; }},
        {ActionId::TranscribeRecording, "Transcribe Recording", K(), nullptr,
         [](const ActionState &s) {
             return s.recordingSelected && s.transcriptionRefusal.isEmpty();
         }},
        {ActionId::InsertLocation, "Insert Location", K(), nullptr,
         [](const ActionState &s) { return s.textEditorShown; }},
        {ActionId::QuickNote, "New &Quick Note", K(QStringLiteral("Ctrl+Alt+N")), nullptr,
         [](const ActionState &s) { return s.hasLibrary; }},
        {ActionId::InsertSelection, "&Insert Selected Text", K(), nullptr,
         [](const ActionState &s) { return s.documentShown; }},
        {ActionId::RecognizeText, "Reco&gnize Text", K(), nullptr,
         [](const ActionState &s) { return s.recognizableSelected; }},
        {ActionId::Paste, "&Paste", K(K::Paste), "edit-paste",
         [](const ActionState &s) { return s.bookShown; }},
    };
    return table;
}

QIcon swatch(const QColor &color)
{
    QPixmap picture(16, 16);
    picture.fill(Qt::transparent);
    if (color.isValid()) {
        QPainter p(&picture);
        p.setRenderHint(QPainter::Antialiasing);
        p.setBrush(color);
        p.setPen(color.darker(130));
        p.drawEllipse(QRectF(2, 2, 12, 12));
    }
    return QIcon(picture);
}

QString labelTitle(const QString &name)
{
    if (name == u"Auto")
        return QStringLiteral("Auto (from the book)");
    if (name == u"default")
        return QStringLiteral("None");
    return name.left(1).toUpper() + name.mid(1);
}

} // namespace

QKeySequence defaultShortcut(ActionId id)
{
    for (const ActionSpec &spec : specs())
        if (spec.id == id)
            return spec.shortcut;
    return {};
}

ActionRegistry::ActionRegistry(QUndoStack *undoStack, QObject *parent) : QObject(parent)
{
    for (const ActionSpec &spec : specs()) {
        auto *action = new QAction(QString::fromLatin1(spec.text), this);
        if (!spec.shortcut.isEmpty())
            action->setShortcut(spec.shortcut);
        if (spec.icon)
            action->setIcon(themeIcon(QString::fromLatin1(spec.icon)));
        action->setCheckable(spec.checkable);
        m_actions.insert(spec.id, action);
        m_rules.insert(spec.id, spec.enabled);
    }
    // Move to Trash also answers Backspace, as file managers do.
    action(ActionId::MoveToTrash)->setShortcuts({QKeySequence::Delete, Qt::Key_Backspace});
    action(ActionId::Quit)->setMenuRole(QAction::QuitRole);
    // Paste makes a document only where the outline or the list has the
    // keyboard; editors and fields paste into themselves.
    action(ActionId::Paste)->setShortcutContext(Qt::WidgetWithChildrenShortcut);

    m_undo = undoStack->createUndoAction(this, QStringLiteral("&Undo"));
    m_undo->setShortcut(QKeySequence::Undo);
    m_undo->setIcon(themeIcon(QStringLiteral("edit-undo")));
    m_redo = undoStack->createRedoAction(this, QStringLiteral("&Redo"));
    m_redo->setShortcut(QKeySequence::Redo);

    for (const QString &name : colorLabelNames()) {
        auto *label = new QAction(swatch(colorForLabel(name)), labelTitle(name), this);
        label->setData(name);
        m_colorLabels << label;
    }
}

void ActionRegistry::onTriggered(ActionId id, std::function<void()> handler)
{
    connect(action(id), &QAction::triggered, this, [handler] { handler(); });
}

void ActionRegistry::onColorLabel(std::function<void(const QString &)> handler)
{
    for (QAction *label : m_colorLabels)
        connect(label, &QAction::triggered, this,
                [handler, label] { handler(label->data().toString()); });
}

void ActionRegistry::update(const ActionState &state)
{
    for (auto it = m_rules.cbegin(); it != m_rules.cend(); ++it)
        m_actions.value(it.key())->setEnabled(it.value()(state));
    for (QAction *label : m_colorLabels)
        label->setEnabled(state.itemsSelected);
    action(ActionId::ToggleTaskList)
        ->setText(state.taskListSelected ? QStringLiteral("Stop Being a Task List")
                                         : QStringLiteral("Make Task List"));
    // A disabled Transcribe Recording says why where the menu shows it.
    QAction *transcribe = action(ActionId::TranscribeRecording);
    transcribe->setToolTip(state.transcriptionRefusal.isEmpty() ? transcribe->text()
                                                                : state.transcriptionRefusal);
    transcribe->setStatusTip(state.transcriptionRefusal);
}

QMenu *ActionRegistry::colorLabelMenu(QWidget *parent) const
{
    auto *menu = new QMenu(QStringLiteral("&Colour Label"), parent);
    menu->addActions(m_colorLabels);
    return menu;
}

QMenu *ActionRegistry::duplicateAsMenu(QWidget *parent) const
{
    auto *menu = new QMenu(QStringLiteral("Duplicate &As"), parent);
    for (ActionId id : {ActionId::DuplicateAsPlainText, ActionId::DuplicateAsMarkdown,
                        ActionId::DuplicateAsFormatted, ActionId::DuplicateAsFountain,
                        ActionId::DuplicateAsLatex})
        menu->addAction(action(id));
    return menu;
}

void ActionRegistry::fillMenuBar(QMenuBar *bar) const
{
    QMenu *file = bar->addMenu(QStringLiteral("&File"));
    file->addAction(action(ActionId::NewDocument));
    file->addAction(action(ActionId::NewBook));
    file->addAction(action(ActionId::QuickNote));
    file->addAction(action(ActionId::Import));
    file->addSeparator();
    file->addAction(action(ActionId::Save));
    file->addAction(action(ActionId::Duplicate));
    file->addMenu(duplicateAsMenu(file));
    file->addAction(action(ActionId::Compile));
    file->addAction(action(ActionId::CreateEBook));
    file->addSeparator();
    file->addAction(action(ActionId::ShowInFileManager));
    file->addAction(action(ActionId::OpenWithDefaultApplication));
    file->addSeparator();
    file->addAction(action(ActionId::ChooseLibrary));
    file->addAction(action(ActionId::Server));
    file->addSeparator();
    file->addAction(action(ActionId::Quit));

    QMenu *edit = bar->addMenu(QStringLiteral("&Edit"));
    edit->addAction(m_undo);
    edit->addAction(m_redo);
    edit->addSeparator();
    edit->addAction(action(ActionId::InsertSelection));
    edit->addSeparator();
    edit->addAction(action(ActionId::Rename));
    edit->addAction(action(ActionId::MoveToTrash));
    edit->addAction(action(ActionId::InsertLocation));
    edit->addSeparator();
    edit->addAction(action(ActionId::Filter));

    QMenu *item = bar->addMenu(QStringLiteral("&Item"));
    item->addAction(action(ActionId::Pin));
    item->addAction(action(ActionId::ToggleFavorite));
    item->addMenu(colorLabelMenu(item));
    item->addSeparator();
    item->addAction(action(ActionId::CopyLink));
    item->addAction(action(ActionId::CopyMarkdownLink));
    item->addAction(action(ActionId::CheckLinks));
    item->addSeparator();
    item->addAction(action(ActionId::ToggleTaskList));
    item->addAction(action(ActionId::SetDueDate));
    item->addAction(action(ActionId::ExtractTasks));
    item->addSeparator();
    item->addAction(action(ActionId::RecognizeText));
    item->addAction(action(ActionId::TranscribeRecording));
    item->setToolTipsVisible(true);

    QMenu *view = bar->addMenu(QStringLiteral("&View"));
    view->addAction(action(ActionId::TogglePlainAndFormatted));
    view->addSeparator();
    view->addAction(action(ActionId::ShowOutline));
    view->addAction(action(ActionId::ShowDocumentList));
    view->addSeparator();
    view->addAction(action(ActionId::Refresh));

    QMenu *help = bar->addMenu(QStringLiteral("&Help"));
    help->addAction(action(ActionId::About));
}

void ActionRegistry::fillToolBar(QToolBar *bar) const
{
    bar->addAction(action(ActionId::NewDocument));
    bar->addAction(action(ActionId::NewBook));
    bar->addSeparator();
    bar->addAction(action(ActionId::MoveToTrash));
    bar->addAction(m_undo);
    bar->addSeparator();
    bar->addAction(action(ActionId::TogglePlainAndFormatted));
    bar->addAction(action(ActionId::Pin));
}

void ActionRegistry::fillItemMenu(QMenu *menu) const
{
    menu->addAction(action(ActionId::Rename));
    menu->addAction(action(ActionId::Duplicate));
    menu->addMenu(duplicateAsMenu(menu));
    menu->addAction(action(ActionId::Compile));
    menu->addAction(action(ActionId::CreateEBook));
    menu->addSeparator();
    menu->addAction(action(ActionId::Pin));
    menu->addAction(action(ActionId::ToggleFavorite));
    menu->addMenu(colorLabelMenu(menu));
    menu->addSeparator();
    menu->addAction(action(ActionId::ToggleTaskList));
    menu->addAction(action(ActionId::SetDueDate));
    menu->addSeparator();
    menu->addAction(action(ActionId::RecognizeText));
    menu->addAction(action(ActionId::TranscribeRecording));
    menu->setToolTipsVisible(true);
    menu->addSeparator();
    menu->addAction(action(ActionId::ShowInFileManager));
    menu->addAction(action(ActionId::OpenWithDefaultApplication));
    menu->addSeparator();
    menu->addAction(action(ActionId::MoveToTrash));
}

} // namespace tl::app
