#include "main_window.h"

#include "action_registry.h"
#include "browser/document_list.h"
#include "browser/document_list_model.h"
#include "browser/event_bridge.h"
#include "browser/item_drops.h"
#include "browser/outline_controller.h"
#include "browser/search_field.h"
#include "contexts_menu.h"
#include "document/document_pane.h"
#include "document/plain_text_view.h"
#include "document_list_pane.h"
#include "document_windows.h"
#include "due_date_dialog.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "foundation/path_string.h"
#include "importers/current_location.h"
#include "importers/text_recognition.h"
#include "importing/import_runner.h"
#include "inline_renamer.h"
#include "item_actions.h"
#include "link_actions.h"
#include "outline_pane.h"
#include "publishing/publish_runner.h"
#include "quick_entry_window.h"
#include "recognition/text_recognition_runner.h"
#include "recognition/transcription_runner.h"
#include "script_pages_label.h"
#include "server_pane.h"
#include "shell/app_state.h"
#include "store/extensions.h"
#include "store/item_path.h"
#include "store/library_root.h"
#include "store/task_records.h"
#include "sync_status.h"
#include "tasks/task_list.h"
#include "theme.h"
#include "window_layout.h"

#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>
#include <QTreeView>
#include <QUndoStack>

namespace tl::app {

using browser::EventBridge;

namespace {

void post(const char *name, const QVariantMap &payload = {})
{
    NotificationCenter::defaultCenter().post(QLatin1String(name), payload);
}

} // namespace

MainWindow::MainWindow(EventBridge &bridge, QWidget *parent)
    : QMainWindow(parent), m_bridge(bridge), m_undo(new QUndoStack(this)),
      m_actions(new ActionRegistry(m_undo, this)), m_items(new ItemActions(m_undo, this)),
      m_outlineController(std::make_unique<browser::TLKSOutlineViewController>()),
      m_listController(std::make_unique<browser::TLKSDocumentListViewController>()),
      m_listModel(std::make_unique<browser::DocumentListModel>(*m_listController)),
      m_panes(new QSplitter(Qt::Horizontal, this)), m_status(new QLabel(this)),
      m_scriptPages(new ScriptPagesLabel(this))
{
    setObjectName(QStringLiteral("mainWindow"));
    m_listModel->connectToBridge(bridge);
    m_outline = new OutlinePane(*m_outlineController, bridge, *m_actions, m_panes);
    m_list = new DocumentListPane(*m_listModel, m_outlineController->model(), bridge, *m_actions,
                                  m_panes);
    m_document = new DocumentPane(m_panes);
    addDocumentPane(m_document);
    for (QWidget *pane : {static_cast<QWidget *>(m_outline), static_cast<QWidget *>(m_list),
                          static_cast<QWidget *>(m_document)})
        m_panes->addWidget(pane);
    m_panes->setStretchFactor(2, 1);
    m_panes->setChildrenCollapsible(false);
    m_panes->setHandleWidth(1);
    // A hairline between the panes: the list and an empty document view
    // share the window's colour.
    m_panes->setStyleSheet(QStringLiteral("QSplitter::handle { background: palette(mid); }"));
    setCentralWidget(m_panes);

    m_listRenamer =
        new InlineRenamer(m_list->view(), [this](const QModelIndex &index, const QString &name) {
            m_items->rename(index.data(browser::DocumentListModel::PathRole).toString(), name);
        });
    m_outlineRenamer =
        new InlineRenamer(m_outline->view(), [this](const QModelIndex &index, const QString &name) {
            m_items->rename(index.data(browser::OutlineModel::PathRole).toString(), name);
        });

    m_actions->fillMenuBar(menuBar());
    addContextsMenuBar(menuBar(), this);
    followContexts(bridge, *m_outlineController, this);
    auto *toolbar = addToolBar(QStringLiteral("Toolbar"));
    toolbar->setObjectName(QStringLiteral("toolbar"));
    toolbar->setMovable(false);
    toolbar->setIconSize(QSize(20, 20));
    toolbar->setToolButtonStyle(Qt::ToolButtonIconOnly);
    m_actions->fillToolBar(toolbar);
    statusBar()->addWidget(m_status, 1);
    statusBar()->addPermanentWidget(m_scriptPages);
    statusBar()->addPermanentWidget(new SyncStatusLabel(bridge, this));
    followUnresolvedConflicts(bridge, *m_outlineController, this);
    buildActions();

    connect(&bridge, &EventBridge::showItemAtPath, this, &MainWindow::showItemAtPath);
    connect(m_outline, &OutlinePane::selectionChanged, this, &MainWindow::updateActions);
    connect(m_list, &DocumentListPane::selectionChanged, this, &MainWindow::updateActions);
    connect(m_list->searchField(), &browser::SearchFieldController::searchResultsShown, m_outline,
            [this](bool shown) { m_outline->showSearchResults(shown, m_list->shownBook()); });
    connect(m_document, &DocumentPane::stateChanged, this, [this] {
        updateTitle();
        updateActions();
        if (!m_document->shownPath().isEmpty())
            m_list->selectSilently(m_document->shownPath());
    });
    connect(m_listModel.get(), &QAbstractItemModel::modelReset, this, &MainWindow::updateActions);
    // Pages follow the theme: the formatted view's style sheets are adjusted anew.
    connect(&Theme::instance(), &Theme::changed, this, [] { post(events::ReloadCurrentDocument); });
    restoreWindowLayout(this, m_panes);
    updateTitle();
    updateActions();
}

MainWindow::~MainWindow() = default;

void MainWindow::buildActions()
{
    ActionRegistry &a = *m_actions;
    a.onTriggered(ActionId::NewDocument, [this] { newDocument(); });
    a.onTriggered(ActionId::NewBook, [this] { newBook(); });
    a.onTriggered(ActionId::ChooseLibrary, [] { shell::appDelegate().tl_selectTavelleRoot(); });
    a.onTriggered(ActionId::Save, [] { post(events::SaveCurrentDocument); });
    a.onTriggered(ActionId::Rename, [this] { startRename(); });
    a.onTriggered(ActionId::Duplicate, [this] {
        for (const QString &path : selectedItems())
            m_items->duplicate(path);
    });
    const std::pair<ActionId, const char *> kinds[] = {{ActionId::DuplicateAsPlainText, "txt"},
                                                       {ActionId::DuplicateAsMarkdown, "md"},
                                                       {ActionId::DuplicateAsFormatted, "html"},
                                                       {ActionId::DuplicateAsFountain, "fountain"},
                                                       {ActionId::DuplicateAsLatex, "tex"}};
    for (const auto &[id, kind] : kinds)
        a.onTriggered(id, [this, kind = QString::fromLatin1(kind)] {
            for (const QString &path : selectedItems())
                m_items->duplicateAs(path, kind);
        });
    auto *importing = new ImportRunner(this);
    a.onTriggered(ActionId::Import,
                  [this, importing] { importing->chooseAndImport(m_list->shownBook()); });
    connect(m_document, &DocumentPane::notesImportRequested, importing,
            &ImportRunner::offerEvernoteImport);
    browser::setDroppedFileImport(
        [importing = QPointer(importing)](const QStringList &paths, const QString &book) {
            return importing ? importing->importFiles(paths, book) : paths;
        });
    auto *publishing = new PublishRunner(this);
    a.onTriggered(ActionId::Compile, [this, publishing] {
        publishing->compile(selectedItems(), m_list->shownBook());
    });
    a.onTriggered(ActionId::CreateEBook, [this, publishing] {
        publishing->createEBook(selectedItems(), m_list->shownBook());
    });
    a.onTriggered(ActionId::MoveToTrash, [this] { m_items->moveToTrash(selectedItems()); });
    a.onTriggered(ActionId::ShowInFileManager, [this] {
        if (!selectedItems().isEmpty())
            m_items->showInFileManager(selectedItems().first());
    });
    a.onTriggered(ActionId::OpenWithDefaultApplication, [this] {
        if (!selectedItems().isEmpty())
            m_items->openWithDefaultApplication(selectedItems().first());
    });
    a.onTriggered(ActionId::Pin, [this] {
        if (!selectedItems().isEmpty())
            m_items->pin(selectedItems().first());
    });
    a.onTriggered(ActionId::ToggleFavorite, [this] { m_items->toggleFavorite(selectedItems()); });
    a.onTriggered(ActionId::CopyLink, [this] { copyLinkToClipboard(selectedItems().value(0)); });
    a.onTriggered(ActionId::CopyMarkdownLink,
                  [this] { copyMarkdownLinkToClipboard(selectedItems().value(0)); });
    a.onTriggered(ActionId::CheckLinks, [this] {
        checkLinks(m_list->shownBook().isEmpty() ? store::libraryRoot() : m_list->shownBook());
    });
    a.onColorLabel([this](const QString &name) { m_items->setColorLabel(selectedItems(), name); });
    a.onTriggered(ActionId::TogglePlainAndFormatted, [this] { m_document->toggleView(); });
    a.onTriggered(ActionId::ShowOutline, [this] {
        m_outline->setVisible(m_actions->action(ActionId::ShowOutline)->isChecked());
    });
    a.onTriggered(ActionId::ShowDocumentList, [this] {
        m_list->setVisible(m_actions->action(ActionId::ShowDocumentList)->isChecked());
    });
    a.onTriggered(ActionId::Filter, [this] {
        m_list->show();
        m_list->filterField()->setFocus();
        m_list->filterField()->selectAll();
    });
    a.onTriggered(ActionId::Refresh, [this] {
        post(events::ReloadCurrentBook, {{"path", m_list->shownBook()}});
    });
    a.onTriggered(ActionId::Server, [this] { ServerPane(this).exec(); });
    a.onTriggered(ActionId::ToggleTaskList, [this] {
        for (const QString &book : selectedItems())
            tasks::tl_toggleTasklistKeepingDetails(book, true);
        updateActions();
    });
    a.onTriggered(ActionId::SetDueDate,
                  [this] { DueDateDialog::editItems(selectedItems(), this); });
    a.onTriggered(ActionId::ExtractTasks, [this] { m_document->controller().tl_extractTasks(); });
    m_transcriber = new TranscriptionRunner(this);
    a.onTriggered(ActionId::TranscribeRecording,
                  [this] { m_transcriber->transcribe(selectedItems().value(0)); });
    auto *location = new importers::CurrentLocation(this);
    connect(location, &importers::CurrentLocation::located, m_document,
            &DocumentPane::insertLocation);
    a.onTriggered(ActionId::InsertLocation, [location] { location->start(); });
    a.onTriggered(ActionId::QuickNote, [] { tl_addQuickEntry(); });
    // Text selected in another program, as the desktop's primary selection.
    a.onTriggered(ActionId::InsertSelection, [] {
        insertIntoCurrentDocument(QGuiApplication::clipboard()->text(QClipboard::Selection));
    });
    m_recognition = new TextRecognitionRunner(this);
    a.onTriggered(ActionId::RecognizeText,
                  [this] { m_recognition->recognize(recognitionTarget()); });
    connect(m_recognition, &TextRecognitionRunner::finished, this,
            [this](const QString &document, bool stopped) {
                if (document.isEmpty() && !stopped)
                    statusBar()->showMessage(QStringLiteral("No text recognized"), 5000);
            });
    a.onTriggered(ActionId::Paste, [this] {
        const QMimeData *clipboard = QGuiApplication::clipboard()->mimeData();
        if (clipboard && m_list->showsPlainBook())
            browser::addDocumentFromMimeData(*clipboard, m_list->shownBook());
    });
    m_list->view()->addAction(a.action(ActionId::Paste));
    m_outline->view()->addAction(a.action(ActionId::Paste));
    a.onTriggered(ActionId::Quit, [] { QApplication::quit(); });
    a.onTriggered(ActionId::About, [this] {
        QMessageBox::about(this, QStringLiteral("About Tavelle"),
                           QStringLiteral("<b>Tavelle %1</b><p>Documents, notes and tasks in a "
                                          "folder of your own.</p>")
                               .arg(QApplication::applicationVersion()));
    });
}

void MainWindow::openLibrary()
{
    m_outlineController->model().resetTree();
    m_outlineController->initFileCoordinationAndTaskLists();
    m_outline->expandSavedPaths();
    updateTitle();
    updateActions();
}

void MainWindow::showAllPanes()
{
    m_outline->show();
    m_list->show();
    m_document->show();
    updateActions();
}

void MainWindow::showItemAtPath(const QString &path)
{
    if (path.isEmpty())
        return;
    const QString item = store::tl_pathWithoutAnchor(path);
    const bool isBook = store::tl_pathIsBook(item);
    m_outline->selectBook(isBook ? item : path::deletingLastComponent(item));
    if (!isBook) {
        m_list->selectSilently(item);
        post(events::NewDocumentSelected, {{"path", path}});
    }
}

void MainWindow::newDocument()
{
    if (!m_list->showsPlainBook())
        return;
    m_document->controller().newDocumentInBook(m_list->shownBook());
    m_document->plainTextView()->setFocus();
}

void MainWindow::newBook()
{
    QString parent = m_outline->selectedIsBook() ? m_outline->selectedPath() : store::libraryRoot();
    if (parent.isEmpty())
        parent = store::libraryRoot();
    m_items->newBook(parent);
}

void MainWindow::startRename()
{
    if (focusInOutline()) {
        const QModelIndex index = m_outline->view()->currentIndex();
        if (m_outline->selectedIsBook() && index.parent().isValid())
            m_outlineRenamer->start(index, path::lastComponent(m_outline->selectedPath()));
        return;
    }
    const QStringList paths = m_list->selectedPaths();
    if (paths.size() == 1)
        m_listRenamer->start(m_list->view()->currentIndex(), path::lastComponent(paths.first()));
}

bool MainWindow::focusInOutline() const
{
    return m_outline->view()->hasFocus();
}

QStringList MainWindow::selectedItems() const
{
    if (focusInOutline()) {
        if (m_outline->selectedIsBook() && m_outline->view()->currentIndex().parent().isValid())
            return {m_outline->selectedPath()};
        return {};
    }
    return m_list->selectedPaths();
}

QString MainWindow::recognitionTarget() const
{
    const QStringList items = selectedItems();
    if (items.size() == 1 && !focusInOutline() && importers::tl_canRecognizeText(items.first()))
        return items.first();
    const QString shown = m_document->shownPath();
    return importers::tl_canRecognizeText(shown) ? shown : QString();
}

void MainWindow::updateActions()
{
    ActionState state;
    state.hasLibrary = !store::libraryRoot().isEmpty();
    state.bookShown = m_list->showsPlainBook();
    const QStringList items = selectedItems();
    state.itemsSelected = !items.isEmpty();
    state.oneItemSelected = items.size() == 1;
    state.documentSelected = !focusInOutline() && m_list->selectedIsDocument();
    state.documentShown = !m_document->shownPath().isEmpty();
    state.canToggleView = m_document->canToggleView();
    state.booksSelected = state.itemsSelected &&
                          std::all_of(items.cbegin(), items.cend(),
                                      [](const QString &p) { return store::tl_pathIsBook(p); });
    state.taskListSelected = state.booksSelected && store::tl_bookIsTasklist(items.first());
    state.tasksSelected =
        state.itemsSelected && std::all_of(items.cbegin(), items.cend(), store::tl_itemIsTask);
    state.recordingSelected =
        state.documentSelected && state.oneItemSelected &&
        store::audioExtensions().contains(store::lowerCasedExtension(items.first()));
    state.textEditorShown = m_document->canInsertText();
    state.transcriptionRefusal = m_transcriber->refusal();
    state.recognizableSelected = !recognitionTarget().isEmpty();
    m_actions->update(state);
    m_actions->action(ActionId::ShowOutline)->setChecked(!m_outline->isHidden());
    m_actions->action(ActionId::ShowDocumentList)->setChecked(!m_list->isHidden());
}

void MainWindow::updateTitle()
{
    const QString shown = m_document->shownPath();
    const QString root = store::libraryRoot();
    setWindowTitle(shown.isEmpty()
                       ? QStringLiteral("%1[*] — Tavelle").arg(path::lastComponent(root))
                       : QStringLiteral("%1[*] — Tavelle").arg(path::lastComponent(shown)));
    m_status->setText(shown.isEmpty() ? root : shown.mid(root.size() + 1));
    m_scriptPages->follow(shown);
}

shell::WindowState MainWindow::windowState() const
{
    shell::WindowState state;
    state.mainWindowVisible = isVisible();
    state.shownDocument = m_document->shownPath();
    state.expandedPaths =
        shell::readAppState().value(QLatin1String(shell::kExpandedPaths)).toList();
    return state;
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    saveWindowLayout(this, m_panes);
    QMainWindow::closeEvent(event);
}

} // namespace tl::app
