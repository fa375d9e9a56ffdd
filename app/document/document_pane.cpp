#include "document/document_pane.h"

#include "document/backlinks_list.h"
#include "document/conflict_bar.h"
#include "document/formatted_view.h"
#include "document/pdf_pane.h"
#include "document/plain_text_view.h"
#include "document/preview_pane.h"
#include "document/task_button.h"
#include "foundation/events.h"
#include "foundation/notification_center.h"
#include "link_actions.h"
#include "store/style_values.h"
#include "sync/document_conflict.h"

#include <QLabel>
#include <QStackedWidget>
#include <QStyle>
#include <QVBoxLayout>

namespace tl::app {

using browser::TLKSDocumentViewController;

DocumentPane::DocumentPane(QWidget *parent)
    : QWidget(parent), m_controller(new TLKSDocumentViewController(this)),
      m_stack(new QStackedWidget(this)), m_empty(new QLabel(this)),
      m_plain(new PlainTextView(this)), m_preview(new PreviewPane(this)),
      m_taskButton(new TaskButton(this)),
      m_conflict(new sync::DocumentConflict(*m_controller, this)),
      m_conflictBar(new ConflictBar(*m_conflict, this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_conflictBar);
    layout->addWidget(m_stack);
    auto *backlinks = new BacklinksList(this);
    layout->addWidget(backlinks);
    static_cast<QLabel *>(m_empty)->setAlignment(Qt::AlignCenter);
    static_cast<QLabel *>(m_empty)->setText(QStringLiteral("No Document Selected"));
    m_empty->setEnabled(false);
    m_empty->setAutoFillBackground(true);
    m_empty->setBackgroundRole(QPalette::Base);
    for (QWidget *page :
         {m_empty, static_cast<QWidget *>(m_plain), static_cast<QWidget *>(m_preview)})
        m_stack->addWidget(page);

    TLKSDocumentViewController *c = m_controller;
    connect(c, &TLKSDocumentViewController::documentShown, this,
            &DocumentPane::showCurrentDocument);
    connect(c, &TLKSDocumentViewController::documentShown, backlinks,
            [backlinks, c] { backlinks->follow(c->path); });
    connect(c, &TLKSDocumentViewController::documentShown, m_taskButton, [this, c] {
        m_taskButton->follow(c->path);
        placeTaskButton();
    });
    connect(c, &TLKSDocumentViewController::formattedPageChanged, this,
            &DocumentPane::showFormattedPage);
    connect(c, &TLKSDocumentViewController::plainTextReplaced, this,
            [this, c] { m_plain->showText(c->plainText, m_plain->textCursor().position()); });
    connect(c, &TLKSDocumentViewController::pathChanged, this, &DocumentPane::stateChanged);
    connect(c, &TLKSDocumentViewController::windowEditedChanged, this,
            [this](bool edited) { window()->setWindowModified(edited); });
    connect(c, &TLKSDocumentViewController::focusListRequested, this, [this] {
        if (QWidget *list = window()->findChild<QWidget *>(QStringLiteral("documentList")))
            list->setFocus();
    });

    connect(m_plain, &PlainTextView::editingWanted, this,
            [c](bool *allowed) { *allowed = c->textShouldBeginEditing(); });
    connect(m_plain, &PlainTextView::textEdited, this,
            [c](const QString &text, bool before) { c->textDidChange(text, before); });
    connect(m_plain, &PlainTextView::caretMoved, this,
            [c](qint64 offset) { c->characterOffset = offset; });
    connect(m_conflict, &sync::DocumentConflict::conflictChanged, this,
            &DocumentPane::followConflict);
    c->startObserving();
}

DocumentPane::~DocumentPane() = default;

void DocumentPane::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeTaskButton();
}

// In the top corner of the page, clear of its scroll bar.
void DocumentPane::placeTaskButton()
{
    m_taskButton->adjustSize();
    const int margin = style()->pixelMetric(QStyle::PM_LayoutRightMargin) / 2 + 2;
    const int right =
        m_stack->geometry().right() - margin - style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    m_taskButton->move(right - m_taskButton->width(), m_stack->geometry().top() + margin);
    m_taskButton->raise();
}

