#pragma once

#include <QWidget>

class QFileSystemWatcher;
class QVBoxLayout;

// A window of its own over one document, beside the main window: it keeps
// its document when the list selects another, and the text is saved as the
// user types, on Save and on closing. The title is the document's name.
namespace tl::app {

class DocumentPane;

class DocumentWindow : public QWidget
{
    Q_OBJECT
public:
    // `untitled` names the window while its document has no file yet.
    explicit DocumentWindow(const QString &untitled, QWidget *parent = nullptr);

    DocumentPane *documentPane() const { return m_document; }

protected:
    void closeEvent(QCloseEvent *event) override;
    // The document pane stands first; a window adds its bars below.
    QVBoxLayout *contentLayout() const { return m_layout; }

private:
    void updateTitle();
    // A file outside the library is watched here: the library's watcher
    // does not see it.
    void watchOutsideFile();

    QString m_untitled;
    DocumentPane *m_document;
    QVBoxLayout *m_layout;
    QFileSystemWatcher *m_watcher;
};

// A document window in front, showing the file: one from outside the
// library, shown and edited on its own.
DocumentWindow *openInExtraWindow(const QString &path);

} // namespace tl::app
