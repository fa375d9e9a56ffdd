#include "quick_entry_window.h"

#include "document/document_pane.h"
#include "document/plain_text_view.h"
#include "document_windows.h"
#include "foundation/path_string.h"
#include "shell/url_actions.h"
#include "store/library_root.h"

#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace tl::app {

QuickEntryWindow::QuickEntryWindow(QWidget *parent)
    : QWidget(parent, Qt::Window), m_document(new DocumentPane(this)), m_where(new QLabel(this))
{
    setObjectName(QStringLiteral("quickEntry"));
    setAttribute(Qt::WA_DeleteOnClose);
    resize(480, 320);
    browser::TLKSDocumentViewController &controller = m_document->controller();
    // A window of its own: it keeps its document when the list selects another.
    controller.isMainWindow = false;
    addDocumentPane(m_document);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Save)->setText(QStringLiteral("Save"));
    m_where->setEnabled(false);
    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(10, 6, 10, 8);
    bar->addWidget(m_where, 1);
    bar->addWidget(buttons);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_document, 1);
    layout->addLayout(bar);

    const auto save = [&controller] { controller.writeTextToFile(); };
    connect(buttons, &QDialogButtonBox::accepted, this, save);
    connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);
    connect(new QShortcut(QKeySequence::Save, this), &QShortcut::activated, this, save);
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QWidget::close);
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
    connect(m_document, &DocumentPane::stateChanged, this, &QuickEntryWindow::updateTitle);

    controller.newDocumentInBook(shell::defaultInboxOrRoot());
    m_document->plainTextView()->setPlaceholderText(
        QStringLiteral("Title on the first line, then the note"));
    m_document->plainTextView()->setFocus();
    updateTitle();
}

void QuickEntryWindow::updateTitle()
{
    const browser::TLKSDocumentViewController &controller = m_document->controller();
    setWindowTitle(
        controller.path.isEmpty()
            ? QStringLiteral("Quick Note[*] — Tavelle")
            : QStringLiteral("%1[*] — Tavelle").arg(path::lastComponent(controller.path)));
    const QString book = controller.parentPath == store::libraryRoot()
                             ? QStringLiteral("the top level")
                             : path::lastComponent(controller.parentPath);
    m_where->setText(
        (controller.path.isEmpty() ? QStringLiteral("Goes into %1") : QStringLiteral("Saved in %1"))
            .arg(book));
}

void QuickEntryWindow::closeEvent(QCloseEvent *event)
{
    m_document->controller().writeTextToFile();
    QWidget::closeEvent(event);
}

QuickEntryWindow *tl_addQuickEntry()
{
    auto *window = new QuickEntryWindow;
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}

} // namespace tl::app
