#pragma once

#include "browser/document_view_controller.h"
#include "importers/location.h"

#include <QWidget>

class QStackedWidget;

namespace tl::sync {
class DocumentConflict;
}

// The document view: one of plain text, formatted, PDF or preview, as the
// controller decides, with every gesture handed back to it.
namespace tl::app {

class ConflictBar;
class FormattedView;
class PdfPane;
class PlainTextView;
class PreviewPane;
class TaskButton;

class DocumentPane : public QWidget
{
    Q_OBJECT
public:
    explicit DocumentPane(QWidget *parent = nullptr);
    ~DocumentPane() override;

    browser::TLKSDocumentViewController &controller() { return *m_controller; }
    sync::DocumentConflict &conflict() const { return *m_conflict; }
    ConflictBar *conflictBar() const { return m_conflictBar; }
    PlainTextView *plainTextView() const { return m_plain; }
    // Made on first need: the web engine and the PDF renderer are heavy.
    FormattedView *formattedView();
    PdfPane *pdfPane();

    void toggleView();
    bool canToggleView() const;
    // Whether the view on show takes inserted text: the plain-text editor, or
    // a formatted page that may be edited.
    bool canInsertText() const;
    // tl_insertLocationAtCoordinate: the position's text (and its map
    // picture) put in at the caret of the view on show.
    void insertLocation(const importers::LocationFix &fix);
    QString shownPath() const { return m_controller->path; }
    TaskButton *taskButton() const { return m_taskButton; }

Q_SIGNALS:
    // The document, its path or its view changed: titles and actions follow.
    void stateChanged();
    // The Evernote page's link: the export's notes are asked for.
    void notesImportRequested(const QString &exportPath);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void placeTaskButton();
    void showCurrentDocument();
    void showFormattedPage();
    // Read-only while the document's conflict stands.
    void followConflict();

    browser::TLKSDocumentViewController *m_controller;
    QStackedWidget *m_stack;
    QWidget *m_empty;
    PlainTextView *m_plain;
    FormattedView *m_formatted = nullptr;
    PdfPane *m_pdf = nullptr;
    PreviewPane *m_preview;
    TaskButton *m_taskButton;
    sync::DocumentConflict *m_conflict;
    ConflictBar *m_conflictBar;
};

} // namespace tl::app
