#pragma once

#include <QWidget>

class QPdfDocument;
class QPdfView;

// PDF documents, opened at the page the reader left them on.
namespace tl::app {

class PdfPane : public QWidget
{
    Q_OBJECT
public:
    explicit PdfPane(QWidget *parent = nullptr);

    void open(const QString &path, qint64 page);
    void close();
    qint64 currentPage() const;

Q_SIGNALS:
    void pageChanged(qint64 page);

private:
    QPdfDocument *m_document;
    QPdfView *m_view;
    qint64 m_pendingPage = 0;
};

} // namespace tl::app
