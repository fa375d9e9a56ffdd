#pragma once

#include <QVariantList>
#include <QWidget>

class QFileSystemWatcher;
class QMenuBar;
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
    // A menu bar above the document.
    void setMenuBar(QMenuBar *bar);

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

// A document window in front, showing the file on its own, beside the main
// window; a file from outside the library is edited there too.
DocumentWindow *openInExtraWindow(const QString &path);
// Each file comes to the front where a window already shows it, else opens
// in an extra window.
void openItemsInNewWindow(const QStringList &paths);
// The documents of the extra windows open now, as dictionaries holding
// "path", to open again at the next start.
QVariantList extraWindowDocuments();
// Opens again the documents of extraWindowDocuments(); the recent items stay
// as they were, since reopening is no use of a document. When the main
// window was closed at the end of the last session (hideBrowserOnLaunch), it
// closes again once a document window stands beside it.
void reopenDocuments(const QVariantList &documents, QWidget *mainWindow);

} // namespace tl::app
