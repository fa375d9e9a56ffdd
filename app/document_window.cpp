#include "document_window.h"

#include "action_registry.h"
#include "document/document_pane.h"
#include "document_windows.h"
#include "foundation/path_string.h"
#include "icons.h"
#include "platform/settings.h"
#include "shell/shell_keys.h"
#include "store/item_path.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileInfo>
#include <QFileSystemWatcher>
#include <QMenuBar>
#include <QShortcut>
#include <QVBoxLayout>

namespace tl::app {

DocumentWindow::DocumentWindow(const QString &untitled, QWidget *parent)
    : QWidget(parent, Qt::Window), m_untitled(untitled), m_document(new DocumentPane(this)),
      m_layout(new QVBoxLayout(this)), m_watcher(new QFileSystemWatcher(this))
{
    setAttribute(Qt::WA_DeleteOnClose);
    browser::TLKSDocumentViewController &controller = m_document->controller();
    // A window of its own: it keeps its document when the list selects another.
    controller.isMainWindow = false;
    addDocumentPane(m_document);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSpacing(0);
    m_layout->addWidget(m_document, 1);

    connect(new QShortcut(QKeySequence::Save, this), &QShortcut::activated, this,
            [&controller] { controller.writeTextToFile(); });
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
    connect(new QShortcut(defaultShortcut(ActionId::TogglePlainAndFormatted), this),
            &QShortcut::activated, this, [this] {
                if (m_document->canToggleView())
                    m_document->toggleView();
            });
    connect(m_document, &DocumentPane::stateChanged, this, [this] {
        updateTitle();
        watchOutsideFile();
    });
    connect(m_watcher, &QFileSystemWatcher::fileChanged, this, [this](const QString &file) {
        // A save through a temporary file replaces the file the watch was on.
        watchOutsideFile();
        m_document->controller().checkIfDocumentNeedsReload(file);
    });
    updateTitle();
}

void DocumentWindow::setMenuBar(QMenuBar *bar)
{
    m_layout->setMenuBar(bar);
}

void DocumentWindow::updateTitle()
{
    const QString &path = m_document->controller().path;
    setWindowTitle(QStringLiteral("%1[*] — Tavelle")
                       .arg(path.isEmpty() ? m_untitled : path::lastComponent(path)));
}

void DocumentWindow::watchOutsideFile()
{
    const QString &path = m_document->controller().path;
    const QStringList watched = m_watcher->files();
    if (!watched.isEmpty() && watched != QStringList{path})
        m_watcher->removePaths(watched);
    if (!path.isEmpty() && !store::tl_itemIsChildOfTavelle(path) && QFileInfo::exists(path))
        m_watcher->addPath(path);
}

void DocumentWindow::closeEvent(QCloseEvent *event)
{
    browser::TLKSDocumentViewController &controller = m_document->controller();
    controller.writeTextToFile();
    controller.saveCurrentDocumentOffset();
    QWidget::closeEvent(event);
}

namespace {

const QLatin1String kExtraWindow("extraWindow");

} // namespace

// The way back to the library while its window is closed, and out of the
// program from any window.
void addMenuBar(DocumentWindow *window)
{
    auto *bar = new QMenuBar(window);
    QMenu *file = bar->addMenu(QStringLiteral("&File"));
    QAction *quit = file->addAction(themeIcon(QStringLiteral("application-exit")),
                                    QStringLiteral("&Quit"), qApp, &QApplication::quit);
    quit->setShortcut(QKeySequence::Quit);
    QMenu *windows = bar->addMenu(QStringLiteral("&Window"));
    QAction *library =
        windows->addAction(QStringLiteral("&Library Window"), window, &bringMainWindowToFront);
    library->setShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+L")));
    window->setMenuBar(bar);
}

namespace {

DocumentWindow *newExtraWindow(const QString &path)
{
    auto *window = new DocumentWindow(path::lastComponent(path));
    window->setObjectName(kExtraWindow);
    addMenuBar(window);
    window->resize(640, 720);
    return window;
}

} // namespace

DocumentWindow *openInExtraWindow(const QString &path)
{
    DocumentWindow *window = newExtraWindow(path);
    window->documentPane()->controller().selectNewDocument(path);
    bringToFront(window);
    return window;
}

void openItemsInNewWindow(const QStringList &paths)
{
    for (const QString &path : paths)
        if (!showInOpenWindow(path))
            openInExtraWindow(path);
}

QVariantList extraWindowDocuments()
{
    QVariantList documents;
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        const auto *window = qobject_cast<DocumentWindow *>(widget);
        if (!window || window->objectName() != kExtraWindow || !window->isVisible())
            continue;
        const QString &path = window->documentPane()->controller().path;
        if (!path.isEmpty())
            documents << QVariantMap{{QStringLiteral("path"), path}};
    }
    return documents;
}

void reopenDocuments(const QVariantList &documents, QWidget *mainWindow)
{
    for (const QVariant &document : documents) {
        const QString path = document.toMap().value(QStringLiteral("path")).toString();
        if (!QFileInfo::exists(path) || showInOpenWindow(path))
            continue;
        DocumentWindow *window = newExtraWindow(path);
        window->documentPane()->controller().showAgain(path);
        bringToFront(window);
    }
    if (mainWindow && !extraWindowDocuments().isEmpty() &&
        platform::settings().boolValue(QLatin1String(keys::setting::HideBrowserOnLaunch)))
        mainWindow->close();
}

} // namespace tl::app
