#include "document/pdf_pane.h"

#include <QPdfDocument>
#include <QPdfPageNavigator>
#include <QPdfView>
#include <QVBoxLayout>

namespace tl::app {

PdfPane::PdfPane(QWidget *parent)
    : QWidget(parent), m_document(new QPdfDocument(this)), m_view(new QPdfView(this))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_view);
    m_view->setDocument(m_document);
    m_view->setPageMode(QPdfView::PageMode::MultiPage);
    m_view->setZoomMode(QPdfView::ZoomMode::FitToWidth);
    connect(m_view->pageNavigator(), &QPdfPageNavigator::currentPageChanged, this,
            [this](int page) { Q_EMIT pageChanged(page); });
    connect(m_document, &QPdfDocument::statusChanged, this, [this](QPdfDocument::Status status) {
        if (status == QPdfDocument::Status::Ready && m_pendingPage > 0 &&
            m_pendingPage < m_document->pageCount())
            m_view->pageNavigator()->jump(int(m_pendingPage), {});
    });
}

void PdfPane::open(const QString &path, qint64 page)
{
    m_pendingPage = page;
    m_document->load(path);
}

void PdfPane::close()
{
    m_document->close();
}

qint64 PdfPane::currentPage() const
{
    return m_view->pageNavigator()->currentPage();
}

} // namespace tl::app
