#pragma once

#include "store/text_encoding.h"

#include <QDateTime>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <memory>

// The document view's controller without its views: which view takes a
// document, what that view shows, and the one road back to disk. The window
// shows what it answers after each documentShown() and hands every gesture
// (a key, a click on a check box, the toggle) back to it. Timed work goes
// through the scheduler, so tests drive it with the injected clock.
namespace tl::browser {

enum DocumentViewKind : int {
    NoView = 0,
    PlainTextView = 1,
    FormattedView = 2,
    PDFView = 3,
    PreviewView = 5,
};

// What the formatted view loads.
struct FormattedPage
{
    // The page to show; empty when url is loaded instead.
    QString html;
    // An address to load instead of html: a web location, or a file loaded
    // as it is.
    QString url;
    // Where relative references of html resolve (a file URL).
    QString baseUrl;
    // Scripts inside the document may run: only for pages the program
    // rendered itself (Markdown, Fountain, OPML), never for mail, web
    // archives or HTML from elsewhere.
    bool documentScriptsAllowed = false;
    // The page is the document itself and is edited in place.
    bool editable = false;
};

// Why a document opens locked; None when it may be edited.
enum class DocumentLock { None, ReadOnlyProperty, ImmutableFlag, VersionsPath };

class TLKSDocumentViewController : public QObject
{
    Q_OBJECT
public:
    explicit TLKSDocumentViewController(QObject *parent = nullptr);
    ~TLKSDocumentViewController() override;

    // The document; empty for a new document not yet on disk.
    QString path;
    // The book a new document goes to.
    QString parentPath;
    int viewThatIsVisible = NoView;
    // The user pressed the toggle: the other of plain text and formatted shows.
    bool presentingToggledView = false;
    // Upper-case MD5 of the text as saved when editing began or at the last
    // save; empty until the user starts to edit, so a document only looked
    // at is never written.
    QString md5hash;
    store::TextEncoding stringEncoding = store::TextEncoding::UTF8;
    bool titleIsFirstLineOfText = false;
    QString fileExtensionForNewDoc;
    QDateTime modDateOfPresentedDocument;
    QDateTime modDateOfPresentedPlist;
    QVariantMap currentPlist;
    QSet<QString> embeddedContexts;
    QStringList referencedDocuments;
    // The formatted view's address at loading; a frame that left it is not saved.
    QString formattedMainFrameURL;
    // Save even when the hash is equal.
    bool forceSave = false;
    // The part behind "#" of the selected path, and the list's search key
    // (less quotation marks and "*" at its ends) for marking hits.
    QString anchor;
    QString searchKey;

    // Facts of the window the controller serves, kept current by the window.
    bool isMainWindow = true;
    bool isKeyWindow = true;
    // Only the document is shown (no outline or list): focus stays in it.
    bool onlyDocumentShown = false;

    // What the views show after documentShown(). The plain-text view's text
    // is the controller's copy: the view reports each change through
    // textDidChange.
    QString plainText;
    FormattedPage formattedPage;
    // Plain text and formatted may swap for the document on show.
    bool viewToggles = false;
    // The label of the toggle where it has one of its own: "Switch to
    // formatted view", "Show HTML source code"; empty otherwise.
    QString toggleTitle;
    DocumentLock lock = DocumentLock::None;
    bool isLocked() const { return lock != DocumentLock::None; }
    // Set while the document has versions from another computer awaiting
    // the user's choice: it is read-only, and each attempt at editing asks
    // the question again. Cleared whenever a document is shown.
    bool iCloudHaveUnresolvedConflict = false;
    // Offsets remembered for the document, restored by the views.
    qint64 characterOffset = 0;
    double formattedOffset = 0;
    qint64 currentPDFPage = 0;
    bool windowEdited() const { return m_windowEdited; }

    // From the list to the screen.
    void selectNewDocument(const QString &path, const QString &searchKey = {});
    // A document as it stood when the program last quit: the recent items
    // stay as they are.
    void showAgain(const QString &path);
    void showDocument();
    void reloadCurrentDocument();
    // An empty document, not on disk until its first save, in the book.
    void newDocumentInBook(const QString &book, const QString &extension = {});

    // tl_togglePlainTextAndFormattedView: ignored, and logged, when the
    // window is not the key window. Answers whether the view flipped (a
    // window with unsaved edits saves first and flips 0.2 seconds later).
    bool tl_togglePlainTextAndFormattedView();
    // The toggle by a double click in the formatted view at the element with
    // this HTML and the page's HTML up to it: the plain text opens there.
    bool toggleFromFormattedClick(const QString &elementHTML, const QString &htmlUpToElement);

    void saveCurrentDocumentOffset();
    // Renames to the first line on command; false when it can't.
    bool tl_renameToFirstLineOfText();

