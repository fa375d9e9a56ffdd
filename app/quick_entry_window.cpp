#include "quick_entry_window.h"

#include "document/document_pane.h"
#include "document/plain_text_view.h"
#include "document_windows.h"
#include "foundation/path_string.h"
#include "shell/url_actions.h"
#include "store/library_root.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>

namespace tl::app {

QuickEntryWindow::QuickEntryWindow(QWidget *parent)
    : DocumentWindow(QStringLiteral("Quick Note"), parent), m_where(new QLabel(this))
{
    setObjectName(QStringLiteral("quickEntry"));
    resize(480, 320);
    browser::TLKSDocumentViewController &controller = documentPane()->controller();

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Save | QDialogButtonBox::Close, this);
    buttons->button(QDialogButtonBox::Save)->setText(QStringLiteral("Save"));
    m_where->setEnabled(false);
    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(10, 6, 10, 8);
    bar->addWidget(m_where, 1);
    bar->addWidget(buttons);
    contentLayout()->addLayout(bar);

    connect(buttons, &QDialogButtonBox::accepted, this,
            [&controller] { controller.writeTextToFile(); });
    connect(buttons, &QDialogButtonBox::rejected, this, &QWidget::close);
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
    connect(documentPane(), &DocumentPane::stateChanged, this, &QuickEntryWindow::updateWhere);

    controller.newDocumentInBook(shell::defaultInboxOrRoot());
    documentPane()->plainTextView()->setPlaceholderText(
        QStringLiteral("Title on the first line, then the note"));
    documentPane()->plainTextView()->setFocus();
    updateWhere();
}

void QuickEntryWindow::updateWhere()
{
    const browser::TLKSDocumentViewController &controller = documentPane()->controller();
    const QString book = controller.parentPath == store::libraryRoot()
                             ? QStringLiteral("the top level")
                             : path::lastComponent(controller.parentPath);
    m_where->setText(
        (controller.path.isEmpty() ? QStringLiteral("Goes into %1") : QStringLiteral("Saved in %1"))
            .arg(book));
}

QuickEntryWindow *tl_addQuickEntry()
{
    auto *window = new QuickEntryWindow;
    bringToFront(window);
    return window;
}

} // namespace tl::app