FormattedView *DocumentPane::formattedView()
{
    if (m_formatted)
        return m_formatted;
    m_formatted = new FormattedView(this);
    m_stack->addWidget(m_formatted);
    TLKSDocumentViewController *c = m_controller;
    connect(m_formatted, &FormattedView::notesImportRequested, this,
            &DocumentPane::notesImportRequested);
    connect(m_formatted, &FormattedView::libraryLinkActivated, this, [c](const QString &link) {
        const QString path = followLibraryLink(link, c->path);
        if (!path.isEmpty())
            NotificationCenter::defaultCenter().post(QLatin1String(events::ShowItemAtPath),
                                                     {{QStringLiteral("path"), path}});
    });
    connect(m_formatted, &FormattedView::checkboxClicked, this,
            [c](const QString &itemHTML, int occurrence) {
                c->checkboxClickedInPage(itemHTML, occurrence);
            });
    connect(m_formatted, &FormattedView::editingBegins, this,
            [c](const QString &html) { c->formattedShouldBeginEditing(html); });
    connect(m_formatted, &FormattedView::edited, this,
            [c](const QString &html) { c->formattedTextDidChange(html); });
    connect(m_formatted, &FormattedView::doubleClicked, this,
            [c](const QString &element, const QString &upTo) {
                c->toggleFromFormattedClick(element, upTo);
            });
    connect(m_formatted, &FormattedView::frameUrlChanged, this,
            [c](const QString &url) { c->setFormattedFrameURL(url); });
    connect(m_formatted, &FormattedView::scrolled, this, [c](double y) { c->formattedOffset = y; });
    return m_formatted;
}

PdfPane *DocumentPane::pdfPane()
{
    if (m_pdf)
        return m_pdf;
    m_pdf = new PdfPane(this);
    m_stack->addWidget(m_pdf);
    TLKSDocumentViewController *c = m_controller;
    connect(m_pdf, &PdfPane::pageChanged, this, [c](qint64 page) { c->currentPDFPage = page; });
    return m_pdf;
}

void DocumentPane::showCurrentDocument()
{
    TLKSDocumentViewController *c = m_controller;
    switch (c->viewThatIsVisible) {
    case browser::PlainTextView: {
        const store::FontChoice font =
            store::tl_fontForPath(c->path.isEmpty() ? c->parentPath : c->path);
        m_plain->setDocumentFont(
            font.family, font.size,
            store::tl_linespacingAtPath(c->path.isEmpty() ? c->parentPath : c->path));
        m_plain->setDocumentPath(c->path);
        m_plain->showText(c->plainText, c->characterOffset);
        m_stack->setCurrentWidget(m_plain);
        break;
    }
    case browser::FormattedView:
        showFormattedPage();
        if (!c->anchor.isEmpty())
            formattedView()->scrollToAnchor(c->anchor);
        m_stack->setCurrentWidget(formattedView());
        break;
    case browser::PDFView:
        pdfPane()->open(c->path, c->currentPDFPage);
        m_stack->setCurrentWidget(m_pdf);
        break;
    case browser::PreviewView:
        m_preview->showItem(c->path);
        m_stack->setCurrentWidget(m_preview);
        break;
    default:
        m_stack->setCurrentWidget(m_empty);
    }
    if (m_pdf && c->viewThatIsVisible != browser::PDFView)
        m_pdf->close();
    Q_EMIT stateChanged();
}

void DocumentPane::showFormattedPage()
{
    formattedView()->showPage(m_controller->formattedPage, m_controller->path,
                              m_controller->formattedOffset);
}

void DocumentPane::followConflict()
{
    const bool unresolved = m_conflict->isUnresolved();
    m_plain->endEditing();
    m_plain->setReadOnly(unresolved);
    if (m_formatted)
        m_formatted->setEditable(!unresolved && m_controller->formattedPage.editable);
    // The bar above the page came or went.
    layout()->activate();
    placeTaskButton();
}

void DocumentPane::toggleView()
{
    m_controller->tl_togglePlainTextAndFormattedView();
}

bool DocumentPane::canInsertText() const
{
    const int view = m_controller->viewThatIsVisible;
    return !m_controller->path.isEmpty() &&
           (view == browser::PlainTextView ||
            (view == browser::FormattedView && m_controller->formattedPage.editable));
}

void DocumentPane::insertLocation(const importers::LocationFix &fix)
{
    if (!canInsertText())
        return;
    TLKSDocumentViewController *c = m_controller;
    if (c->viewThatIsVisible == browser::FormattedView) {
        if (c->isLocked() && !c->tl_showUnlockAlert())
            return;
        if (const auto html =
                importers::tl_locationTextForDocument(fix, c->path, importers::LocationForm::HTML))
            formattedView()->insertHTML(*html);
        return;
    }
    // An HTML document in the plain-text editor shows its Markdown source.
    if (const auto text = importers::tl_locationTextForDocument(
            fix, c->path, importers::LocationForm::Markdown, c->presentingToggledView))
        m_plain->insertAtSelection(*text);
}

bool DocumentPane::canToggleView() const
{
    const int view = m_controller->viewThatIsVisible;
    return (view == browser::PlainTextView || view == browser::FormattedView) &&
           m_controller->viewToggles;
}

} // namespace tl::app