    // Editing. The first keystroke asks textShouldBeginEditing (the
    // formatted view formattedShouldBeginEditing with its inner HTML): a
    // locked document shows the unlock alert and answers false unless the
    // user unlocked it; otherwise the hash is taken and editing may begin.
    bool textShouldBeginEditing();
    bool formattedShouldBeginEditing(const QString &innerHTML);
    // Each change of the plain text; restarts the save timer (0.6 seconds
    // when the caret's line has text before the caret, else 0.5).
    void textDidChange(const QString &text, bool caretLineHasTextBefore);
    // Each change in the formatted view, with its inner HTML now (and the
    // whole page's HTML, which a page from elsewhere is saved as); restarts
    // the save timer with 0.6 seconds.
    void formattedTextDidChange(const QString &innerHTML, const QString &outerHTML = {});
    // Where the formatted view's main frame is now.
    void setFormattedFrameURL(const QString &url) { m_frameURL = url; }
    // A click on a check box of rendered Markdown: the list item's Markdown
    // and its occurrence among equal items (-1 when not known).
    void toggleMarkdownCheckboxForTask(const QString &task, int pos = -1);
    // A check box clicked in the rendered page: the page reports its list
    // item's markup, whose Markdown is the task.
    void checkboxClickedInPage(const QString &itemHTML, int occurrence);
    // "Extract Tasks": the document is saved, and its marked lines become
    // tasks beside it when it is a task itself, else in a list of its own.
    // Answers the new tasks.
    QStringList tl_extractTasks();
    // "This Document is Locked in Finder" or "This Document is Read Only";
    // answers true when the user chose "Unlock" and the document is now
    // editable.
    bool tl_showUnlockAlert();

    // The single way back to disk.
    void writeTextToFile();
    // An outside change (a file event or the presenter's report).
    void checkIfDocumentNeedsReload(const QString &changedPath);
    // Follows the store's events: saves on TLKSSaveCurrentDocument, reloads
    // on file changes, follows moves of its document, shows selected documents.
    void startObserving();

    // The documents this view showed, for its back and forward buttons:
    // selections add to it, renames and moves change their entries.
    const QStringList &backForwardList() const { return m_history; }
    bool canGoBack() const;
    bool canGoForward() const;
    void goBack();
    void goForward();

    // The save timer's scheduler key, for tests.
    QString saveTimerKey() const;

    static constexpr double kSaveDelayAfterText = 0.6;
    static constexpr double kSaveDelay = 0.5;
    static constexpr double kFakeURLDelay = 0.65;
    static constexpr double kRetryDelay = 0.2;

Q_SIGNALS:
    // A document (or none) is shown anew: read viewThatIsVisible, plainText,
    // formattedPage, lock, the offsets and path.
    void documentShown();
    // The document got a path: a new document's first save, or a rename.
    void pathChanged(const QString &path);
    void windowEditedChanged(bool edited);
    // The back and forward buttons may need another state.
    void backForwardChanged();
    // Only the formatted page needs loading again (same document, same view).
    void formattedPageChanged();
    // The plain text changed under the view (a check box toggled on disk,
    // an outside change taken in).
    void plainTextReplaced();
    // After a selection: focus to the list, or the window to the front.
    void focusListRequested();
    void bringToFrontRequested();
    // Editing is wanted while the conflict flag is set: whoever settles
    // conflicts asks the user now (tl_iCloudCheckUnresolvedConflict) and
    // clears the flag if the question was answered.
    void unresolvedConflictCheckRequested();

private:
    struct State;
    void setWindowEdited(bool edited);
    // A file from outside the library is only shown and edited: it keeps its
    // name, and the library's tags and backlinks are not about it.
    bool documentIsInLibrary() const;
    // The contexts the shown text holds that the item bears too, and after a
    // save the item's tags changed by what the text gained and lost.
    void noteEmbeddedContexts(const QString &text);
    void keepContextsInStep(const QString &savedText);
    void loadPlainText();
    void loadFormattedPage();
    void applyLockRule();
    void readOffsets();
    // False while a conflict stays unresolved after asking again.
    bool conflictAllowsEditing();
    void scheduleSave(double delay);
    // The text writeTextToFile would write for what the view shows now,
    // before any envelope, and its hash in the document's encoding.
    QString textToSave() const;
    QString hashOf(const QString &text) const;
    // The steps of writeTextToFile after the hash said "changed".
    bool saveNewDocument(const QString &text);
    bool renameToFirstLine(const QString &text, const QString &firstLine);
    bool saveExistingDocument(const QString &text);
    // What every path that wrote does; the hash is of the text as written.
    void afterSaving(const QString &hash, const QString &originalPath);
    // Backlinks and attachments kept in step with the shown document.
    void assignBacklinksOnShow();
    void followLinksAfterSave(const QString &originalPath);
    // Moves the document itself: the view's own rename, never queued.
    bool moveShownDocument(const QString &target);
    void adoptPath(const QString &newPath);
    void clearDocument();

    std::unique_ptr<State> m_state;
    bool m_windowEdited = false;
    bool m_recordsRecentItems = true;
    QString m_frameURL;
    QStringList m_history;
    qsizetype m_historyIndex = -1;

    void addToHistory(const QString &path);
    void renameInHistory(const QString &from, const QString &to);
    void showFromHistory(qsizetype index);
};

// The alert texts of the document view.
inline constexpr char kLockedInFinderAlert[] = "This Document is Locked in Finder";
inline constexpr char kReadOnlyAlert[] = "This Document is Read Only";
inline constexpr char kUnlockAlertText[] =
    "If you want to make changes to this document, click Unlock.";
inline constexpr char kCannotRenameAlert[] = "Cannot Rename to First Line of Text";
inline constexpr char kTitleTakenText[] = "The title \"%1\" is already taken.";
inline constexpr char kSavingErrorAlert[] = "Saving Error";

} // namespace tl::browser
